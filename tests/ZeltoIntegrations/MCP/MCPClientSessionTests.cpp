#include "MCPCalls.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>

namespace zelto {
namespace {

// Whatever session the client had before.
void expectPlainHandshakes(MCPServer& server, int count) {
    for (const auto& each : server.http().requests()) {
        if (methodOf(each) == "initialize") {
            --count;
            EXPECT_EQ(each.headers.value("MCP-Protocol-Version"), std::nullopt);
            EXPECT_EQ(each.headers.value("Mcp-Session-Id"), std::nullopt);
        }
    }
    EXPECT_EQ(count, 0);
}

TEST(MCPClientSession, ConnectingAgainForgetsTheSessionWithoutADelete) {
    MCPServer server([](const ReceivedRequest& request) { return jsonResponse(request, "{}"); });
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    ASSERT_TRUE(connect(client));
    ASSERT_TRUE(ping(client));
    EXPECT_EQ(server.log(), (Log{"initialize -", "notifications/initialized session-1", "initialize -",
                                 "notifications/initialized session-2", "ping session-2"}));
    expectPlainHandshakes(server, 2);
}

TEST(MCPClientSession, AListingWhoseSessionExpiresBeginsAgainFromTheFirstPage) {
    MCPServer server(numbered([](const ReceivedRequest& request, int count) {
        return count == 2 ? status(404) : jsonResponse(request, count == 4 ? page("c") : page("ab", "2"));
    }));
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    EXPECT_EQ(namesOf(listTools(client)), (Log{"a", "b", "c"}));
    EXPECT_EQ(server.log(),
              (Log{"initialize -", "notifications/initialized session-1", "tools/list session-1",
                   "tools/list session-1", "initialize -", "notifications/initialized session-2",
                   "tools/list session-2", "tools/list session-2"}));
}

TEST(MCPClientSession, ASessionThatTheServerDroppedIsBegunAgainOnce) {
    for (const std::string method : {"ping", "tools/list", "tools/call"}) {
        MCPServer server(numbered([](const ReceivedRequest& request, int count) {
            return count == 1 ? status(404) : jsonResponse(request, R"({"tools":[],"content":[]})");
        }));
        MCPClient client(server.url());
        ASSERT_TRUE(connect(client));
        if (method == "ping") {
            EXPECT_TRUE(ping(client));
        } else if (method == "tools/list") {
            EXPECT_TRUE(listTools(client));
        } else {
            EXPECT_TRUE(callTool(client, "t", JSONValue(1)));
        }
        EXPECT_EQ(server.log(),
                  (Log{"initialize -", "notifications/initialized session-1", method + " session-1",
                       "initialize -", "notifications/initialized session-2", method + " session-2"}));
        expectPlainHandshakes(server, 2);
    }
}

TEST(MCPClientSession, ASecondExpiryIsDelivered) {
    MCPServer server([](const ReceivedRequest&) { return status(404); });
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    EXPECT_EQ(callTool(client, "t"), failed(MCPClientError::sessionExpired()));
    EXPECT_EQ(server.log().size(), 6u);
    EXPECT_EQ(callTool(client, "t"), failed(MCPClientError::endpointNotFound()));
}

TEST(MCPClientSession, ARetryWhoseConnectionFailsDeliversThatError) {
    std::atomic<int> handshakes = 0;
    TestHTTPServer server([&](const ReceivedRequest& request) {
        if (methodOf(request) == "initialize" && ++handshakes == 1) {
            return jsonResponse(
                request,
                R"({"protocolVersion":"2025-11-25","capabilities":{},"serverInfo":{"name":"s","version":"1"}})",
                {{"Mcp-Session-Id", "s"}});
        }
        return status(methodOf(request) == "ping" ? 404 : methodOf(request) == "initialize" ? 503 : 202);
    });
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    EXPECT_EQ(ping(client), failed(MCPClientError::unexpectedHTTPStatus(503)));
    EXPECT_EQ(handshakes, 2);
}

TEST(MCPClientSession, OtherFailuresAreNotTriedAgain) {
    MCPServer server(numbered([](const ReceivedRequest&, int) { return status(500); }));
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    EXPECT_EQ(ping(client), failed(MCPClientError::unexpectedHTTPStatus(500)));
    EXPECT_EQ(server.log().size(), 3u);
}

TEST(MCPClientSession, DisconnectingEndsTheSessionAndIsNotTriedAgain) {
    std::atomic<int> code = 404;
    MCPServer server([&](const ReceivedRequest& request) {
        return request.method == "DELETE" ? status(code) : jsonResponse(request, "{}");
    });
    MCPClient client(server.url());
    EXPECT_TRUE(disconnect(client));
    ASSERT_TRUE(connect(client));
    EXPECT_EQ(disconnect(client), failed(MCPClientError::sessionExpired()));
    ASSERT_TRUE(connect(client));
    code = 200;
    EXPECT_TRUE(disconnect(client));
    EXPECT_TRUE(disconnect(client));
    EXPECT_EQ(server.log(), (Log{"initialize -", "notifications/initialized session-1", "DELETE session-1",
                                 "initialize -", "notifications/initialized session-2", "DELETE session-2"}));
    EXPECT_EQ(server.http().requests().back().headers.value("MCP-Protocol-Version"), "2025-11-25");
}

TEST(MCPClientSession, WorksWithAServerWithoutSessions) {
    MCPServer server([](const ReceivedRequest& request) { return jsonResponse(request, "{}"); }, false);
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    ASSERT_TRUE(ping(client));
    ASSERT_TRUE(disconnect(client));
    EXPECT_EQ(server.log(), (Log{"initialize -", "notifications/initialized -", "ping -"}));
}

} // namespace
} // namespace zelto
