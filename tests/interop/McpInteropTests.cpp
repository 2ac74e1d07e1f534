// The MCP client against servers of other authors. They are started by tests/scripts/mcp-interop-test, which
// sets their addresses in the environment.

#include <ZeltoIntegrations/MCP/MCPCalls.h>

#include <Support/SessionTasks.h>

#include <Platform/Base64.h>
#include <Platform/HTTP/URLSession.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <set>

namespace zelto {
namespace {

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

URL urlIn(const char* variable) {
    return URL::parse(environment(variable)).value();
}

JSONValue json(std::string_view text) {
    return JSONValue::parse(text).value();
}

std::set<std::string> toolsOf(MCPClient& client) {
    std::set<std::string> names;
    const auto tools = listTools(client);
    EXPECT_TRUE(tools);
    for (const auto& tool : tools.value()) {
        EXPECT_TRUE(tool.inputSchema.asObject()) << tool.name;
        names.insert(tool.name);
    }
    return names;
}

// The payload of the only item, which must be of that case.
template <class Case> auto contentOf(const MCPResult<MCPToolCallResult>& result) {
    decltype(Case::content) content;
    int count = 0;
    EXPECT_TRUE(result);
    if (result) {
        for (const auto& item : result->content) {
            if (const auto* found = std::get_if<Case>(&item.value)) {
                content = found->content;
                ++count;
            }
        }
    }
    EXPECT_EQ(count, 1);
    return content;
}

class Everything : public testing::Test {
  protected:
    void SetUp() override { server = connect(client); }

    void TearDown() override { EXPECT_TRUE(disconnect(client)); }

    MCPClient client{urlIn("ZELTO_MCP_EVERYTHING")};
    MCPResult<MCPInitializeResult> server = failure(MCPError(MCPClientError::endpointNotFound()));
};

TEST_F(Everything, ShakesHands) {
    ASSERT_TRUE(server);
    EXPECT_FALSE(server->serverInfo.name.empty());
    EXPECT_TRUE(server->capabilities["tools"]);
    EXPECT_TRUE(ping(client));
}

TEST_F(Everything, ListsItsTools) {
    const auto names = toolsOf(client);
    for (const auto* name : {"echo", "get-sum", "get-tiny-image", "get-resource-reference",
                             "get-resource-links", "trigger-long-running-operation"}) {
        EXPECT_TRUE(names.contains(name)) << name;
    }
}

TEST_F(Everything, GivesTextBackAsItWas) {
    const std::string text = "é 漢 😀 \u0001\u2028 \"quoted\"\n";
    const auto result = callTool(client, "echo", JSONValue(JSONObject{{"message", text}}));
    EXPECT_NE(contentOf<MCPContentItem::Text>(result).text.find(text), std::string::npos);
    const std::string longText(3 << 20, 'x');
    const auto longResult = callTool(client, "echo", JSONValue(JSONObject{{"message", longText}}));
    EXPECT_NE(contentOf<MCPContentItem::Text>(longResult).text.find(longText), std::string::npos);
}

TEST_F(Everything, GivesAnImage) {
    const auto result = callTool(client, "get-tiny-image", json("{}"));
    const auto image = contentOf<MCPContentItem::Image>(MCPToolCallResult{[&] {
        auto items = result.value().content;
        std::erase_if(items, [](const auto& item) {
            return !std::holds_alternative<MCPContentItem::Image>(item.value);
        });
        return items;
    }()});
    EXPECT_EQ(image.mimeType, "image/png");
    EXPECT_TRUE(base64Decoded(image.data).value().starts_with("\x89PNG"));
}

TEST_F(Everything, GivesResourcesAndLinksToThem) {
    const auto text = contentOf<MCPContentItem::EmbeddedResource>(
        callTool(client, "get-resource-reference", json(R"({"resourceType":"Text","resourceId":1})")));
    EXPECT_FALSE(text.resource.uri.empty());
    EXPECT_TRUE(text.resource.text);
    const auto blob = contentOf<MCPContentItem::EmbeddedResource>(
        callTool(client, "get-resource-reference", json(R"({"resourceType":"Blob","resourceId":2})")));
    EXPECT_TRUE(base64Decoded(blob.resource.blob.value()));
    const auto links = callTool(client, "get-resource-links", json(R"({"count":3})"));
    ASSERT_TRUE(links);
    EXPECT_EQ(std::ranges::count_if(links->content,
                                    [](const auto& item) {
                                        return std::holds_alternative<MCPContentItem::ResourceLink>(
                                            item.value);
                                    }),
              3);
}

TEST_F(Everything, WaitsForALongRunningCall) {
    const auto result =
        callTool(client, "trigger-long-running-operation", json(R"({"duration":2,"steps":4})"));
    EXPECT_NE(contentOf<MCPContentItem::Text>(result).text.find("complete"), std::string::npos);
}

TEST_F(Everything, RespondsWhileALongCallRuns) {
    Completed<MCPResult<MCPToolCallResult>> end;
    client.callTool("trigger-long-running-operation", json(R"({"duration":1,"steps":1})"),
                    end.callback<MCPCompletion<MCPToolCallResult>>());
    EXPECT_TRUE(ping(client));
    EXPECT_TRUE(end.value());
}

TEST_F(Everything, ToolsFailWithWhatTheySay) {
    for (const auto& [tool, arguments] : {std::pair{"no-such-tool", "{}"}, {"get-sum", R"({"a":"x"})"}}) {
        const auto result = callTool(client, tool, json(arguments));
        ASSERT_FALSE(result);
        EXPECT_TRUE(result.error().is<MCPClientError::ToolCallFailed>() ||
                    result.error().is<MCPClientError::JSONRPCFailure>())
            << tool;
    }
    EXPECT_TRUE(ping(client));
}

TEST_F(Everything, TakesAThousandCallsInOneSession) {
    for (int index = 0; index < 1000; ++index) {
        const auto result = callTool(client, "get-sum", JSONValue(JSONObject{{"a", index}, {"b", 1}}));
        ASSERT_NE(contentOf<MCPContentItem::Text>(result).text.find(std::to_string(index + 1)),
                  std::string::npos);
    }
}

class Git : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(connect(client)); }

