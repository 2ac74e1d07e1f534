#include "MCPCalls.h"

#include <gtest/gtest.h>

#include <limits>
#include <regex>
#include <set>

namespace zelto {
namespace {

PlayedResponse errorResponse(const ReceivedRequest& request, std::string_view members) {
    return PlayedResponse::json(R"({"jsonrpc":"2.0","id":)" + idOf(request) + "," + std::string(members) +
                                "}");
}

TEST(MCPClient, ConnectsByTheHandshake) {
    MCPServer server([](const ReceivedRequest& request) { return jsonResponse(request, "{}"); });
    MCPClient client(server.url(), nullptr, URLSessionConfiguration::ephemeral(),
                     MCPCapabilities{{{"roots", JSONValue(JSONObject{{"listChanged", true}})}}},
                     {"Mail", "3.1"});
    const auto result = connect(client);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->serverInfo, (MCPImplementationInfo{"s", "1"}));
    EXPECT_EQ(result->capabilities["tools"], JSONValue(JSONObject()));
    const auto requests = server.http().requests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_EQ(
        requests[0].body,
        R"({"jsonrpc":"2.0","id":)" + idOf(requests[0]) +
            R"(,"method":"initialize","params":{"protocolVersion":"2025-11-25",)"
            R"("capabilities":{"roots":{"listChanged":true}},"clientInfo":{"name":"Mail","version":"3.1"}}})");
    EXPECT_EQ(requests[1].body, R"({"jsonrpc":"2.0","method":"notifications/initialized"})");
    EXPECT_EQ(requests[0].headers.value("MCP-Protocol-Version"), std::nullopt);
    EXPECT_EQ(requests[1].headers.value("MCP-Protocol-Version"), "2025-11-25");
    EXPECT_EQ(requests[1].headers.value("Mcp-Session-Id"), "session-1");
}

TEST(MCPClient, IsCalledZeltoByDefault) {
    MCPServer server([](const ReceivedRequest& request) { return jsonResponse(request, "{}"); });
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    EXPECT_TRUE(server.http().requests().at(0).body.ends_with(
        R"("capabilities":{},"clientInfo":{"name":"Zelto","version":"1.0.0"}}})"));
}

TEST(MCPClient, NumbersItsRequestsByFreshUpperCaseUUIDs) {
    MCPServer server([](const ReceivedRequest& request) { return jsonResponse(request, "{}"); });
    MCPClient client(server.url());
    std::set<std::string> ids;
    constexpr int calls = 5;
    for (int call = 0; call < calls; ++call) {
        ASSERT_TRUE(ping(client));
        ids.insert(idOf(server.http().requests().back()));
    }
    EXPECT_EQ(ids.size(), static_cast<std::size_t>(calls));
    for (const auto& id : ids) {
        EXPECT_TRUE(std::regex_match(
            id, std::regex(R"("[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}")")))
            << id;
    }
}

TEST(MCPClient, TakesAnOlderVersionAndSpeaksItFromThenOn) {
    MCPServer server([](const ReceivedRequest& request) { return jsonResponse(request, "{}"); });
    server.protocolVersion = "2024-11-05";
    MCPClient client(server.url());
    EXPECT_EQ(connect(client)->protocolVersion, MCPProtocolVersion::v2024_11_05);
    ASSERT_TRUE(ping(client));
    for (const std::size_t index : {1u, 2u}) {
        EXPECT_EQ(server.http().requests().at(index).headers.value("MCP-Protocol-Version"), "2024-11-05");
    }
}

TEST(MCPClient, AVersionThatItDoesNotKnowFailsTheConnection) {
    MCPServer server([](const ReceivedRequest& request) { return jsonResponse(request, "{}"); });
    server.protocolVersion = "1999-01-01";
    MCPClient client(server.url());
    EXPECT_EQ(connect(client), failed(MCPClientError::unsupportedProtocolVersion("1999-01-01")));
    ASSERT_TRUE(ping(client));
    const auto last = server.http().requests().back();
    EXPECT_EQ(last.headers.value("MCP-Protocol-Version"), std::nullopt);
    EXPECT_EQ(last.headers.value("Mcp-Session-Id"), std::nullopt);
}

TEST(MCPClient, AConfirmationThatFailsFailsTheConnection) {
    TestHTTPServer server([](const ReceivedRequest& request) {
        return methodOf(request) == "initialize"
                   ? jsonResponse(
                         request,
                         R"({"protocolVersion":"2025-11-25","capabilities":{},"serverInfo":{"name":"s","version":"1"}})",
                         {{"Mcp-Session-Id", "s"}})
                   : status(methodOf(request) == "ping" ? 404 : 500);
    });
    MCPClient client(server.url());
    EXPECT_EQ(connect(client), failed(MCPClientError::unexpectedHTTPStatus(500)));
    // Without a session, none can have expired.
    EXPECT_EQ(ping(client), failed(MCPClientError::endpointNotFound()));
    EXPECT_EQ(server.requests().back().headers.value("MCP-Protocol-Version"), std::nullopt);
    EXPECT_TRUE(disconnect(client));
    EXPECT_EQ(server.requests().size(), 3u);
}

TEST(MCPClient, AnInitializationThatFailsDeliversItsError) {
    const auto outcome = [](std::function<PlayedResponse(const ReceivedRequest&)> response) {
        TestHTTPServer server(std::move(response));
        MCPClient client(server.url());
        return connect(client);
    };
    EXPECT_EQ(outcome([](const ReceivedRequest&) { return status(503); }),
              failed(MCPClientError::unexpectedHTTPStatus(503)));
    EXPECT_EQ(outcome([](const ReceivedRequest& request) {
                  return errorResponse(request, R"("error":{"code":-32602,"message":"no"})");
              }),
              failed(MCPClientError::jsonRPCFailure({-32602, "no", {}})));
    EXPECT_EQ(outcome([](const ReceivedRequest& request) { return jsonResponse(request, "null"); }),
              failed(MCPClientError::missingJSONRPCResult()));
    const auto incomplete = outcome(
        [](const ReceivedRequest& request) { return jsonResponse(request, R"({"capabilities":{}})"); });
    ASSERT_FALSE(incomplete);
    EXPECT_EQ(std::get<DecodingError>(incomplete.error().value).path, "protocolVersion");
}

TEST(MCPClient, WhatComesBeforeConnectIsSentAnyway) {
    MCPServer server([](const ReceivedRequest&) { return status(400); });
    MCPClient client(server.url());
    EXPECT_EQ(ping(client), failed(MCPClientError::unexpectedHTTPStatus(400)));
    EXPECT_EQ(listTools(client), failed(MCPClientError::unexpectedHTTPStatus(400)));
    EXPECT_EQ(callTool(client, "t"), failed(MCPClientError::unexpectedHTTPStatus(400)));
    EXPECT_EQ(server.log(), (Log{"ping -", "tools/list -", "tools/call -"}));
}

TEST(MCPClient, APingIsARequestWithoutParams) {
    TestHTTPServer server([](const ReceivedRequest& request) { return jsonResponse(request, "{}"); });
    MCPClient client(server.url());
    ASSERT_TRUE(ping(client));
    const auto request = server.requests().at(0);
    EXPECT_EQ(request.body, R"({"jsonrpc":"2.0","id":)" + idOf(request) + R"(,"method":"ping"})");
}

TEST(MCPClient, APingNeedsAResultWhateverItIs) {
    const auto outcome = [](std::string members) {
        TestHTTPServer server(
            [&](const ReceivedRequest& request) { return errorResponse(request, members); });
        MCPClient client(server.url());
        return ping(client);
    };
    EXPECT_TRUE(outcome(R"("result":{})"));
    EXPECT_TRUE(outcome(R"("result":false)"));
    EXPECT_EQ(outcome(R"("result":null)"), failed(MCPClientError::missingJSONRPCResult()));
    EXPECT_EQ(outcome(R"("x":1)"), failed(MCPClientError::missingJSONRPCResult()));
    EXPECT_EQ(outcome(R"("result":{},"error":{"code":1,"message":"both","data":[1.0]})"),
              failed(MCPClientError::jsonRPCFailure({1, "both", JSONValue::parse("[1.0]").value()})));
}

TEST(MCPClient, ListsThePagesInOrder) {
    MCPServer server(numbered([](const ReceivedRequest& request, int count) {
        return jsonResponse(request, count == 1 ? page("ab", "") : count == 2 ? page("", "c\n2") : page("c"));
    }));
    MCPClient client(server.url());
    ASSERT_TRUE(connect(client));
    EXPECT_EQ(namesOf(listTools(client)), (Log{"a", "b", "c"}));
    const auto requests = server.http().requests();
    ASSERT_EQ(requests.size(), 5u);
    EXPECT_TRUE(requests[2].body.ends_with(R"("method":"tools/list"})")) << requests[2].body;
    EXPECT_TRUE(requests[3].body.ends_with(R"("params":{"cursor":""}})")) << requests[3].body;
    EXPECT_TRUE(requests[4].body.ends_with(R"("params":{"cursor":"c\n2"}})")) << requests[4].body;
}

TEST(MCPClient, APageThatFailsFailsTheWholeListing) {
    MCPServer server(numbered([](const ReceivedRequest& request, int count) {
        return count == 1 ? jsonResponse(request, page("a", "2"))
                          : jsonResponse(request, R"({"tools":[{"name":"x"}]})");
    }));
    MCPClient client(server.url());
    const auto tools = listTools(client);
    ASSERT_FALSE(tools);
    EXPECT_EQ(std::get<DecodingError>(tools.error().value).path, "tools[0].inputSchema");
}

TEST(MCPClient, AThousandPagesAreListed) {
    MCPServer server(numbered([](const ReceivedRequest& request, int count) {
        return jsonResponse(request, count < 1000 ? page("a", "same") : page("a"));
    }));
    MCPClient client(server.url());
    EXPECT_EQ(namesOf(listTools(client)).size(), 1000u);
}

TEST(MCPClient, CallsAToolWithItsArgumentsUnchanged) {
    MCPServer server([](const ReceivedRequest& request) {
        return jsonResponse(
            request, R"({"content":[{"type":"text","text":"t"},{"type":"x","n":1e400}],"isError":false})");
    });
    MCPClient client(server.url());
    const std::string arguments = R"({"z":1.0,"a":[123456789012345678901234567890,-0],"é":null})";
    const auto result = callTool(client, "tool", JSONValue::parse(arguments).value());
    ASSERT_TRUE(result);
    EXPECT_EQ(result->isError, false);
    EXPECT_EQ(JSONEncoder().encode(result->content[1]), R"({"type":"x","n":1e400})");
    EXPECT_TRUE(server.http().requests().at(0).body.ends_with(
        R"("method":"tools/call","params":{"name":"tool","arguments":)" + arguments + "}}"));
    ASSERT_TRUE(callTool(client, "tool"));
    EXPECT_TRUE(server.http().requests().at(1).body.ends_with(R"("params":{"name":"tool"}})"));
}

TEST(MCPClient, AResultThatIsAnErrorFailsWithAllOfIt) {
    const std::string result =
        R"({"content":[{"type":"text","text":"broken"},{"type":"video","u":1}],"isError":true})";
    MCPServer server([&](const ReceivedRequest& request) { return jsonResponse(request, result); });
    MCPClient client(server.url());
    const auto outcome = callTool(client, "tool");
    ASSERT_FALSE(outcome);
    const auto* error = outcome.error().clientError();
    ASSERT_NE(error, nullptr);
    const auto* failedCall = error->as<MCPClientError::ToolCallFailed>();
    ASSERT_NE(failedCall, nullptr);
    EXPECT_EQ(JSONEncoder().encode(failedCall->result), result);
}

TEST(MCPClient, AToolsResultThatIsNoneFailsWithWhatIsWrong) {
    MCPServer server([](const ReceivedRequest& request) {
        return jsonResponse(request, R"({"content":[{"type":"image","data":"AAAA"}]})");
    });
    MCPClient client(server.url());
    const auto outcome = callTool(client, "tool");
    ASSERT_FALSE(outcome);
    EXPECT_EQ(std::get<DecodingError>(outcome.error().value).path, "content[0].mimeType");
}

TEST(MCPClient, ArgumentsWithoutJSONFailAndSendNothing) {
    TestHTTPServer server(std::vector<PlayedResponse>{});
    MCPClient client(server.url());
    const auto outcome = callTool(client, "tool", JSONValue(std::numeric_limits<double>::infinity()));
    ASSERT_FALSE(outcome);
    EXPECT_EQ(std::get<EncodingError>(outcome.error().value).reason, EncodingError::Reason::nonFiniteNumber);
}

} // namespace
} // namespace zelto
