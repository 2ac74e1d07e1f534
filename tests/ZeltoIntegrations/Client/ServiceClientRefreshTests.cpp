#include "ServiceClientFixture.h"

#include <Support/LogCapture.h>
#include <Support/MemoryKeyChain.h>
#include <ZeltoIntegrations/Slack/SlackAuthoriser.h>
#include <ZeltoIntegrations/Zoom/ZoomAuthoriser.h>

#include <gtest/gtest.h>

#include <atomic>
#include <map>

namespace zelto {

namespace {

using E = ServiceClientError;
using Texts = std::vector<std::string>;

const std::string refreshText = "POST /token\nContent-Type: application/x-www-form-urlencoded\n"
                                "Content-Length: 24\n\ngrant_type=refresh_token";

// Responds to requests by what their token is worth, and to refreshes as the test says.
class TokenServer {
  public:
    explicit TokenServer(PlayedResponse refreshResponse = freshToken())
        : refreshResponse_(std::move(refreshResponse)) {}

    // Refreshes get their response when the gate is open.
    Event& refreshGate() { return refreshGate_; }

    const TestHTTPServer& http() const { return server_; }

    int refreshCount() const { return refreshes_; }

    int requestCount() const { return requests_; }

  private:
    PlayedResponse respond(const ReceivedRequest& request) {
        if (isRefresh(request)) {
            ++refreshes_;
            refreshGate_.wait();
            return refreshResponse_;
        }
        ++requests_;
        const bool isGood = request.headers.value("Authorization") == "Bearer new-token";
        return {.status = isGood ? 200 : 401, .body = "ok"};
    }

    const PlayedResponse refreshResponse_;
    Event refreshGate_;
    std::atomic<int> refreshes_ = 0;
    std::atomic<int> requests_ = 0;
    TestHTTPServer server_{[this](const ReceivedRequest& request) { return respond(request); }};
};

ServiceAccountCredentials zoomCredentials(std::optional<Date> expiration) {
    auto credentials = ServiceAccountCredentials::forIdentifier("Zoom+alice");
    credentials.accessToken = "old-token";
    credentials.refreshToken = "refresh-1";
    credentials.expirationDate = expiration;
    return credentials;
}

} // namespace

TEST(ServiceClientRefresh, ARequestThatTheServiceRefusesIsRepeatedBehindARefresh) {
    const TestHTTPServer server(Responses{{.status = 401}, freshToken(), {.body = "ok"}});
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>("old-token"), {});
    EXPECT_EQ(performed(client, itemRequest()), "ok");
    EXPECT_EQ(server.texts(), (Texts{signedRequest("old-token"), refreshText, signedRequest("new-token")}));
}

TEST(ServiceClientRefresh, AStaleTokenIsRefreshedBeforeAnythingIsSent) {
    const TestHTTPServer server(Responses{freshToken(), {.body = "ok"}});
    const ServiceRoute route(server);
    ServiceClient client(FakeAuthoriser::stale(), {});
    EXPECT_EQ(performed(client, itemRequest()), "ok");
    EXPECT_EQ(server.texts(), (Texts{refreshText, signedRequest("new-token")}));
}

TEST(ServiceClientRefresh, ThereIsNoThirdTry) {
    const TestHTTPServer server(Responses{{.status = 401}, freshToken(), {.status = 401}});
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>("old-token"), {});
    EXPECT_EQ(performed(client, itemRequest()), failure(E::authorizationError));
}

TEST(ServiceClientRefresh, ATokenThatIsStaleAfterItsRefreshIsAnAuthorizationError) {
    const TestHTTPServer server(Responses{freshToken()});
    const ServiceRoute route(server);
    const auto authoriser = FakeAuthoriser::stale();
    authoriser->setStaysStale();
    ServiceClient client(authoriser, {});
    EXPECT_EQ(performed(client, itemRequest()), failure(E::authorizationError));
}

TEST(ServiceClientRefresh, ARefusalByAServiceWithoutRefreshEndsAsOAuthError) {
    const TestHTTPServer server(Responses{{.status = 401}});
    const ServiceRoute route(server);
    const auto authoriser = std::make_shared<FakeAuthoriser>();
    authoriser->setRefreshRequest(std::nullopt);
    ServiceClient client(authoriser, {});
    EXPECT_EQ(performed(client, itemRequest()), failure(E::oauthError));
    EXPECT_TRUE(authoriser->updates().empty());
}

