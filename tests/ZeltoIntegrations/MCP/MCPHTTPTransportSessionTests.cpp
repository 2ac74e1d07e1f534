#include "MCPTransportCalls.h"

#include <Support/Completed.h>
#include <Support/Event.h>

#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <string>
#include <thread>

namespace zelto {
namespace {

using Session = MCPTransportInSession;

TEST(MCPHTTPTransportSession, SendsVersionAndSessionOnceItHoldsThem) {
    TestHTTPServer server([](const ReceivedRequest& request) {
        return request.method == "DELETE" ? status(200)
                                          : jsonResponse(request, "1", {{"Mcp-Session-Id", "s-1"}});
    });
    auto transport = transportTo(server);
    EXPECT_EQ(transport.activeSessionID(), std::nullopt);
    ASSERT_TRUE(send(transport));
    transport.setProtocolVersion(MCPProtocolVersion::v2025_03_26);
    ASSERT_TRUE(notify(transport));
    ASSERT_TRUE(disconnect(transport));
    EXPECT_EQ(server.texts().at(1), "POST /mcp\nAccept: application/json, text/event-stream\n"
                                    "Content-Type: application/json\nMCP-Protocol-Version: 2025-03-26\n"
                                    "Mcp-Session-Id: s-1\nContent-Length: 30\n\n"
                                    R"({"jsonrpc":"2.0","method":"n"})");
    EXPECT_EQ(server.texts().at(2), "DELETE /mcp\nAccept: application/json, text/event-stream\n"
                                    "MCP-Protocol-Version: 2025-03-26\nMcp-Session-Id: s-1\n\n");
    EXPECT_EQ(transport.activeSessionID(), std::nullopt);
}

TEST(MCPHTTPTransportSession, KeepsTheVersionThatItIsGivenWhenASessionBegins) {
    TestHTTPServer server({status(202, {{"Mcp-Session-Id", "s"}}), status(202)});
    MCPHTTPTransport transport(server.url(), nullptr, MCPProtocolVersion::v2024_11_05,
                               URLSessionConfiguration::ephemeral());
    ASSERT_TRUE(notify(transport));
    ASSERT_TRUE(notify(transport));
    const auto requests = server.requests();
    EXPECT_EQ(requests.at(0).headers.value("Mcp-Session-Id"), std::nullopt);
    EXPECT_EQ(requests.at(1).headers.value("Mcp-Session-Id"), "s");
    for (const auto& each : requests) {
        EXPECT_EQ(each.headers.value("MCP-Protocol-Version"), "2024-11-05");
    }
}

TEST(MCPHTTPTransportSession, ClearingTheSessionLeavesTheVersion) {
    Session session(status(202));
    session.transport.setProtocolVersion(MCPProtocolVersion::v2025_11_25);
    session.transport.clearSession();
    EXPECT_EQ(session.transport.activeSessionID(), std::nullopt);
    ASSERT_TRUE(notify(session.transport));
    EXPECT_EQ(session.server.requests().at(1).headers.value("Mcp-Session-Id"), std::nullopt);
    EXPECT_EQ(session.server.requests().at(1).headers.value("MCP-Protocol-Version"), "2025-11-25");
}

TEST(MCPHTTPTransportSession, ADisconnectWithoutASessionMakesNoRequest) {
    TestHTTPServer server(std::vector<PlayedResponse>{});
    auto transport = transportTo(server);
    bool isDone = false;
    transport.disconnect([&, caller = std::this_thread::get_id()](MCPResult<void> result) {
        isDone = result.has_value() && std::this_thread::get_id() == caller;
    });
    EXPECT_TRUE(isDone);
}

TEST(MCPHTTPTransportSession, NotFoundTakesTheSessionAwayAndThenMeansNoEndpoint) {
    const auto first = [](auto& session, auto&& message) {
        EXPECT_EQ(message(session.transport), failed(MCPClientError::sessionExpired()));
        EXPECT_EQ(session.transport.activeSessionID(), std::nullopt);
        EXPECT_EQ(aRequest(session.transport), failed(MCPClientError::endpointNotFound()));
        EXPECT_EQ(aNotification(session.transport), failed(MCPClientError::endpointNotFound()));
        const auto last = session.server.requests().back();
        EXPECT_EQ(last.headers.value("Mcp-Session-Id"), std::nullopt);
        EXPECT_EQ(last.headers.value("MCP-Protocol-Version"), "2025-06-18");
    };
    for (int kind = 0; kind < 3; ++kind) {
        Session session(status(404, {{"Mcp-Session-Id", "other"}}));
        session.transport.setProtocolVersion(MCPProtocolVersion::v2025_06_18);
        if (kind == 0) {
            first(session, aRequest);
        } else if (kind == 1) {
            first(session, aNotification);
        } else {
            first(session, aDisconnect);
        }
    }
}

TEST(MCPHTTPTransportSession, ADisconnectClearsTheSessionByTwoHundredAndByMethodNotAllowed) {
    for (const int code : {200, 202, 204, 299, 405}) {
        Session session(status(code, {{"Mcp-Session-Id", "again"}}));
        session.transport.setProtocolVersion(MCPProtocolVersion::v2025_06_18);
        EXPECT_TRUE(disconnect(session.transport)) << code;
        EXPECT_EQ(session.transport.activeSessionID(), std::nullopt);
        EXPECT_TRUE(disconnect(session.transport));
        EXPECT_EQ(session.server.requests().size(), 2u);
        notify(session.transport);
        const auto last = session.server.requests().back();
        EXPECT_EQ(last.headers.value("Mcp-Session-Id"), std::nullopt);
        EXPECT_EQ(last.headers.value("MCP-Protocol-Version"), "2025-06-18");
    }
}

TEST(MCPHTTPTransportSession, ASessionIDIsTakenFromTwoHundredsAlone) {
    TestHTTPServer server({status(500, {{"Mcp-Session-Id", "no"}}), status(202, {{"Mcp-Session-Id", "one"}}),
                           status(202), status(202, {{"Mcp-Session-Id", ""}}),
                           status(200, {{"Mcp-Session-Id", "two"}, {"Content-Type", "text/plain"}})});
    auto transport = transportTo(server);
    EXPECT_FALSE(notify(transport));
    EXPECT_EQ(transport.activeSessionID(), std::nullopt);
    EXPECT_TRUE(notify(transport));
    EXPECT_EQ(transport.activeSessionID(), "one");
    EXPECT_TRUE(notify(transport));
    EXPECT_TRUE(notify(transport));
    EXPECT_EQ(transport.activeSessionID(), "one");
    EXPECT_FALSE(send(transport));
    EXPECT_EQ(transport.activeSessionID(), "two");
}

TEST(MCPHTTPTransportSession, ALateResponseOfASessionThatIsOverLeavesTheNewOneAlone) {
    for (const auto& late : {status(404), status(202, {{"Mcp-Session-Id", "one"}})}) {
        Event hasArrived;
        Event goOn;
        std::atomic<int> begun = 0;
        TestHTTPServer server([&](const ReceivedRequest& request) {
            if (request.body.find("late") == std::string::npos) {
                return status(202, {{"Mcp-Session-Id", ++begun == 1 ? "one" : "two"}});
            }
            hasArrived.set();
            goOn.wait();
            return late;
        });
        auto transport = transportTo(server);
        EXPECT_TRUE(notify(transport));
        Completed<MCPResult<void>> ended;
        transport.send(MCPNotification{"late", {}}, ended.callback<MCPCompletion<void>>());
        hasArrived.wait();
        transport.clearSession();
        EXPECT_TRUE(notify(transport));
        goOn.set();
        EXPECT_EQ(ended.value(), late.status == 404 ? failure(MCPError(MCPClientError::sessionExpired()))
                                                    : MCPResult<void>());
        EXPECT_EQ(transport.activeSessionID(), "two");
    }
}

TEST(MCPHTTPTransportSession, ASessionIDThatIsNotVisibleASCIIIsNotSentBack) {
    for (const std::string sessionID : {"a b", "s\xC3\xA9", "s\x7F", "a\tb"}) {
        Session session(status(202), sessionID);
        EXPECT_TRUE(notify(session.transport));
        EXPECT_EQ(session.server.requests().at(1).headers.value("Mcp-Session-Id"), std::nullopt) << sessionID;
    }
    Session session(status(202), "!~" + std::string(60'000, 'x'));
    EXPECT_TRUE(notify(session.transport));
    EXPECT_EQ(session.server.requests().at(1).headers.value("Mcp-Session-Id")->size(), 60'002u);
}

} // namespace
} // namespace zelto
