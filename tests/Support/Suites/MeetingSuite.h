#pragma once

#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>

#include <Support/FailingResponses.h>
#include <Support/Gate.h>
#include <Support/MeetingFixture.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zelto {

// What holds for every meeting service, by the facts of MeetingFixture and
//
//     static ConferenceDetails details();            // of the meeting in `created`
//     static std::vector<std::string> unreadable();  // further responses that make no meeting of a creation
//     using Refusals = std::vector<std::pair<std::string, std::string>>;
//     static Refusals refusals();                    // bodies of refusals, and the words in them
template <class Facts> class Meetings : public MeetingFixture<Facts> {
  protected:
    using Base = MeetingFixture<Facts>;

    void respondAlways(const PlayedResponse& response) {
        this->service.onRequest = [response](const auto&) { return response; };
    }

    // Holds up every request, and calls the function when one has come.
    template <class F> void whileHeldUp(F function) {
        const auto gate = std::make_shared<Gate>();
        this->service.onRequest = [gate](const auto&) {
            gate->pass();
            return std::nullopt;
        };
        function(*gate);
        gate->open();
    }
};

TYPED_TEST_SUITE_P(Meetings);

TYPED_TEST_P(Meetings, AreMadeChangedAndDeletedByOneRequestEach) {
    const auto client = this->client();
    EXPECT_EQ(this->create(*client), TypeParam::details());
    EXPECT_TRUE(this->update(*client, "1"));
    EXPECT_TRUE(this->remove(*client, "1"));
    EXPECT_EQ(client->lastError(), std::nullopt);
    EXPECT_EQ(client->lastRefusal(), std::nullopt);
    EXPECT_EQ(this->service.lines().size(), 3U);
}

TYPED_TEST_P(Meetings, EndOnceWithTheErrorOfEveryFailingResponse) {
    for (const auto& failing : failingResponses()) {
        this->respondAlways(failing.response);
        const auto error = fromName<ServiceClientError>(failing.error).value();
        const auto before = this->service.lines().size();
        const auto client = this->client();
        EXPECT_EQ(this->endsOfAll(*client), this->all(meetingCreatorError(error))) << failing.name;
        EXPECT_EQ(client->lastError(), error) << failing.name;
        EXPECT_EQ(this->service.lines().size(), before + 3) << failing.name;
    }
}

TYPED_TEST_P(Meetings, AreNotMadeByAResponseThatCannotBeRead) {
    const auto deep = std::string(600, '[') + std::string(600, ']');
    auto bodies = TypeParam::unreadable();
    for (const auto& body :
         {std::string(), std::string("<html>"), std::string("null"), std::string("1e400"), std::string("{}"),
          std::string("[{}]"), std::string("\"\xFF\""), deep, std::string(TypeParam::created) + "x"}) {
        bodies.push_back(body);
    }
    for (const auto& body : bodies) {
        this->respondAlways(PlayedResponse::json(body, 201));
        const auto client = this->client();
        EXPECT_EQ(this->create(*client).error(), MeetingCreatorError::internalError) << body;
        EXPECT_EQ(client->lastError(), ServiceClientError::dataParseError) << body;
    }
}

TYPED_TEST_P(Meetings, AreChangedByAnyJSONObjectOrByStatus204Alone) {
    const auto client = this->client();
    for (const auto& [response, works] : std::initializer_list<std::pair<PlayedResponse, bool>>{
             {PlayedResponse::json("{}"), true},
             {PlayedResponse::json(R"({"id":"1","more":[1]})"), true},
             {PlayedResponse::json("", 204), true},
             {PlayedResponse::json(""), false},
             {PlayedResponse::json("", 202), false},
             {PlayedResponse::json("done"), false}}) {
        this->respondAlways(response);
        EXPECT_EQ(this->update(*client, "1").has_value(), works) << response.status << response.body;
        EXPECT_EQ(this->remove(*client, "1").has_value(), works) << response.status << response.body;
    }
}

TYPED_TEST_P(Meetings, KeepAndLogWhatTheServiceSaysOfARefusal) {
    const auto client = this->client();
    for (const auto& [body, words] : TypeParam::refusals()) {
        const LogCapture log;
        this->respondAlways(PlayedResponse::json(body, 400));
        EXPECT_EQ(this->create(*client).error(), MeetingCreatorError::serviceError);
        EXPECT_EQ(client->lastRefusal(), (ServiceRefusal{words, false}));
        EXPECT_TRUE(log.contains(words)) << words;
        this->service.onRequest = nullptr;
        EXPECT_TRUE(this->remove(*client, "1"));
        EXPECT_EQ(client->lastRefusal(), std::nullopt);
    }
}

TYPED_TEST_P(Meetings, KeepThatNothingWasSent) {
    const auto client = [&] {
        const TestHTTPServer gone([](const auto&) { return PlayedResponse(); });
        const ServiceRoute route(gone);
        return this->client();
    }();
    EXPECT_EQ(this->endsOfAll(*client), this->all(MeetingCreatorError::internalError));
    EXPECT_EQ(client->lastRefusal(), (ServiceRefusal{"", true}));
}

TYPED_TEST_P(Meetings, AreNamedByOneSegmentOfThePath) {
    const auto client = this->client();
    for (const auto& id : {"a/b?c#d", "../me", "..", "%2F", "\xFF", "ä b"}) {
        EXPECT_TRUE(this->update(*client, id)) << id;
        EXPECT_TRUE(this->remove(*client, id)) << id;
    }
    const auto plain = [&](const std::string& target) { return target.substr(0, target.rfind('/')); };
    EXPECT_TRUE(this->remove(*client, "1"));
    for (const auto& request : this->service.server.requests()) {
        EXPECT_EQ(plain(request.target), plain(this->service.server.requests().back().target));
    }
}

