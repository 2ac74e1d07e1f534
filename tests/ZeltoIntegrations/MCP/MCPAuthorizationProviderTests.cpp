#include "MCPCalls.h"

#include <Support/Event.h>
#include <Support/HostMistakes.h>
#include <Support/Sanitizers.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace zelto {
namespace {

// Gives the same headers, or error, each time.
class FixedProvider final : public MCPAuthorizationProvider {
  public:
    explicit FixedProvider(MCPResult<Headers> headers) : headers_(std::move(headers)) {}

    void authorizationHeaders(MCPCompletion<Headers> completion) override {
        ++count;
        completion(headers_);
    }

    int count = 0;

  private:
    MCPResult<Headers> headers_;
};

TEST(MCPAuthorizationProvider, AProvidersHeadersReplaceAnyOther) {
    TestHTTPServer server([](const ReceivedRequest& request) {
        return request.method == "DELETE" ? status(200)
                                          : jsonResponse(request, "1", {{"Mcp-Session-Id", "s"}});
    });
    const auto provider = std::make_shared<FixedProvider>(
        MCPAuthorizationProvider::Headers{{"Authorization", "Bearer t"}, {"accept", "x/y"}});
    auto transport = transportTo(server, provider);
    ASSERT_TRUE(send(transport));
    ASSERT_TRUE(notify(transport));
    ASSERT_TRUE(disconnect(transport));
    EXPECT_EQ(provider->count, 3);
    for (const auto& request : server.requests()) {
        EXPECT_EQ(request.headers.value("Authorization"), "Bearer t");
        EXPECT_EQ(request.headers.value("Accept"), "x/y");
    }
}

TEST(MCPAuthorizationProvider, AProvidersFailureEndsTheCallWithItAndSendsNothing) {
    TestHTTPServer server(std::vector<PlayedResponse>{});
    const MCPError error(MCPAuthorizationError{"The user is signed out."});
    auto transport = transportTo(server, std::make_shared<FixedProvider>(failure(error)));
    const auto caller = std::this_thread::get_id();
    bool isSame = false;
    transport.send(MCPRequest{MCPRequestID::int_(1), "m", {}}, [&](MCPResult<MCPResponse> result) {
        isSame = std::this_thread::get_id() == caller && result == failure(error);
    });
    EXPECT_TRUE(isSame);
    EXPECT_EQ(notify(transport), failure(error));
}

TEST(MCPAuthorizationProvider, AHeaderThatMayNotBeSentEndsTheCall) {
    TestHTTPServer server(std::vector<PlayedResponse>{});
    auto transport = transportTo(server, std::make_shared<FixedProvider>(MCPAuthorizationProvider::Headers{
                                             {"Authorization", "a\r\nX: y"}}));
    EXPECT_EQ(connectionError(send(transport)), URLErrorCode::invalidRequest);
}

// Passes its callback to a function.
class FreeProvider final : public MCPAuthorizationProvider {
  public:
    using Responder = std::function<void(MCPCompletion<Headers>)>;

    explicit FreeProvider(Responder responder) : responder_(std::move(responder)) {}

    void authorizationHeaders(MCPCompletion<Headers> completion) override {
        responder_(std::move(completion));
    }

