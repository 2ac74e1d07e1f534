// The handle and the time-out of one call, and what the host learns of new sessions.

#include "MCPCalls.h"
#include "MCPExpiringServer.h"

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace zelto {
namespace {

using Called = MCPResult<MCPToolCallResult>;
constexpr MCPCallOptions soon{.timeout = TimeInterval{0.05}};

// A call of a tool that the server has received, and lets go when this is destroyed.
struct HeldCall {
    HeldCall(MCPExpiringServer& server, MCPClient& client, const MCPCallOptions& options = {})
        : held(server.holdNextCall()),
          handle(client.callTool("t", {}, end.callback<MCPCompletion<MCPToolCallResult>>(), options)) {
        held->hasArrived.wait();
    }

    ~HeldCall() { held->goOn.set(); }

    std::shared_ptr<MCPExpiringServer::Held> held;
    Completed<Called> end;
    MCPCall handle;
};

// A client in a session, which ends before the server.
struct MCPClientCall : testing::Test {
    void SetUp() override { ASSERT_TRUE(connect(client)); }

    MCPExpiringServer server;
    MCPClient client{server.url()};
};

const Log handshake{"initialize -", "notifications/initialized session-1"};

Log with(Log log, const Log& more) {
    log.insert(log.end(), more.begin(), more.end());
    return log;
}

TEST_F(MCPClientCall, IsCancelledByItsHandleAndNoOtherIs) {
    const HeldCall other(server, client);
    HeldCall call(server, client);
    call.handle.cancel();
    EXPECT_EQ(connectionError(call.end.value()), URLErrorCode::cancelled);
    EXPECT_FALSE(other.end.hasCome());
    EXPECT_TRUE(ping(client));
    other.held->goOn.set();
    auto end = other.end;
    EXPECT_TRUE(end.value());
    EXPECT_EQ(server.log(),
              with(handshake, {"tools/call session-1", "tools/call session-1", "ping session-1"}));
}

TEST_F(MCPClientCall, HandlesOfEndedCallsAndOfNoneDoNothing) {
    MCPCall().cancel();
    Completed<MCPResult<void>> pinged;
    const auto handle = client.ping(pinged.callback<MCPCompletion<void>>());
    EXPECT_TRUE(pinged.value());
    handle.cancel();
    handle.cancel();
    EXPECT_TRUE(ping(client));
}

TEST_F(MCPClientCall, ADroppedHandleLeavesTheCall) {
    HeldCall call(server, client);
    call.handle = MCPCall();
    call.held->goOn.set();
    EXPECT_TRUE(call.end.value());
}

TEST_F(MCPClientCall, EndsAtItsTimeoutAndNoOtherDoes) {
    const HeldCall other(server, client);
    HeldCall call(server, client, soon);
    const auto result = call.end.value();
    EXPECT_EQ(result, failed(URLError{URLErrorCode::timedOut, "The call did not end within its time-out."}));
    EXPECT_FALSE(other.end.hasCome());
    EXPECT_TRUE(ping(client));
}

TEST_F(MCPClientCall, WithoutTimeLeftIsNotSent) {
    for (const double seconds : {0.0, -1.0}) {
        Completed<MCPResult<void>> pinged;
        client.ping(pinged.callback<MCPCompletion<void>>(), {.timeout = TimeInterval{seconds}});
        ASSERT_TRUE(pinged.hasCome());
        EXPECT_EQ(connectionError(pinged.value()), URLErrorCode::timedOut);
    }
    EXPECT_EQ(server.log(), handshake);
}

TEST_F(MCPClientCall, AnEndWithinTheTimeoutIsTheResult) {
    for (int count = 0; count < 20; ++count) {
        Completed<MCPResult<void>> pinged;
        client.ping(pinged.callback<MCPCompletion<void>>(), {.timeout = TimeInterval{3600}});
        EXPECT_TRUE(pinged.value());
    }
    Completed<MCPResult<void>> pinged;
    client.ping(pinged.callback<MCPCompletion<void>>(), {.timeout = TimeInterval{1e300}});
    EXPECT_TRUE(pinged.value());
}

TEST_F(MCPClientCall, ThatWaitsForASessionIsCancelledAloneAndTheOthersGetIt) {
    server.expireSessions();
    const auto held = server.holdNextSession();
    Completed<Called> first;
    Completed<Called> second;
    Completed<Called> third;
    const auto handle = client.callTool("t", {}, first.callback<MCPCompletion<MCPToolCallResult>>());
    held->hasArrived.wait();
    client.callTool("t", {}, second.callback<MCPCompletion<MCPToolCallResult>>(), soon);
    client.callTool("t", {}, third.callback<MCPCompletion<MCPToolCallResult>>());
    handle.cancel();
    EXPECT_TRUE(first.hasCome());
    EXPECT_EQ(connectionError(first.value()), URLErrorCode::cancelled);
    EXPECT_EQ(connectionError(second.value()), URLErrorCode::timedOut);
    EXPECT_FALSE(third.hasCome());
    held->goOn.set();
    EXPECT_TRUE(third.value());
    EXPECT_EQ(server.log(), with(handshake, {"tools/call session-1", "initialize -",
                                             "notifications/initialized session-2", "tools/call session-2"}));
}

TEST_F(MCPClientCall, ASessionThatACancelledCallHasBegunServesLaterCalls) {
    for (const bool cancelsAll : {false, true}) {
        server.expireSessions();
        const auto held = server.holdNextSession();
        Completed<Called> called;
        const auto handle = client.callTool("t", {}, called.callback<MCPCompletion<MCPToolCallResult>>());
        held->hasArrived.wait();
        cancelsAll ? client.cancelAll() : handle.cancel();
        EXPECT_EQ(connectionError(called.value()), URLErrorCode::cancelled);
        held->goOn.set();
        EXPECT_TRUE(ping(client));
    }
}

TEST(MCPClientConnection, IsCancelledAndTheClientConnectsAgain) {
    MCPExpiringServer server;
    MCPClient client(server.url());
    for (const bool timesOut : {false, true}) {
        const auto held = server.holdNextSession();
        Completed<MCPResult<MCPInitializeResult>> connected;
        const auto handle = client.connect(connected.callback<MCPCompletion<MCPInitializeResult>>(),
                                           timesOut ? soon : MCPCallOptions());
        if (!timesOut) {
            held->hasArrived.wait();
            handle.cancel();
        }
        EXPECT_EQ(connectionError(connected.value()),
                  timesOut ? URLErrorCode::timedOut : URLErrorCode::cancelled);
        held->goOn.set();
        EXPECT_TRUE(connect(client));
        EXPECT_TRUE(ping(client));
    }
}

TEST(MCPClientConnection, ThatIsCancelledLeavesOneThatOthersWaitFor) {
    MCPExpiringServer server;
    MCPClient client(server.url());
    const auto held = server.holdNextSession();
    Completed<MCPResult<MCPInitializeResult>> connected;
    const auto handle = client.connect(connected.callback<MCPCompletion<MCPInitializeResult>>());
    held->hasArrived.wait();
    Completed<MCPResult<void>> pinged;
    client.ping(pinged.callback<MCPCompletion<void>>());
    handle.cancel();
    EXPECT_EQ(connectionError(connected.value()), URLErrorCode::cancelled);
    held->goOn.set();
    EXPECT_TRUE(pinged.value());
    EXPECT_EQ(server.log(), with(handshake, {"ping session-1"}));
}

TEST_F(MCPClientCall, ADisconnectionIsCancelledAndTheServerIsTold) {
    const auto held = server.hold("DELETE");
    Completed<MCPResult<void>> disconnected;
    const auto handle = client.disconnect(disconnected.callback<MCPCompletion<void>>());
    held->hasArrived.wait();
    handle.cancel();
    EXPECT_EQ(connectionError(disconnected.value()), URLErrorCode::cancelled);
    held->goOn.set();
    EXPECT_TRUE(eventually([&] { return server.liveSessions().empty(); }));
}

// Never completes, nor ends a call.
class SilentTransport final : public MCPTransport {
  public:
    std::optional<std::string> activeSessionID() const override { return std::nullopt; }

    void setProtocolVersion(std::optional<MCPProtocolVersion>) override {}

    void clearSession() override {}

    void send(MCPRequest, MCPCompletion<MCPResponse> completion) override {
        requests.push_back(std::move(completion));
    }

    void send(MCPNotification, MCPCompletion<void> completion) override { completion({}); }

    void disconnect(MCPCompletion<void> completion) override { ends.push_back(std::move(completion)); }

    std::vector<MCPCompletion<MCPResponse>> requests;
    std::vector<MCPCompletion<void>> ends;
};

TEST(MCPClientConnection, ATransportThatCannotEndACallHoldsNone) {
    const auto transport = std::make_shared<SilentTransport>();
    MCPClient client(transport);
    std::vector<URLErrorCode> codes;
    const auto note = [&](const auto& result) { codes.push_back(connectionError(result).value()); };
    client.ping([&](MCPResult<void> result) { note(result); }).cancel();
    client.connect([&](MCPResult<MCPInitializeResult> result) { note(result); }).cancel();
    client.disconnect([&](MCPResult<void> result) { note(result); }).cancel();
    EXPECT_EQ(codes, std::vector(3, URLErrorCode::cancelled));
    for (auto& each : transport->requests) {
        each(failed(MCPClientError::endpointNotFound())); // too late
    }
    for (auto& each : transport->ends) {
        each({});
    }
    EXPECT_EQ(codes.size(), 3u);
}

// What the host has learned of sessions.
class Sessions {
  public:
    explicit Sessions(MCPClient& client) {
        client.setSessionObserver([this](const MCPInitializeResult& server) {
            const std::lock_guard guard(lock_);
            capabilities_.push_back(JSONEncoder().encode(server.capabilities).value());
        });
    }

    Log capabilities() const {
        const std::lock_guard guard(lock_);
        return capabilities_;
    }

  private:
    mutable std::mutex lock_;
    Log capabilities_;
};

TEST(MCPClientSessions, TheHostLearnsTheCapabilitiesOfEachBeforeItsCallsGoOn) {
    MCPExpiringServer server;
    server.setCapabilities(R"({"tools":{}})");
    MCPClient client(server.url());
    const Sessions sessions(client);
    ASSERT_TRUE(connect(client));
    EXPECT_EQ(sessions.capabilities(), Log{R"({"tools":{}})"});
    server.expireSessions();
    server.setCapabilities(R"({"tools":{"listChanged":true}})");
    const auto held = server.holdNextCall();
    Completed<Called> called;
    client.callTool("t", {}, called.callback<MCPCompletion<MCPToolCallResult>>());
    held->hasArrived.wait();
    const auto again = server.holdNextCall();
    held->goOn.set();
    again->hasArrived.wait();
    EXPECT_EQ(sessions.capabilities(), (Log{R"({"tools":{}})", R"({"tools":{"listChanged":true}})"}));
    again->goOn.set();
    EXPECT_TRUE(called.value());
    server.refuseSessions(503);
    server.expireSessions();
    EXPECT_FALSE(ping(client));
    client.setSessionObserver(nullptr);
    server.refuseSessions(0);
    EXPECT_TRUE(connect(client));
    EXPECT_EQ(sessions.capabilities().size(), 2u);
}

} // namespace
} // namespace zelto
