#include "ServiceClientFixture.h"

#include <ZeltoIntegrations/Client/MappedRequest.h>

#include <Support/LogCapture.h>

#include <Platform/Operations/BlockOperation.h>
#include <Platform/Operations/OperationQueue.h>

#include <gtest/gtest.h>

#include <atomic>

namespace zelto {

namespace {

using E = ServiceClientError;
using Texts = std::vector<std::string>;

} // namespace

TEST(ServiceClient, SendsTheSignedRequestAndGivesTheResponse) {
    const TestHTTPServer server(Responses{PlayedResponse::json(R"({"error":"just a field"})")});
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>(), {});
    Completed<ServiceResult<OAuthErrorBody>> end;
    performRequest<OAuthErrorBody>(client,
                                   ServiceRequest("POST", "https://api.example/1/", "items", {{"full", "1"}})
                                       .jsonHeaders()
                                       .json(OAuthErrorBody{"e"}),
                                   end.callback<ServiceCompletion<OAuthErrorBody>>());
    EXPECT_EQ(end.value(), OAuthErrorBody{"just a field"});
    EXPECT_EQ(server.texts(),
              Texts{"POST /1/items?full=1\nContent-Type: application/json\nAccept: application/json\n"
                    "Authorization: Bearer good-token\nContent-Length: 13\n\n{\"error\":\"e\"}"});
    EXPECT_EQ(server.requests()[0].headers.value("Host"), "api.example");
}

TEST(ServiceClient, SendsFiveMethods) {
    const TestHTTPServer server([](const ReceivedRequest&) { return PlayedResponse{}; });
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>(), {});
    for (const auto* method : {"POST", "GET", "DELETE", "PUT", "PATCH"}) {
        EXPECT_EQ(performed(client, itemRequest(method)), "");
        EXPECT_EQ(server.requests().back().method, method);
    }
    EXPECT_EQ(server.requests().size(), 5u);
}

TEST(ServiceClient, RefusesEveryOtherMethodUnsent) {
    const TestHTTPServer server(Responses{});
    const ServiceRoute route(server);
    const auto authoriser = FakeAuthoriser::stale();
    ServiceClient client(authoriser, {});
    for (const auto* method : {"HEAD", "OPTIONS", "TRACE", "CONNECT", "get", "Post", "", " GET", "GET "}) {
        EXPECT_EQ(performed(client, itemRequest(method)), failure(E::internalError)) << method;
    }
    EXPECT_EQ(authoriser->authorizations(), 0);
}

TEST(ServiceClient, SendsNothingWithoutACredential) {
    const TestHTTPServer server(Responses{});
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>(std::nullopt), {});
    EXPECT_EQ(performed(client, itemRequest()), failure(E::oauthError));
}

TEST(ServiceClient, SendsNoCredentialThatWouldBreakItsHeader) {
    const TestHTTPServer server(Responses{});
    const ServiceRoute route(server);
    for (const auto& token : {std::string("a\r\nX-Evil: 1"), std::string("a\n"), std::string("a\0b", 3)}) {
        ServiceClient client(std::make_shared<FakeAuthoriser>(token), {});
        EXPECT_EQ(performed(client, itemRequest()), failure(E::oauthError));
    }
}

TEST(ServiceClient, GivesTheResponseAsTheTypeThatIsAskedFor) {
    const TestHTTPServer server(
        Responses{{.body = "\xff"}, {.body = "\xff"}, {.status = 204}, {.body = ""}, {.body = "{}"}});
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>(), {});
    EXPECT_EQ(performed<Data>(client, itemRequest()), dataOf("\xff"));
    EXPECT_EQ(performed<std::string>(client, itemRequest()), failure(E::dataParseError));
    EXPECT_EQ(performed<Empty>(client, itemRequest()), Empty{});
    EXPECT_EQ(performed<Empty>(client, itemRequest()), failure(E::dataParseError));
    EXPECT_EQ(performed<Empty>(client, itemRequest()), Empty{});
}

TEST(ServiceClient, DecodesWithItsOwnDecoder) {
    const TestHTTPServer server(Responses{{.body = "\"2001-01-01T00:01:00Z\""}});
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>(), {.dateStrategy = DateStrategy::iso8601});
    EXPECT_EQ(performed<Date>(client, itemRequest()), Date::fromReferenceSeconds(60));
}

