#include <ZeltoIntegrations/Client/MeetingCreator.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace zelto {

TEST(MeetingCreatorErrors, RunDownFromMinusOne) {
    std::vector<std::pair<std::string, int>> cases;
    for (const auto& each : casesOf<MeetingCreatorError>()) {
        cases.emplace_back(each.name, rawValue(each.value));
        EXPECT_EQ(fromRawValue<MeetingCreatorError>(rawValue(each.value)), each.value);
    }
    EXPECT_EQ(cases, (std::vector<std::pair<std::string, int>>{{"oauthError", -1},
                                                               {"invalidAccount", -2},
                                                               {"serviceError", -3},
                                                               {"internalError", -4},
                                                               {"itemNotFound", -5},
                                                               {"forbidden", -6}}));
    EXPECT_EQ(fromRawValue<MeetingCreatorError>(-7), std::nullopt);
    EXPECT_EQ(fromRawValue<MeetingCreatorError>(0), std::nullopt);
}

TEST(MeetingCreatorErrors, AreMadeOfTheErrorsOfRequests) {
    using Client = ServiceClientError;
    using Meeting = MeetingCreatorError;
    const std::vector<std::pair<Client, Meeting>> rows{
        {Client::internalError, Meeting::internalError},
        {Client::connectionError, Meeting::internalError},
        {Client::dataParseError, Meeting::internalError},
        {Client::serviceInternalError, Meeting::serviceError},
        {Client::authorizationError, Meeting::oauthError},
        {Client::apiCallError, Meeting::serviceError},
        {Client::oauthError, Meeting::oauthError},
        {Client::invalidAccount, Meeting::invalidAccount},
        {Client::itemNotFound, Meeting::itemNotFound},
        {Client::forbidden, Meeting::forbidden},
        {Client::toManyRequests, Meeting::internalError},
    };
    EXPECT_EQ(rows.size(), casesOf<Client>().size());
    for (const auto& [error, expected] : rows) {
        EXPECT_EQ(meetingCreatorError(error), expected) << nameOf(error);
    }
}

} // namespace zelto