TEST(ServiceClientRefresh, TheErrorOfTheRefreshComesBeforeAllOtherChecks) {
    const TestHTTPServer server(Responses{{.status = 503}});
    const ServiceRoute route(server);
    ServiceClient client(FakeAuthoriser::stale(), {});
    EXPECT_EQ(performed(client, itemRequest()), failure(E::serviceInternalError));
}

TEST(ServiceClientRefresh, TheOutcomeIsTakenInOnce) {
    const TestHTTPServer server(Responses{{.status = 401}, freshToken(), {}});
    const ServiceRoute route(server);
    const auto authoriser = std::make_shared<FakeAuthoriser>("old-token");
    ServiceClient client(authoriser, {});
    performed(client, itemRequest());
    const auto updates = authoriser->updates();
    ASSERT_EQ(updates.size(), 1u);
    EXPECT_EQ(updates[0], (OAuthToken{"new-token", std::nullopt, 3600}));
}

TEST(ServiceClientRefresh, AfterARefreshTheNextRefusalMakesANewOne) {
    const TestHTTPServer server(Responses{{.status = 401},
                                          freshToken(),
                                          {},
                                          {.status = 401},
                                          freshToken(),
                                          {},
                                          {.status = 401},
                                          {.status = 500}});
    const ServiceRoute route(server);
    const auto authoriser = std::make_shared<FakeAuthoriser>("old-token");
    ServiceClient client(authoriser, {});
    EXPECT_TRUE(performed(client, itemRequest()));
    EXPECT_TRUE(performed(client, itemRequest()));
    EXPECT_EQ(performed(client, itemRequest()), failure(E::serviceInternalError));
    EXPECT_EQ(authoriser->updates().size(), 3u);
}

TEST(ServiceClientRefresh, AfterARefreshThatFailedTheNextStaleRequestTriesAgain) {
    const TestHTTPServer server(Responses{PlayedResponse::reset(), freshToken(), {.body = "ok"}});
    const ServiceRoute route(server);
    ServiceClient client(FakeAuthoriser::stale(), {});
    EXPECT_EQ(performed(client, itemRequest()), failure(E::connectionError));
    EXPECT_EQ(performed(client, itemRequest()), "ok");
}

TEST(ServiceClientRefresh, ClientsOfAccountsWithoutAKeyRefreshEachForItself) {
    TokenServer server;
    server.refreshGate().set();
    const ServiceRoute route(server.http());
    ServiceClient one(FakeAuthoriser::stale(), {});
    ServiceClient other(FakeAuthoriser::stale(), {});
    EXPECT_EQ(performed(one, itemRequest()), "ok");
    EXPECT_EQ(performed(other, itemRequest()), "ok");
    EXPECT_EQ(server.refreshCount(), 2);
}

TEST(ServiceClientRefresh, IsSharedByAllRequestsWithAStaleToken) {
    for (const int count : {10, 1000}) {
        TokenServer server;
        const ServiceRoute route(server.http());
        const auto authoriser = FakeAuthoriser::stale();
        ServiceClient client(authoriser, {});
        Requests requests(client, count);
        authoriser->waitForChecks(count);
        server.refreshGate().set();
        EXPECT_TRUE(requests.allEndWith("ok"));
        EXPECT_EQ(server.refreshCount(), 1);
        EXPECT_EQ(server.requestCount(), count);
        EXPECT_EQ(authoriser->authorizations(), count);
    }
}

TEST(ServiceClientRefresh, IsSharedHoweverSoonItEnds) {
    for (int round = 0; round < 100; ++round) {
        TokenServer server;
        server.refreshGate().set();
        const ServiceRoute route(server.http());
        ServiceClient client(FakeAuthoriser::stale(), {});
        ASSERT_TRUE(Requests(client, 10).allEndWith("ok"));
        ASSERT_EQ(server.refreshCount(), 1);
        ASSERT_EQ(server.requestCount(), 10);
    }
}