TYPED_TEST_P(Meetings, AreAskedForWithoutABodyIfTheTitleIsNoText) {
    const LogCapture log;
    EXPECT_TRUE(this->create(*this->client(), "\xFF"));
    EXPECT_EQ(this->service.server.requests().back().body, "");
    EXPECT_TRUE(log.contains("Failed to encode body with error: "));
}

TYPED_TEST_P(Meetings, OfAnAccountWithoutATokenAreNotAskedFor) {
    auto none = this->credentials();
    none.accessToken = std::nullopt;
    EXPECT_EQ(this->endsOfAll(*this->client(none)), this->all(MeetingCreatorError::oauthError));
    EXPECT_EQ(this->service.lines(), std::vector<std::string>{});
}

TYPED_TEST_P(Meetings, AreAskedForWithATokenThatIsRefreshedOnceAndItsRotatedTokenIsStored) {
    auto expired = this->credentials();
    expired.expirationDate = Date();
    expired.refreshToken = "spent";
    ServiceCredentialsManager::store(expired);
    const auto client = this->client(expired);
    EXPECT_EQ(this->create(*client), TypeParam::details());
    EXPECT_TRUE(this->update(*client, "1"));
    const auto lines = this->service.lines();
    EXPECT_EQ(std::ranges::count(lines, "POST " + std::string(TypeParam::tokenPath)), 1);
    EXPECT_EQ(lines.size(), 3U);
    for (const auto& request : this->service.server.requests()) {
        if (request.target != TypeParam::tokenPath) {
            EXPECT_EQ(request.headers.value("Authorization"), "Bearer fresh");
        }
    }
    const auto stored = ServiceCredentialsManager::stored(expired.serviceCredentialsKey).value().value();
    EXPECT_EQ(stored.accessToken, "fresh");
    EXPECT_EQ(stored.refreshToken, "rotated");
}

TYPED_TEST_P(Meetings, OfATokenThatIsRefusedAreAskedForAgainOnceBehindARefresh) {
    auto refused = this->credentials();
    refused.refreshToken = "spent";
    ServiceCredentialsManager::store(refused);
    this->service.onRequest = [](const ReceivedRequest& request) {
        const bool isOld = request.headers.value("Authorization") == "Bearer token";
        return isOld ? std::optional(PlayedResponse::json("no", 401)) : std::nullopt;
    };
    EXPECT_EQ(this->create(*this->client(refused)), TypeParam::details());
    const auto lines = this->service.lines();
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0], lines[2]);
    EXPECT_EQ(lines[1], "POST " + std::string(TypeParam::tokenPath));
}

TYPED_TEST_P(Meetings, OfAnAccountWhoseRefreshIsRefusedEndWithOauthErrorAndWithoutItsTokens) {
    auto expired = this->credentials();
    expired.expirationDate = Date();
    expired.refreshToken = "spent";
    ServiceCredentialsManager::store(expired);
    this->respondAlways(PlayedResponse::json(R"({"error":"invalid_grant"})", 400));
    EXPECT_EQ(this->create(*this->client(expired)).error(), MeetingCreatorError::oauthError);
    EXPECT_EQ(this->service.lines(), std::vector{"POST " + std::string(TypeParam::tokenPath)});
    EXPECT_EQ(ServiceCredentialsManager::stored(expired.serviceCredentialsKey).value()->refreshToken,
              std::nullopt);
}

TYPED_TEST_P(Meetings, ThatAreCancelledEndAtOnce) {
    const auto client = this->client();
    this->whileHeldUp([&](const Gate& gate) {
        Completed<typename TestFixture::Made> made;
        client->createMeeting("Title", std::nullopt, std::nullopt,
                              made.template callback<MeetingCreator::CreationCompletion>());
        gate.waitUntilReached();
        std::shared_ptr<MeetingCreator>(client)->cancelAllOperations();
        EXPECT_EQ(made.value().error(), MeetingCreatorError::internalError);
    });
    this->service.onRequest = nullptr;
    EXPECT_EQ(this->create(*client), TypeParam::details());
}

TYPED_TEST_P(Meetings, EndAlsoIfTheClientIsReleased) {
    this->whileHeldUp([&](Gate& gate) {
        Completed<typename TestFixture::Made> made;
        this->client()->createMeeting("Title", std::nullopt, std::nullopt,
                                      made.template callback<MeetingCreator::CreationCompletion>());
        gate.waitUntilReached();
        gate.open();
        EXPECT_EQ(made.value(), TypeParam::details());
    });
}

REGISTER_TYPED_TEST_SUITE_P(Meetings, AreMadeChangedAndDeletedByOneRequestEach,
                            EndOnceWithTheErrorOfEveryFailingResponse, AreNotMadeByAResponseThatCannotBeRead,
                            AreChangedByAnyJSONObjectOrByStatus204Alone,
                            KeepAndLogWhatTheServiceSaysOfARefusal, KeepThatNothingWasSent,
                            AreNamedByOneSegmentOfThePath, AreAskedForWithoutABodyIfTheTitleIsNoText,
                            OfAnAccountWithoutATokenAreNotAskedFor,
                            AreAskedForWithATokenThatIsRefreshedOnceAndItsRotatedTokenIsStored,
                            OfATokenThatIsRefusedAreAskedForAgainOnceBehindARefresh,
                            OfAnAccountWhoseRefreshIsRefusedEndWithOauthErrorAndWithoutItsTokens,
                            ThatAreCancelledEndAtOnce, EndAlsoIfTheClientIsReleased);

} // namespace zelto