  private:
    Responder responder_;
};

using Headers = MCPAuthorizationProvider::Headers;

std::shared_ptr<FreeProvider> providerThat(FreeProvider::Responder response) {
    return std::make_shared<FreeProvider>(std::move(response));
}

const MCPError noResponse(MCPAuthorizationError{"The provider of credentials gave no result."});

TEST(MCPAuthorizationProvider, ItsFailureAtADisconnectLeavesTheSession) {
    TestHTTPServer server([](const ReceivedRequest& request) {
        return jsonResponse(request, "1", {{"Mcp-Session-Id", "s"}});
    });
    const MCPError error(MCPAuthorizationError{"The user is signed out."});
    auto transport = transportTo(
        server, providerThat([&, isFirst = true](MCPCompletion<Headers> completion) mutable {
            completion(std::exchange(isFirst, false) ? MCPResult<Headers>(Headers()) : failure(error));
        }));
    ASSERT_TRUE(send(transport));
    EXPECT_EQ(disconnect(transport), failure(error));
    EXPECT_EQ(transport.activeSessionID(), "s");
    EXPECT_EQ(server.requests().size(), 1u);
}

TEST(MCPAuthorizationProvider, LettingGoOfItsCallbackEndsTheCallAndSendsNothing) {
    TestHTTPServer server(std::vector<PlayedResponse>{});
    const DroppedCallbacks dropped;
    auto transport = transportTo(server, providerThat([](MCPCompletion<Headers>) {}));
    EXPECT_EQ(send(transport), failure(noResponse));
    EXPECT_EQ(notify(transport), failure(noResponse));
    EXPECT_EQ(dropped.count(), 2);
}

TEST(MCPAuthorizationProvider, LettingGoOfItsCallbackLaterEndsTheCallToo) {
    TestHTTPServer server(std::vector<PlayedResponse>{});
    const DroppedCallbacks dropped;
    MCPCompletion<Headers> kept;
    auto transport = transportTo(
        server, providerThat([&](MCPCompletion<Headers> completion) { kept = std::move(completion); }));
    Completed<MCPResult<void>> sent;
    transport.send(MCPNotification{"n", {}}, sent.callback<MCPCompletion<void>>());
    EXPECT_FALSE(sent.hasCome());
    kept = {};
    EXPECT_EQ(sent.value(), failure(noResponse));
}

TEST(MCPAuthorizationProvider, ThrowingEndsTheCallAndSendsNothing) {
    TestHTTPServer server(std::vector<PlayedResponse>{});
    const DroppedCallbacks dropped;
    const ContainedExceptions contained;
    auto transport = transportTo(
        server, providerThat([](MCPCompletion<Headers>) { throw std::runtime_error("no credentials"); }));
    EXPECT_EQ(send(transport), failure(noResponse));
    EXPECT_EQ(notify(transport), failure(noResponse));
    EXPECT_EQ(contained.count(), 2);
}

TEST(MCPAuthorizationProvider, ThrowingWithItsCallbackKeptEndsTheCallForGood) {
    TestHTTPServer server(std::vector<PlayedResponse>{});
    const ContainedExceptions contained;
    MCPCompletion<Headers> kept;
    auto transport = transportTo(server, providerThat([&](MCPCompletion<Headers> completion) {
                                     kept = std::move(completion);
                                     throw std::runtime_error("later");
                                 }));
    EXPECT_EQ(send(transport), failure(noResponse));
    kept(Headers());
}

TEST(MCPAuthorizationProvider, ThrowingAfterTheResponseChangesNothing) {
    TestHTTPServer server([](const ReceivedRequest& request) { return jsonResponse(request, "1"); });
    const ContainedExceptions contained;
    auto transport = transportTo(server, providerThat([](MCPCompletion<Headers> completion) {
                                     completion(Headers());
                                     throw std::runtime_error("too late");
                                 }));
    EXPECT_TRUE(send(transport));
    EXPECT_EQ(contained.count(), 1);
}

TEST(MCPAuthorizationProvider, LettingGoOfItsCallbackHoldsNoClient) {
    TestHTTPServer server(std::vector<PlayedResponse>{});
    const DroppedCallbacks dropped;
    auto provider = providerThat([](MCPCompletion<Headers>) {});
    const std::weak_ptr<FreeProvider> trace = provider;
    {
        MCPClient client(server.url(), std::exchange(provider, nullptr));
        EXPECT_EQ(ping(client), failure(noResponse));
    }
    EXPECT_TRUE(eventually([&] { return trace.expired(); }));
}

// Completes when the test says so.
class SlowProvider final : public MCPAuthorizationProvider {
  public:
    void authorizationHeaders(MCPCompletion<Headers> completion) override {
        pending.push_back(std::move(completion));
    }