TEST(ServiceClientRefresh, IsSharedByAllRequestsThatTheServiceRefusesMeanwhile) {
    constexpr int count = 20;
    TokenServer server;
    const ServiceRoute route(server.http());
    const auto authoriser = std::make_shared<FakeAuthoriser>("old-token");
    ServiceClient client(authoriser, {});
    {
        Requests requests(client, count);
        authoriser->waitForChecks(count);
        server.refreshGate().set();
        EXPECT_TRUE(requests.allEndWith("ok"));
    }
    EXPECT_EQ(authoriser->updates().size(), static_cast<std::size_t>(server.refreshCount()));
    EXPECT_GE(server.requestCount(), count);
    EXPECT_LE(server.requestCount(), 2 * count);
}

TEST(ServiceClientRefresh, ThatFailsIsGivenToEachWaitingRequestOnce) {
    struct Row {
        const char* name;
        PlayedResponse response;
        E error;
    };

    const Row rows[] = {
        {"reset", PlayedResponse::reset(), E::connectionError},
        {"no HTTP", PlayedResponse::bytes("garbage"), E::connectionError},
        {"cut", PlayedResponse::bytes("HTTP/1.1 200 OK\r\nContent-Length: 99\r\n\r\n{"), E::connectionError},
        {"invalid grant", PlayedResponse::json(R"({"error":"invalid_grant"})", 400), E::authorizationError},
        {"invalid client", PlayedResponse::json(R"({"error":"invalid_client"})", 400), E::apiCallError},
        {"400", {.status = 400, .body = "<html>"}, E::apiCallError},
        {"401", {.status = 401}, E::authorizationError},
        {"403", {.status = 403}, E::forbidden},
        {"404", {.status = 404}, E::itemNotFound},
        {"429", {.status = 429, .fields = {{"Retry-After", "1"}}}, E::toManyRequests},
        {"503", {.status = 503}, E::serviceInternalError},
        {"account", {.status = 500, .body = "Status 500 - 403 Forbidden"}, E::invalidAccount},
        {"no JSON", {.body = "<html>"}, E::dataParseError},
        {"no token", PlayedResponse::json(R"({"token_type":"bearer"})"), E::dataParseError},
        {"nothing", {.status = 204}, E::dataParseError},
    };
    constexpr int count = 100;
    for (const auto& row : rows) {
        TokenServer server(row.response);
        const ServiceRoute route(server.http());
        const auto authoriser = FakeAuthoriser::stale();
        ServiceClient client(authoriser, {});
        Requests requests(client, count);
        authoriser->waitForChecks(count);
        server.refreshGate().set();
        EXPECT_TRUE(requests.allEndWith(failure(row.error))) << row.name;
        EXPECT_EQ(server.refreshCount(), 1) << row.name;
        EXPECT_EQ(server.requestCount(), 0) << row.name;
        EXPECT_EQ(authoriser->authorizations(), 0) << row.name;
        const auto updates = authoriser->updates();
        ASSERT_EQ(updates.size(), 1u) << row.name;
        EXPECT_EQ(updates[0], failure(row.error)) << row.name;
    }
}

TEST(ServiceClientRefresh, ThatNeverEndsIsGivenToEachWaitingRequestOnce) {
    Event end;
    const TestHTTPServer server([&](const ReceivedRequest&) {
        end.wait();
        return PlayedResponse{};
    });
    const ServiceRoute route(server);
    const auto authoriser = FakeAuthoriser::stale();
    URLRequest request(*URL::parse("https://login.example/token"), "POST");
    request.timeout = TimeInterval(3);
    authoriser->setRefreshRequest(request);
    ServiceClient client(authoriser, {});
    EXPECT_TRUE(Requests(client, 100).allEndWith(failure(E::connectionError)));
    EXPECT_EQ(server.requests().size(), 1u);
    end.set();
}

TEST(ServiceClientRefresh, ThatCannotBeAskedForIsGivenToEachWaitingRequestOnce) {
    const TestHTTPServer server(Responses{});
    const ServiceRoute route(server);
    const auto authoriser = FakeAuthoriser::stale();
    authoriser->setRefreshRequest(std::nullopt);
    ServiceClient client(authoriser, {});
    EXPECT_TRUE(Requests(client, 100).allEndWith(failure(E::oauthError)));
    EXPECT_TRUE(authoriser->updates().empty());
}

