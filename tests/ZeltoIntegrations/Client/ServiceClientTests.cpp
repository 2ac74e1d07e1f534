#include "ServiceClientFixture.h"

#include <Support/LogCapture.h>

#include <Platform/Operations/BlockOperation.h>
#include <Platform/Operations/OperationQueue.h>

#include <gtest/gtest.h>

#include <atomic>

namespace zelto {

namespace {

using E = ServiceClientError;
using Texts = std::vector<std::string>;

// Shows the request maker of subclasses.
class ItemClient : public ServiceClient {
  public:
    using ServiceClient::jsonRequest;
    using ServiceClient::ServiceClient;
    using ServiceClient::setJSONBody;
};

} // namespace

TEST(ServiceClient, SendsTheSignedRequestAndGivesTheAnswer) {
    const TestHTTPServer server(Answers{PlayedResponse::json(R"({"error":"just a field"})")});
    const ServiceRoute route(server);
    ItemClient client(std::make_shared<FakeAuthoriser>(), {});
    auto request = ItemClient::jsonRequest("https://api.example/1/", "items?full=1", "POST");
    ItemClient::setJSONBody(request, OAuthErrorBody{"e"});
    EXPECT_EQ(performed<OAuthErrorBody>(client, request), OAuthErrorBody{"just a field"});
    EXPECT_EQ(server.texts(),
              Texts{"POST /1/items?full=1\nContent-Type: application/json\nAccept: application/json\n"
                    "Authorization: Bearer good-token\nContent-Length: 13\n\n{\"error\":\"e\"}"});
    EXPECT_EQ(server.requests()[0].headers.value("Host"), "api.example");
}

TEST(ServiceClient, MakesRequestsWithTheCommonTimeOutAndCachePolicy) {
    const auto request = ItemClient::jsonRequest("https://api.example/1/", "items", "PATCH");
    EXPECT_EQ(request.url.absoluteString(), "https://api.example/1/items");
    EXPECT_EQ(request.method, "PATCH");
    EXPECT_EQ(request.timeout, TimeInterval(60));
    EXPECT_EQ(request.cachePolicy, URLRequestCachePolicy::useProtocolCachePolicy);
    EXPECT_FALSE(request.body);
}

TEST(ServiceClientDeathTest, APathThatMakesNoURLStopsTheProcess) {
    EXPECT_DEATH(ItemClient::jsonRequest("https://api.example/1/", "no url", "GET"), "makes no URL");
}

TEST(ServiceClient, AValueWithoutJSONLeavesTheRequestWithoutABody) {
    auto request = itemRequest("POST");
    ItemClient::setJSONBody(request, OAuthErrorBody{"\xff"});
    EXPECT_FALSE(request.body);
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
    const TestHTTPServer server(Answers{});
    const ServiceRoute route(server);
    const auto authoriser = FakeAuthoriser::stale();
    ServiceClient client(authoriser, {});
    for (const auto* method : {"HEAD", "OPTIONS", "TRACE", "CONNECT", "get", "Post", "", " GET", "GET "}) {
        EXPECT_EQ(performed(client, itemRequest(method)), failure(E::internalError)) << method;
    }
    EXPECT_EQ(authoriser->authorizations(), 0);
}

TEST(ServiceClient, SendsNothingWithoutACredential) {
    const TestHTTPServer server(Answers{});
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>(std::nullopt), {});
    EXPECT_EQ(performed(client, itemRequest()), failure(E::oauthError));
}

TEST(ServiceClient, SendsNoCredentialThatWouldBreakItsHeader) {
    const TestHTTPServer server(Answers{});
    const ServiceRoute route(server);
    for (const auto& token : {std::string("a\r\nX-Evil: 1"), std::string("a\n"), std::string("a\0b", 3)}) {
        ServiceClient client(std::make_shared<FakeAuthoriser>(token), {});
        EXPECT_EQ(performed(client, itemRequest()), failure(E::oauthError));
    }
}

