// Sessions that the server drops, while many calls are under way or while the client disconnects.

#include "MCPCalls.h"
#include "MCPExpiringServer.h"

#include <Support/Event.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <deque>
#include <string>
#include <thread>
#include <vector>

namespace zelto {
namespace {

using Called = MCPResult<MCPToolCallResult>;

// Calls of a tool, begun at once on several threads.
class Storm {
  public:
    Storm(MCPClient& client, int count) : results_(static_cast<std::size_t>(count)) {
        constexpr std::size_t threads = 4;
        std::vector<std::thread> callers;
        for (std::size_t thread = 0; thread < threads; ++thread) {
            callers.emplace_back([&, thread] {
                for (auto index = thread; index < results_.size(); index += threads) {
                    client.callTool("t", JSONValue(index),
                                    results_[index].callback<MCPCompletion<MCPToolCallResult>>());
                }
            });
        }
        for (auto& each : callers) {
            each.join();
        }
    }

    std::vector<Called> results() {
        std::vector<Called> all;
        for (auto& each : results_) {
            all.push_back(each.value());
        }
        return all;
    }

  private:
    std::deque<Completed<Called>> results_;
};

void expectSuccess(const std::vector<Called>& results) {
    EXPECT_EQ(std::ranges::count_if(results, [](const auto& each) { return each.has_value(); }),
              std::ssize(results));
}

// How often the messages with this beginning were received.
auto countOf(const Log& log, std::string_view beginning) {
    return std::ranges::count_if(log, [&](const auto& line) { return line.starts_with(beginning); });
}

// Begins a call of a tool, and waits until the server has received it.
struct HeldCall {
    explicit HeldCall(MCPExpiringServer& server, MCPClient& client) : held(server.holdNextCall()) {
        client.callTool("t", {}, end.callback<MCPCompletion<MCPToolCallResult>>());
        held->hasArrived.wait();
    }