    std::vector<MCPCompletion<Headers>> pending;
};

TEST(MCPAuthorizationProvider, AProviderMayCompleteLaterOnAnotherThread) {
    TestHTTPServer server({status(202)});
    const auto provider = std::make_shared<SlowProvider>();
    Completed<MCPResult<void>> sent;
    {
        auto transport = transportTo(server, provider);
        transport.send(MCPNotification{"n", {}}, sent.callback<MCPCompletion<void>>());
    }
    EXPECT_FALSE(sent.hasCome());
    std::thread([&] { provider->pending.at(0)(MCPAuthorizationProvider::Headers{}); }).join();
    EXPECT_TRUE(sent.value());
}

TEST(MCPAuthorizationProvider, CancellingEndsWhatWaitsForTheProviderAndSendsNothing) {
    TestHTTPServer server(std::vector<PlayedResponse>{});
    const auto provider = std::make_shared<SlowProvider>();
    auto transport = transportTo(server, provider);
    Completed<MCPResult<void>> sent;
    transport.send(MCPNotification{"n", {}}, sent.callback<MCPCompletion<void>>());
    transport.cancelAll();
    EXPECT_EQ(connectionError(sent.value()), URLErrorCode::cancelled);
    provider->pending.at(0)(MCPAuthorizationProvider::Headers{});
}

TEST(MCPAuthorizationProvider, OneThatNeverCompletesHoldsNoClientThatWasCancelled) {
    TestHTTPServer server(std::vector<PlayedResponse>{});
    const DroppedCallbacks dropped;
    auto provider = std::make_shared<SlowProvider>();
    const std::weak_ptr<SlowProvider> trace = provider;
    {
        MCPClient client(server.url(), std::exchange(provider, nullptr));
        Completed<MCPResult<void>> end;
        client.ping(end.callback<MCPCompletion<void>>());
        client.cancelAll();
        EXPECT_EQ(connectionError(end.value()), URLErrorCode::cancelled);
    }
    EXPECT_TRUE(trace.expired());
}

TEST(MCPAuthorizationProvider, CompletingTwiceSendsAndCompletesOnce) {
    TestHTTPServer server({status(202)});
    const auto provider = std::make_shared<SlowProvider>();
    auto transport = transportTo(server, provider);
    Completed<MCPResult<void>> sent;
    transport.send(MCPNotification{"n", {}}, sent.callback<MCPCompletion<void>>());
    const auto response = [&] { provider->pending.at(0)(Headers()); };
    response();
    EXPECT_TRUE(sent.value());
#ifdef NDEBUG
    response();
#elif !defined(ZELTO_ADDRESS_SANITIZER) && !defined(ZELTO_THREAD_SANITIZER)
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(response(), "twice");
#endif
}

TEST(MCPAuthorizationProvider, CancellingWhileItCompletesEndsTheCall) {
    Event goOn;
    TestHTTPServer server([&](const ReceivedRequest& request) {
        goOn.wait();
        return jsonResponse(request, "1");
    });
    constexpr int rounds = 300;
    for (int round = 0; round < rounds; ++round) {
        const auto provider = std::make_shared<SlowProvider>();
        auto transport = transportTo(server, provider);
        Completed<MCPResult<MCPResponse>> end;
        transport.send(MCPRequest{MCPRequestID::int_(round), "m", {}},
                       end.callback<MCPCompletion<MCPResponse>>());
        std::atomic<bool> isThere = false;
        std::thread answering([&] {
            isThere = true;
            provider->pending.at(0)(Headers());
        });
        while (!isThere) {
        }
        transport.cancelAll();
        answering.join();
        const bool hasEnded = eventually([&] { return end.hasCome(); });
        EXPECT_TRUE(hasEnded) << round;
        if (!hasEnded) {
            break;
        }
        EXPECT_EQ(connectionError(end.value()), URLErrorCode::cancelled);
    }
    goOn.set();
}

} // namespace
} // namespace zelto