TEST(ServiceClient, GivesTheAnswerAsTheTypeThatIsAskedFor) {
    const TestHTTPServer server(
        Answers{{.body = "\xff"}, {.body = "\xff"}, {.status = 204}, {.body = ""}, {.body = "{}"}});
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>(), {});
    EXPECT_EQ(performed<Data>(client, itemRequest()), dataOf("\xff"));
    EXPECT_EQ(performed<std::string>(client, itemRequest()), failure(E::dataParseError));
    EXPECT_EQ(performed<Empty>(client, itemRequest()), Empty{});
    EXPECT_EQ(performed<Empty>(client, itemRequest()), failure(E::dataParseError));
    EXPECT_EQ(performed<Empty>(client, itemRequest()), Empty{});
}

TEST(ServiceClient, DecodesWithItsOwnDecoder) {
    const TestHTTPServer server(Answers{{.body = "\"2001-01-01T00:01:00Z\""}});
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>(), {.dateStrategy = DateStrategy::iso8601});
    EXPECT_EQ(performed<Date>(client, itemRequest()), Date::fromReferenceSeconds(60));
}

TEST(ServiceClient, TellsEveryOtherFailureAtOnce) {
    struct Row {
        PlayedResponse answer;
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
        const TestHTTPServer server(Answers{row.answer});
        const ServiceRoute route(server);
        const auto authoriser = std::make_shared<FakeAuthoriser>();
        ServiceClient client(authoriser, {});
        EXPECT_EQ(performed(client, itemRequest("POST")), failure(row.error)) << row.answer.status;
        EXPECT_TRUE(authoriser->updates().empty());
    }
}

TEST(ServiceClient, AnInvalidGrantOfAnOrdinaryRequestIsRetriedAsA401) {
    const TestHTTPServer server(
        Answers{PlayedResponse::json(R"({"error":"invalid_grant"})", 400), freshToken(), {.body = "ok"}});
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>(), {});
    EXPECT_EQ(performed(client, itemRequest()), "ok");
}

TEST(ServiceClient, LogsWhatTheServiceSaidWithoutTheToken) {
    const TestHTTPServer server(Answers{{.status = 404, .body = "gone"}});
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
    Event answering;
    const TestHTTPServer server([&](const ReceivedRequest&) {
        answering.wait();
        return PlayedResponse{};
    });
    const ServiceRoute route(server);
    ServiceClient client(std::make_shared<FakeAuthoriser>(), {});
    std::atomic<bool> wasTold = false;
    Completed<bool> begun;
    const auto target = std::make_shared<BlockOperation>(
        [&, began = begun.callback<Callback<bool>>()]() mutable { began(wasTold); });
    const auto operation = client.perform<std::string>(itemRequest(), target, [&](auto) { wasTold = true; });
    EXPECT_EQ(target->dependencies(), std::vector{operation});
    OperationQueue queue;
    queue.addOperation(target);
    EXPECT_FALSE(target->isReady());
    answering.set();
    EXPECT_TRUE(begun.value());
}

TEST(ServiceClient, TheTargetOperationWaitsForTheSecondTryToo) {
    for (int round = 0; round < 50; ++round) {
        const TestHTTPServer server(Answers{{.status = 401}, freshToken(), {.body = "ok"}});
        const ServiceRoute route(server);
        ServiceClient client(std::make_shared<FakeAuthoriser>(), {});
        std::atomic<bool> wasTold = false;
        Completed<bool> begun;
        const auto target = std::make_shared<BlockOperation>(
            [&, began = begun.callback<Callback<bool>>()]() mutable { began(wasTold); });
        client.perform<std::string>(itemRequest(), target, [&](auto result) { wasTold = result == "ok"; });
        OperationQueue queue;
        queue.addOperation(target);
        ASSERT_TRUE(begun.value());
    }
}

TEST(ServiceClient, RunsItsRequestsInParallel) {
    // Each answer waits for the requests of all.
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
