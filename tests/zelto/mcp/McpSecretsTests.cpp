#include <mcp/McpSecrets.h>

#include <zelto/EchoingServer.h>
#include <zelto/ZeltoProgram.h>

#include <gtest/gtest.h>

#include <fstream>

namespace zelto {
namespace {

using cli::McpSecrets;

std::string shownText(const McpSecrets& secrets, std::string text) {
    secrets.maskText(text);
    return text;
}

std::string shownJSON(const McpSecrets& secrets, std::string json) {
    secrets.maskJSON(json);
    return json;
}

TEST(McpSecrets, AreMaskedWithAndWithoutTheirScheme) {
    const McpSecrets secrets({{"Authorization", "Bearer canary-token"}, {"X-Key", "canary-key"}});
    EXPECT_EQ(shownText(secrets, "canary-key: Bearer canary-token, canary-token canary-toke"),
              "***: ***, *** canary-toke");
    EXPECT_EQ(shownText(secrets, "nothing of them"), "nothing of them");
}

TEST(McpSecrets, TakeEightCharactersAndAFieldThatMayHoldOne) {
    const McpSecrets secrets({{"X-Seven", "1234567"},
                              {"X-Eight", "abcdefgh"},
                              {"Accept-Language", "en-US,en;q=0.5"},
                              {"Content-Language", "language"},
                              {"User-Agent", "an agent of mine"}});
    EXPECT_EQ(shownText(secrets, "1234567 abcdefgh en-US,en;q=0.5 language an agent of mine"),
              "1234567 *** en-US,en;q=0.5 language an agent of mine");
}

TEST(McpSecrets, InJSONAreMaskedWithinStringsAlone) {
    const McpSecrets secrets({{"X-Number", "1234567890"}, {"X-Quoted", R"(with "quotes" \)"}});
    EXPECT_EQ(shownJSON(secrets, R"({"n":1234567890,"s":"a 1234567890 \"","1234567890":["\\","1234567890"],)"
                                 R"("q":"with \"quotes\" \\"})"),
              R"({"n":1234567890,"s":"a *** \"","***":["\\","***"],"q":"***"})");
    for (const std::string broken : {"\"1234567890", "\"\\", "\"", ""}) {
        shownJSON(secrets, broken); // whatever comes of it
    }
}

// A server that sends back what it was sent by its fields.
PlayedResponse reflecting(const ReceivedRequest& request) {
    const auto key = request.headers.value("X-Key").value_or("");
    const auto items = R"([{"type":"text","text":"you sent )" + key + R"("},{"type":"x","y":")" + key +
                       R"("},{"type":"image","data":"eA==","mimeType":")" + key + R"("}])";
    const auto method = methodOf(request);
    if (method == "tools/list") {
        return jsonResponse(request, R"({"tools":[{"name":")" + key + R"(","inputSchema":{}}]})");
    }
    if (request.body.find("refuse") != std::string::npos) {
        return PlayedResponse::json(R"({"jsonrpc":"2.0","id":1,"error":{"code":1,"message":")" +
                                    std::string(290, 'x') + key + R"("}})");
    }
    const bool fails = request.body.find("fail") != std::string::npos;
    return jsonResponse(request, R"({"content":)" + items + (fails ? R"(,"isError":true})" : "}"));
}

TEST(McpSecrets, ThatAServerReflectsAreMaskedInAllThatIsPrinted) {
    MCPServer server(reflecting);
    const ZeltoProgram zelto;
    const auto url = server.url().absoluteString();
    for (const auto& command : std::vector<ZeltoProgram::Arguments>{
             {"tools", url}, {"call", url, "t"}, {"call", url, "fail"}, {"call", url, "refuse"}}) {
        for (const bool asJSON : {false, true}) {
            ZeltoProgram::Arguments arguments{"mcp"};
            arguments.insert(arguments.end(), command.begin(), command.end());
            arguments.emplace_back("--header-stdin");
            if (asJSON) {
                arguments.emplace_back("--json");
            }
            const auto outcome = zelto.run(arguments, "X-Key: canary-secret\n");
            const auto printed = outcome.output + outcome.errorOutput;
            EXPECT_NE(printed.find("***"), std::string::npos) << printed;
            EXPECT_EQ(printed.find("canary"), std::string::npos) << printed;
        }
    }
    EXPECT_EQ(
        zelto.run({"mcp", "call", url, "t", "--header", "X-Key: canary-secret", "--json"}).output,
        R"({"result":"success","content":[{"type":"text","text":"you sent ***"},{"type":"x","y":"***"},)"
        R"({"type":"image","data":"eA==","mimeType":"***"}]})"
        "\n");
}

} // namespace
} // namespace zelto