TEST(ServiceClient, GivesEveryOtherFailureAtOnce) {
    struct Row {
        PlayedResponse response;
        E error;
    };

    const Row rows[] = {
        {{.status = 403}, E::forbidden},
        {{.status = 404}, E::itemNotFound},
        {{.status = 429, .fields = {{"Retry-After", "0"}}}, E::toManyRequests},
        {{.status = 500}, E::serviceInternalError},
        {{.status = 503, .fields = {{"Retry-After", "0"}}}, E::serviceInternalError},
        {{.status = 503, .body = "ResponseCode 412"}, E::invalidAccount},
        {{.status = 412}, E::apiCallError},
        {{.status = 400, .body = "{}"}, E::apiCallError},
        {PlayedResponse::reset(), E::connectionError},
        {PlayedResponse::bytes("no HTTP"), E::connectionError},
        {PlayedResponse::bytes("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\ncut"), E::connectionError},
    };
    for (const auto& row : rows) {
        const TestHTTPServer server(Responses{row.response});
        const ServiceRoute route(server);
        const auto authoriser = std::make_shared<FakeAuthoriser>();
        ServiceClient client(authoriser, {});
        EXPECT_EQ(performed(client, itemRequest("POST")), failure(row.error)) << row.response.status;
        EXPECT_TRUE(authoriser->updates().empty());
    }
}

TEST(ServiceClient, AnInvalidGrantOfAnOrdinaryRequestIsRetriedAsA401) {
    const TestHTTPServer server(
        Responses{PlayedResponse::json(R"({"error":"invalid_grant"})", 400), freshToken(), {.body = "ok"}});
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>(), {});
    EXPECT_EQ(performed(client, itemRequest()), "ok");
}

TEST(ServiceClient, LogsWhatTheServiceSaidWithoutTheToken) {
    const TestHTTPServer server(Responses{{.status = 404, .body = "gone"}});
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>("token-0123456789"), {});
    const LogCapture log;
    performed(client, itemRequest());
    EXPECT_EQ(
        log.messages(LogLevel::error),
        Texts{"API call error for request: https://api.example/items\nwith status code: 404\nwith error "
              "response: gone"});
    EXPECT_FALSE(log.contains("token-0123456789"));
}

TEST(ServiceClient, TheTargetOperationWaitsForTheResult) {
    Event responding;
    const TestHTTPServer server([&](const ReceivedRequest&) {
        responding.wait();
        return PlayedResponse{};
    });
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>(), {});
    std::atomic<bool> isCompleted = false;
    Completed<bool> begun;
    const auto target = std::make_shared<BlockOperation>(
        [&, began = begun.callback<Callback<bool>>()]() mutable { began(isCompleted); });
    const auto operation =
        client.perform<std::string>(itemRequest(), target, [&](auto) { isCompleted = true; });
    EXPECT_EQ(target->dependencies(), std::vector{operation});
    OperationQueue queue;
    queue.addOperation(target);
    EXPECT_FALSE(target->isReady());
    responding.set();
    EXPECT_TRUE(begun.value());
}

TEST(ServiceClient, TheTargetOperationWaitsForTheSecondTryToo) {
    for (int round = 0; round < 50; ++round) {
        const TestHTTPServer server(Responses{{.status = 401}, freshToken(), {.body = "ok"}});
        const ServiceRoute route(server);
        ServiceClient client(std::make_shared<FakeAuthoriser>(), {});
        std::atomic<bool> isCompleted = false;
        Completed<bool> begun;
        const auto target = std::make_shared<BlockOperation>(
            [&, began = begun.callback<Callback<bool>>()]() mutable { began(isCompleted); });
        client.perform<std::string>(itemRequest(), target,
                                    [&](auto result) { isCompleted = result == "ok"; });
        OperationQueue queue;
        queue.addOperation(target);
        ASSERT_TRUE(begun.value());
    }
}

TEST(ServiceClient, RunsItsRequestsInParallel) {
    // Each response waits for the requests of all.
    constexpr int count = 20;
    std::atomic<int> arrived = 0;
    Event allArrived;
    const TestHTTPServer server([&](const ReceivedRequest&) {
        if (++arrived == count) {
            allArrived.set();
        }
        allArrived.wait();
        return PlayedResponse{};
    });
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>(), {});
    EXPECT_TRUE(Requests(client, count).allEndWith(""));
}

} // namespace zelto