TEST(ServiceClientRefresh, ReachesTheKeyChain) {
    const MemoryKeyChain keyChain;
    const ClockOverride clock(Date::fromReferenceSeconds(1000));
    const TestHTTPServer server(Responses{
        PlayedResponse::json(R"({"access_token":"new-token","refresh_token":"refresh-2","expires_in":3600})"),
        {}});
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<ZoomAuthoriser>(zoomCredentials(std::nullopt)), {});
    EXPECT_TRUE(performed(client, itemRequest()));
    EXPECT_EQ(keyChain.text("ServiceCredentials - Zoom+alice"),
              R"({"accessToken":"new-token","refreshToken":"refresh-2","expirationDate":4600})");
}

TEST(ServiceClientRefresh, AnInvalidGrantSignsTheAccountOut) {
    const MemoryKeyChain keyChain;
    const TestHTTPServer server(Responses{PlayedResponse::json(R"({"error":"invalid_grant"})", 400)});
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<ZoomAuthoriser>(zoomCredentials(std::nullopt)), {});
    EXPECT_EQ(performed(client, itemRequest()), failure(E::authorizationError));
    EXPECT_EQ(keyChain.text("ServiceCredentials - Zoom+alice"), "{}");
    EXPECT_EQ(performed(client, itemRequest()), failure(E::oauthError));
}

TEST(ServiceClientRefresh, ARefusalByASlackWorkspaceEndsAsOAuthErrorAndKeepsTheToken) {
    const MemoryKeyChain keyChain;
    const TestHTTPServer server(Responses{{.status = 401}});
    const ServiceRoute route(server);
    auto credentials = ServiceAccountCredentials::forIdentifier("Slack+alice");
    credentials.accessToken = "xoxp-1";
    const auto authoriser = std::make_shared<SlackAuthoriser>(credentials);
    ServiceClient client(authoriser, {});
    EXPECT_EQ(performed(client, itemRequest()), failure(E::oauthError));
    EXPECT_EQ(authoriser->accountCredentials(), credentials);
}

TEST(ServiceClientRefresh, AClockThatIsOffOrJumpsCostsOneRefreshAtMost) {
    const double day = 24 * 3600;
    const double year2038 = 2147483648.0 - Date::referenceUnixSeconds;
    for (const double start : {0.0, 800'000'000.0, year2038 - 1, year2038 + 1}) {
        for (const double jump : {-day, day, 40 * 365 * day}) {
            const MemoryKeyChain keyChain;
            TokenServer server(PlayedResponse::json(
                R"({"access_token":"new-token","refresh_token":"refresh-2","expires_in":3600})"));
            server.refreshGate().set();
            const ServiceRoute route(server.http());
            ClockOverride clock(Date::fromReferenceSeconds(start));
            auto credentials = zoomCredentials(Date::now() + TimeInterval(3600));
            credentials.accessToken = "new-token";
            ServiceClient client(std::make_shared<ZoomAuthoriser>(credentials), {});
            EXPECT_EQ(performed(client, itemRequest()), "ok");
            EXPECT_EQ(server.refreshCount(), 0);
            clock.advance(TimeInterval(jump));
            EXPECT_EQ(performed(client, itemRequest()), "ok");
            EXPECT_EQ(performed(client, itemRequest()), "ok");
            EXPECT_EQ(server.refreshCount(), jump > 0 ? 1 : 0);
            clock.advance(TimeInterval(-jump));
            EXPECT_EQ(performed(client, itemRequest()), "ok");
            EXPECT_EQ(server.refreshCount(), jump > 0 ? 1 : 0);
        }
    }
}

TEST(ServiceClientRefresh, LogsNoSecret) {
    const MemoryKeyChain keyChain;
    const TestHTTPServer server(
        Responses{{.status = 400, .body = "you sent refresh-token-canary of client " + std::string("x")}});
    const ServiceRoute route(server);
    auto credentials = zoomCredentials(std::nullopt);
    credentials.accessToken = "access-token-canary";
    credentials.refreshToken = "refresh-token-canary";
    const LogCapture log;
    ServiceClient client(std::make_shared<ZoomAuthoriser>(credentials), {});
    EXPECT_EQ(performed(client, itemRequest()), failure(E::apiCallError));
    EXPECT_TRUE(log.contains("you sent *** of client x"));
    EXPECT_FALSE(log.contains("canary"));
}

} // namespace zelto