    std::shared_ptr<MCPHTTPTransport> transport = std::make_shared<MCPHTTPTransport>(
        urlIn("ZELTO_MCP_GIT"), nullptr, std::nullopt, URLSessionConfiguration::ephemeral());
    MCPClient client{transport};
    std::string folder =
        environment("ZELTO_MCP_FOLDER") + "/" + testing::UnitTest::GetInstance()->current_test_info()->name();

    // The tool's text content is JSON.
    JSONValue called(const std::string& tool, JSONObject arguments) {
        const auto result = callTool(client, tool, JSONValue(std::move(arguments)));
        return result ? json(contentOf<MCPContentItem::Text>(result).text) : JSONValue();
    }
};

TEST_F(Git, ListsItsTools) {
    const auto names = toolsOf(client);
    EXPECT_TRUE(names.contains("git_init"));
    EXPECT_TRUE(names.contains("git_commit"));
    EXPECT_TRUE(disconnect(client));
}

TEST_F(Git, CommitsAFile) {
    const std::string text = "Zeile é 漢 😀";
    EXPECT_EQ(called("git_init", {{"path", folder}}).find("success")->asBool(), true);
    std::ofstream(folder + "/note.txt") << text << '\n';
    called("git_add", {{"path", folder}, {"paths", JSONValue::Array{"note.txt"}}});
    called("git_commit", {{"path", folder}, {"message", "Add \"" + text + "\""}});
    const auto shown = callTool(client, "git_show",
                                JSONValue(JSONObject{{"path", folder}, {"object", "HEAD"}, {"stat", false}}));
    const auto all = contentOf<MCPContentItem::Text>(shown).text;
    EXPECT_NE(all.find("Add \\\"" + text), std::string::npos) << all;
    EXPECT_NE(all.find("+" + text), std::string::npos) << all;
    EXPECT_TRUE(disconnect(client));
}

TEST_F(Git, GoesOnFromAnEarlierCall) {
    called("git_init", {{"path", folder}});
    called("git_set_working_dir", {{"path", folder}});
    EXPECT_EQ(called("git_status", {}).find("currentBranch")->text(), "\"main\"");
    EXPECT_TRUE(disconnect(client));
}

TEST_F(Git, RefusesWhatLiesOutside) {
    const auto result = callTool(client, "git_status", json(R"({"path":"/etc"})"));
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().is<MCPClientError::ToolCallFailed>());
    EXPECT_TRUE(disconnect(client));
}

TEST_F(Git, ASessionThatTheServerDroppedIsBegunAgain) {
    called("git_init", {{"path", folder}});
    const auto before = transport->activeSessionID();
    ASSERT_TRUE(before);
    URLRequest end(urlIn("ZELTO_MCP_GIT"), "DELETE");
    end.headers.set("Mcp-Session-Id", *before);
    URLSession session(URLSessionConfiguration::ephemeral());
    ASSERT_EQ(TaskEnd::of(session, end).status(), 200);
    EXPECT_EQ(called("git_status", {{"path", folder}}).find("isClean")->asBool(), true);
    ASSERT_TRUE(transport->activeSessionID());
    EXPECT_NE(transport->activeSessionID(), before);
    EXPECT_TRUE(ping(client));
    EXPECT_TRUE(disconnect(client));
    EXPECT_EQ(transport->activeSessionID(), std::nullopt);
}

} // namespace
} // namespace zelto
