#include <ZeltoIntegrations/GoTo/GoToRecords.h>

#include <Support/MeetingFacts.h>
#include <Support/Suites/MeetingSuite.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

constexpr auto headers = "Content-Type: application/json\nAccept: application/json\n"
                         "Authorization: Bearer token\n";

using GoToClientTest = MeetingFixture<GoToFacts>;

std::string bodyOf(const std::string& subject, const std::string& type, const std::string& start,
                   const std::string& end) {
    return R"({"subject":")" + subject + R"(","conferencecallinfo":"VoIP","meetingtype":")" + type +
           R"(","passwordrequired":true,"starttime":")" + start + R"(","endtime":")" + end +
           R"(","timezonekey":""})";
}

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(GoTo, Meetings, GoToFacts);

TEST_F(GoToClientTest, AMeetingIsMadeByOneRequest) {
    EXPECT_EQ(create(*client(), "A <b> & \"c\"", at("10:00:00"), at("10:45:00")), GoToFacts::details());
    const auto body = bodyOf(R"(A <b> & \"c\")", "scheduled", "2026-12-24T10:00:00Z", "2026-12-24T10:45:00Z");
    EXPECT_EQ(service.texts(), Texts{"POST /G2M/rest/meetings\n" + std::string(headers) +
                                     "Content-Length: " + std::to_string(body.size()) + "\n\n" + body});
    EXPECT_EQ(service.server.requests().front().headers.value("Host"), "api.getgo.com");
}

TEST_F(GoToClientTest, AMeetingIsChangedByOneRequest) {
    EXPECT_TRUE(update(*client(), "987654321", "T", at("10:00:00"), at("11:00:00")));
    const auto body = bodyOf("T", "scheduled", "2026-12-24T10:00:00Z", "2026-12-24T11:00:00Z");
    EXPECT_EQ(service.texts(), Texts{"PUT /G2M/rest/meetings/987654321\n" + std::string(headers) +
                                     "Content-Length: " + std::to_string(body.size()) + "\n\n" + body});
}

TEST_F(GoToClientTest, AMeetingIsDeletedByOneRequest) {
    EXPECT_TRUE(remove(*client(), "987654321"));
    EXPECT_EQ(service.texts(), Texts{"DELETE /G2M/rest/meetings/987654321\n" + std::string(headers) + "\n"});
}

TEST_F(GoToClientTest, WithoutBothDatesAMeetingIsRecurringInTheDistantFuture) {
    const auto recurring = bodyOf("T", "recurring", "4001-01-01T00:00:00Z", "4001-01-01T01:00:00Z");
    EXPECT_EQ(bodyFor(std::nullopt, std::nullopt), recurring);
    EXPECT_EQ(bodyFor(at("10:00:00"), std::nullopt), recurring);
    EXPECT_EQ(bodyFor(std::nullopt, at("10:00:00")), recurring);
}

TEST_F(GoToClientTest, WithoutATitleTheSubjectIsEmpty) {
    EXPECT_TRUE(create(*client(), std::nullopt));
    EXPECT_EQ(service.server.requests().back().body,
              bodyOf("", "recurring", "4001-01-01T00:00:00Z", "4001-01-01T01:00:00Z"));
}

TEST_F(GoToClientTest, AMeetingOfMoreThanTenHoursIsRecurring) {
    const auto typeFor = [](const std::string& end) {
        return goToMeetingRequest("T", at("10:00:00"), at(end)).meetingtype;
    };
    EXPECT_EQ(typeFor("19:59:59"), GoToMeetingType::scheduled);
    EXPECT_EQ(typeFor("20:00:00"), GoToMeetingType::scheduled);
    EXPECT_EQ(typeFor("20:00:01"), GoToMeetingType::recurring);
    EXPECT_EQ(typeFor("09:00:00"), GoToMeetingType::scheduled);
    EXPECT_EQ(bodyFor(at("10:00:00"), at("20:00:01")),
              bodyOf("T", "recurring", "2026-12-24T10:00:00Z", "2026-12-24T20:00:01Z"));
}

TEST_F(GoToClientTest, AnEmptyListIsAServiceError) {
    service.onRequest = [](const auto&) { return PlayedResponse::json("[]", 201); };
    const auto one = client();
    EXPECT_EQ(create(*one).error(), MeetingCreatorError::serviceError);
    EXPECT_EQ(one->lastRefusal(), std::nullopt);
}

TEST_F(GoToClientTest, OfAListTheFirstMeetingCounts) {
    service.onRequest = [](const auto&) {
        return PlayedResponse::json(R"([{"meetingid":9223372036854775807},{"meetingid":2,"joinURL":"x"}])",
                                    201);
    };
    EXPECT_EQ(create(*client()),
              (ConferenceDetails{"9223372036854775807", std::nullopt, std::nullopt, ServiceType::G2Meeting}));
}

TEST(GoToRecords, HaveTheServicesTexts) {
    const std::vector types{GoToMeetingType::immediate, GoToMeetingType::recurring,
                            GoToMeetingType::scheduled};
    EXPECT_EQ(JSONEncoder().encode(types).value(), R"(["immediate","recurring","scheduled"])");
    using Call = GoToMeetingConferenceType;
    const std::vector calls{Call::PSTN, Call::Free, Call::Hybrid, Call::Private, Call::VoIP};
    const auto texts = R"(["PSTN","Free","Hybrid","Private","VoIP"])";
    EXPECT_EQ(JSONEncoder().encode(calls).value(), texts);
    EXPECT_EQ(JSONDecoder().decode<std::vector<Call>>(texts).value(), calls);
    EXPECT_FALSE(JSONDecoder().decode<std::vector<Call>>(R"(["voip"])"));
}

} // namespace zelto