    std::shared_ptr<MCPExpiringServer::Held> held;
    Completed<Called> end;
};

TEST(MCPClientExpiry, StormsOfCallsShareOneNewSessionForEachExpiry) {
    constexpr int rounds = 10;
    constexpr int calls = 200;
    MCPExpiringServer server;
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    for (int round = 1; round <= rounds; ++round) {
        server.expireSessions();
        Storm storm(client, calls);
        expectSuccess(storm.results());
        EXPECT_EQ(server.liveSessions(), Log{"session-" + std::to_string(round + 1)});
    }
    const auto log = server.log();
    EXPECT_EQ(countOf(log, "initialize -"), rounds + 1);
    EXPECT_EQ(countOf(log, "notifications/initialized"), rounds + 1);
    EXPECT_EQ(countOf(log, "tools/call -"), 0);
    EXPECT_LE(countOf(log, "tools/call"), rounds * calls * 2);
    ASSERT_TRUE(disconnect(client));
    EXPECT_EQ(server.liveSessions(), Log());
}

TEST(MCPClientExpiry, OfCallsThatFindItAtOnceEachIsSentTwice) {
    constexpr int calls = 50; // at the server at once
    MCPExpiringServer server;
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    server.expireSessions();
    server.holdUntilReceived(calls);
    Storm storm(client, calls);
    expectSuccess(storm.results());
    const auto log = server.log();
    EXPECT_EQ(countOf(log, "tools/call session-1"), calls);
    EXPECT_EQ(countOf(log, "tools/call session-2"), calls);
    EXPECT_EQ(std::ssize(log), 4 + 2 * calls);
}

TEST(MCPClientExpiry, ANewSessionThatFailsFailsEachOfThemOnce) {
    constexpr int calls = 50;
    MCPExpiringServer server;
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    server.expireSessions();
    server.refuseSessions(503);
    server.holdUntilReceived(calls);
    Storm storm(client, calls);
    const Called refused = failed(MCPClientError::unexpectedHTTPStatus(503));
    EXPECT_EQ(storm.results(), std::vector<Called>(calls, refused));
    const auto log = server.log();
    EXPECT_EQ(countOf(log, "initialize -"), 2);
    EXPECT_EQ(std::ssize(log), 3 + calls);
}

TEST(MCPClientExpiry, ALateRefusalOfAnOldSessionIsRepeatedInTheNewOne) {
    MCPExpiringServer server;
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    HeldCall late(server, client);
    server.expireSessions();
    ASSERT_TRUE(ping(client));
    late.held->goOn.set();
    EXPECT_TRUE(late.end.value());
    EXPECT_EQ(server.log(),
              (Log{"initialize -", "notifications/initialized session-1", "tools/call session-1",
                   "ping session-1", "initialize -", "notifications/initialized session-2", "ping session-2",
                   "tools/call session-2"}));
}

TEST(MCPClientExpiry, ACallThatIsMadeWhileASessionBeginsWaitsForIt) {
    MCPExpiringServer server;
    MCPClient client(server.url());
    const auto held = server.holdNextSession();
    Completed<MCPResult<MCPInitializeResult>> connected;
    client.connect(connected.callback<MCPCompletion<MCPInitializeResult>>());
    held->hasArrived.wait();
    Storm storm(client, 10);
    held->goOn.set();
    expectSuccess(storm.results());
    EXPECT_TRUE(connected.value());
    const auto log = server.log();
    EXPECT_EQ(countOf(log, "tools/call session-1"), 10);
    EXPECT_EQ(std::ssize(log), 12);
}

TEST(MCPClientExpiry, ACallThatIsUnderWayOverADisconnectIsNotSentAgain) {
    MCPExpiringServer server;
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    HeldCall call(server, client);
    ASSERT_TRUE(disconnect(client));
    call.held->goOn.set();
    EXPECT_EQ(call.end.value(), failed(MCPClientError::endpointNotFound()));
    EXPECT_EQ(server.log(), (Log{"initialize -", "notifications/initialized session-1",
                                 "tools/call session-1", "DELETE session-1"}));
}

TEST(MCPClientExpiry, ACallThatIsUnderWayOverADisconnectIsNotSentInTheNextSession) {
    MCPExpiringServer server;
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    HeldCall call(server, client);
    ASSERT_TRUE(disconnect(client));
    ASSERT_TRUE(connect(client));
    call.held->goOn.set();
    EXPECT_EQ(call.end.value(), failed(MCPClientError::endpointNotFound()));
    EXPECT_EQ(server.log(),
              (Log{"initialize -", "notifications/initialized session-1", "tools/call session-1",
                   "DELETE session-1", "initialize -", "notifications/initialized session-2"}));
}

TEST(MCPClientExpiry, ADisconnectEndsTheSessionThatACallHasBegunToRenew) {
    MCPExpiringServer server;
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    server.expireSessions();
    const auto held = server.holdNextSession();
    Completed<Called> called;
    client.callTool("t", {}, called.callback<MCPCompletion<MCPToolCallResult>>());
    held->hasArrived.wait();
    Completed<MCPResult<void>> disconnected;
    client.disconnect(disconnected.callback<MCPCompletion<void>>());
    held->goOn.set();
    EXPECT_EQ(called.value(), failed(MCPClientError::endpointNotFound()));
    EXPECT_TRUE(disconnected.value());
    EXPECT_EQ(server.log(),
              (Log{"initialize -", "notifications/initialized session-1", "tools/call session-1",
                   "initialize -", "notifications/initialized session-2", "DELETE session-2"}));
    EXPECT_EQ(server.liveSessions(), Log());
}

TEST(MCPClientExpiry, ADisconnectThatIsMadeBeforeTheConnectionIsThereEndsIt) {
    MCPExpiringServer server;
    MCPClient client(server.url());
    Completed<MCPResult<MCPInitializeResult>> connected;
    client.connect(connected.callback<MCPCompletion<MCPInitializeResult>>());
    EXPECT_TRUE(disconnect(client));
    EXPECT_TRUE(connected.value());
    EXPECT_EQ(server.log(), (Log{"initialize -", "notifications/initialized session-1", "DELETE session-1"}));
}

TEST(MCPClientExpiry, ConnectionsThatAreMadeAtOnceBeginOneAfterTheOther) {
    MCPExpiringServer server;
    MCPClient client(server.url());
    Completed<MCPResult<MCPInitializeResult>> first;
    client.connect(first.callback<MCPCompletion<MCPInitializeResult>>());
    ASSERT_TRUE(connect(client));
    ASSERT_TRUE(first.value());
    ASSERT_TRUE(ping(client));
    EXPECT_EQ(server.log(), (Log{"initialize -", "notifications/initialized session-1", "initialize -",
                                 "notifications/initialized session-2", "ping session-2"}));
}

TEST(MCPClientExpiry, AfterADisconnectThatIsRefusedNoCallBeginsASessionUntilTheNextConnect) {
    MCPExpiringServer server;
    server.refuseEnds(500);
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    EXPECT_EQ(disconnect(client), failed(MCPClientError::unexpectedHTTPStatus(500)));
    EXPECT_TRUE(ping(client)); // the session is there
    server.expireSessions();
    EXPECT_EQ(ping(client), failed(MCPClientError::endpointNotFound()));
    EXPECT_EQ(callTool(client, "t"), failed(MCPClientError::endpointNotFound()));
    ASSERT_TRUE(connect(client));
    server.expireSessions();
    EXPECT_TRUE(ping(client));
    EXPECT_EQ(server.log(), (Log{"initialize -", "notifications/initialized session-1", "DELETE session-1",
                                 "ping session-1", "ping session-1", "tools/call -", "initialize -",
                                 "notifications/initialized session-2", "ping session-2", "initialize -",
                                 "notifications/initialized session-3", "ping session-3"}));
}

TEST(MCPClientExpiry, ASecondExpiryOverADisconnectIsNoExpiry) {
    MCPExpiringServer server;
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    server.expireSessions();
    const auto first = server.holdNextCall();
    Completed<Called> called;
    client.callTool("t", {}, called.callback<MCPCompletion<MCPToolCallResult>>());
    first->hasArrived.wait();
    const auto second = server.holdNextCall();
    first->goOn.set();
    second->hasArrived.wait();
    ASSERT_TRUE(disconnect(client));
    second->goOn.set();
    EXPECT_EQ(called.value(), failed(MCPClientError::endpointNotFound()));
    EXPECT_EQ(countOf(server.log(), "tools/call"), 2);
    EXPECT_EQ(countOf(server.log(), "initialize"), 2);
}

} // namespace
} // namespace zelto
