#include <zelto/EchoingServer.h>
#include <zelto/ZeltoProgram.h>

#include <Platform/Base64.h>

#include <gtest/gtest.h>

#include <fstream>

namespace zelto {
namespace {

// Calls a tool that gives this result.
ProgramOutcome called(const ZeltoProgram& zelto, const MCPServer& server, const std::string& result,
                      ZeltoProgram::Arguments more = {}) {
    ZeltoProgram::Arguments arguments{"mcp",  "call",   server.url().absoluteString(),
                                      "tool", "--args", R"({"result":)" + result + "}"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return zelto.run(arguments);
}

std::string contentOf(const std::string& items) {
    return R"({"content":[)" + items + "]}";
}

// Names and contents.
std::map<std::string, std::string> savedIn(const std::filesystem::path& folder) {
    std::map<std::string, std::string> saved;
    for (const auto& [path, content] : ZeltoProgram::filesBelow(folder)) {
        saved.emplace(std::filesystem::path(path).lexically_relative(folder), content);
    }
    return saved;
}

const std::string png = R"({"type":"image","data":"aW1hZ2U=","mimeType":"image/png"})";

TEST(McpCall, PrintsTextAndShowsWhatItDoesNotKnowAsJSON) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const auto outcome = called(
        zelto, server,
        contentOf(
            R"({"type":"text","text":"one\ntwo"},{"type":"text","text":""},{"type":"video","n":1e400},)"
            R"({"type":"resource_link","uri":"u"},{"type":"resource","resource":{"uri":"x","text":"t\n"}},)" +
            png));
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(outcome.output,
              "one\ntwo\n{\"type\":\"video\",\"n\":1e400}\n{\"type\":\"resource_link\",\"uri\":\"u\"}\nt\n"
              "[image image/png, 5 bytes] not saved; --out DIR saves it\n");
    EXPECT_TRUE(ZeltoProgram::filesBelow(zelto.home / "cwd/out").empty());
}

TEST(McpCall, GivesTheWholeResultAsJSON) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const auto items = R"({"type":"x","z":[1.0,123456789012345678901234567890],"a":"é"},)" + png;
    const auto outcome =
        called(zelto, server, R"({"content":[)" + items + R"(],"isError":false})", {"--json"});
    EXPECT_EQ(outcome.output, R"({"result":"success","content":[)" + items + R"(],"isError":false})" + "\n");
}

TEST(McpCall, SavesFilesUnderCleanNamesAndNeverOverOthers) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const auto out = zelto.home / "cwd/out";
    const auto resource = [](const std::string& uri, const std::string& members = R"(,"blob":"Yg==")") {
        return R"({"type":"resource","resource":{"uri":")" + uri + "\"" + members + "}}";
    };
    const auto items =
        png + "," + R"({"type":"audio","data":"YXVkaW8","mimeType":"audio/mpeg"})" + "," +
        resource("file:///a/../../etc/passwd") + "," + resource("x://h/%2e%2e%2f%2e%2e%2fevil.sh?a#b") + "," +
        resource("x://h/..") + "," + resource("doc", R"(,"mimeType":"application/pdf","blob":"Yg==")") + "," +
        resource("x:/.bashrc") + "," + resource("x:/twin.txt") + "," + resource("x:/twin.txt") + "," +
        R"({"type":"image","data":"*","mimeType":"image/gif"})";
    const auto outcome = called(zelto, server, contentOf(items), {"--out", "out"});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    const std::map<std::string, std::string> expected{
        {"image-1.png", "image"}, {"audio-2.mp3", "audio"}, {"passwd", "b"},
        {"evil.sh", "b"},         {"resource-5.bin", "b"},  {"doc.pdf", "b"},
        {"bashrc", "b"},          {"twin.txt", "b"},        {"twin (1).txt", "b"}};
    EXPECT_EQ(savedIn(out), expected);
    EXPECT_TRUE(outcome.output.starts_with("[image image/png, 5 bytes] saved as out/image-1.png\n"))
        << outcome.output;
    EXPECT_TRUE(outcome.output.ends_with(
        "[image image/gif, not valid Base64] cannot be saved; --json shows it as it is\n"))
        << outcome.output;
    const auto again = called(zelto, server, contentOf(png), {"--out", "out", "--json"});
    EXPECT_EQ(again.json().find("saved")->text(), R"([{"item":0,"path":"out/image-1 (1).png","size":5}])");
    EXPECT_EQ(ZeltoProgram::filesBelow(out).size(), expected.size() + 1);
}

TEST(McpCall, FollowsNoLinkThatIsPlantedWhereItSaves) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const auto out = zelto.home / "cwd/out";
    std::filesystem::create_directory(out);
    std::filesystem::create_symlink(zelto.home / "canary", out / "image-1.png");
    const auto outcome = called(zelto, server, contentOf(png), {"--out", "out"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_FALSE(std::filesystem::exists(zelto.home / "canary"));
    EXPECT_TRUE(std::filesystem::exists(out / "image-1 (1).png"));
}

TEST(McpCall, NamesTheFolderThatItCannotSaveIn) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    std::ofstream(zelto.home / "cwd/out") << "a file";
    const auto outcome = called(zelto, server, contentOf(png), {"--out", "out", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "notDirectory");
    EXPECT_EQ(server.log(), std::vector<std::string>());
}

TEST(McpCall, AFileThatCannotBeSavedHidesNothingElse) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const auto large = R"({"type":"image","data":")" + base64Encoded(std::string(5000, 'x')) +
                       R"(","mimeType":"image/gif"})";
    const auto items = large + "," + png + R"(,{"type":"text","text":"said"},)" + large;
    zelto.home.write("cwd/args.json", R"({"result":)" + contentOf(items) + "}");
    const auto callWithRoomFor1KiB = [&](const std::string& more) {
        return zelto.runShell("trap '' XFSZ; ulimit -f 1; zelto mcp call " + server.url().absoluteString() +
                              " t --args @args.json --out out" + more);
    };
    const auto outcome = callWithRoomFor1KiB("");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.output.starts_with("[image image/gif, 5000 bytes] cannot be saved: "))
        << outcome.output;
    EXPECT_NE(outcome.output.find("\n[image image/png, 5 bytes] saved as out/image-2.png\nsaid\n[image"),
              std::string::npos)
        << outcome.output;
    EXPECT_NE(outcome.errorOutput.find(": 2 files cannot be saved; the first: "), std::string::npos)
        << outcome.errorOutput;
    EXPECT_EQ(savedIn(zelto.home / "cwd/out"),
              (std::map<std::string, std::string>{{"image-2.png", "image"}}));
    const auto json = callWithRoomFor1KiB("2 --json");
    EXPECT_EQ(json.status, 1);
    EXPECT_NE(json.text("error"), "");
    const auto document = json.json();
    ASSERT_TRUE(document.find("saved") && document.find("content"));
    EXPECT_EQ(document.find("saved")->text(), R"([{"item":1,"path":"out2/image-2.png","size":5}])");
    EXPECT_EQ(document.find("content")->text(), "[" + items + "]");
}

TEST(McpCall, AToolsOwnErrorIsShownWithAllThatItSays) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const auto items = R"({"type":"text","text":"no\u001b]52;c;x\u0007 disk\n\tin line 2"},)"
                       R"({"type":"resource","resource":{"uri":"x:/y","text":"because"}},)"
                       R"({"type":"x","y":"\u009b"},)" +
                       png;
    const auto result = R"({"content":[)" + items + R"(],"isError":true})";
    const auto outcome = called(zelto, server, result, {"--out", "out"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errorOutput,
              "zelto: toolCallFailed: The tool failed.\nno\\u{1B}]52;c;x\\u{7} disk\n\tin line 2\nbecause\n"
              "{\"type\":\"x\",\"y\":\"\\u009b\"}\n[image image/png, 5 bytes] saved as out/image-4.png\n"
              "Try: zelto mcp call --help\n");
    EXPECT_EQ(savedIn(zelto.home / "cwd/out"),
              (std::map<std::string, std::string>{{"image-4.png", "image"}}));
    EXPECT_EQ(server.log().back(), "DELETE session-1");
    const auto silent = called(zelto, server, R"({"content":[],"isError":true})");
    EXPECT_TRUE(
        silent.errorOutput.starts_with("zelto: toolCallFailed: The tool failed: it does not say why.\n"))
        << silent.errorOutput;
}

TEST(McpCall, AToolsOwnErrorIsWholeInJSON) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const auto result = R"({"content":[{"type":"text","text":"no disk"},{"type":"x","z":[1.0,null]},)" + png +
                        R"(],"isError":true})";
    const auto outcome = called(zelto, server, result, {"--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, R"({"error":"toolCallFailed","message":"The tool failed: no disk.",)"
                              R"("next":"zelto mcp call --help",)" +
                                  result.substr(1) + "\n");
}

TEST(McpCall, ArgumentsComeFromTheLineOrAFileAndAreCheckedBeforeAnythingIsSent) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const auto url = server.url().absoluteString();
    std::ofstream(zelto.home / "cwd/args.json")
        << R"({"result":{"content":[{"type":"text","text":"filed"}]}})";
    EXPECT_EQ(zelto.run({"mcp", "call", url, "t", "--args", "@args.json"}).output, "filed\n");
    EXPECT_EQ(zelto.run({"mcp", "call", url, "t"}).output, "done\n");
    const auto before = server.log().size();
    for (const std::string wrong : {"{\"a\":", "[1]", "null"}) {
        const auto refused = zelto.run({"mcp", "call", url, "t", "--args", wrong, "--json"});
        EXPECT_EQ(refused.status, 2) << wrong;
        EXPECT_EQ(refused.text("error"), "wrongUsage") << wrong;
    }
    EXPECT_EQ(zelto.run({"mcp", "call", url, "t", "--args", "@none.json", "--json"}).text("error"),
              "notFound");
    EXPECT_EQ(server.log().size(), before);
}

TEST(McpCall, ControlCharactersOfAServerAreShownAsEscapesWhereverTheyGo) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const auto hostile = R"({"type":"text","text":"a\u001b]52;c;eA==\u0007\u009b31m\u202eb\tc\nd\r\ne\rf"},)"
                         R"({"type":"\u001b[2J","x":"\u009b"},)"
                         R"({"type":"image","data":"","mimeType":"\u001b[0m\nforged"})";
    const std::string shown = "a\\u{1B}]52;c;eA==\\u{7}\\u{9B}31m\\u{202E}b\tc\nd\r\ne\\rf\n"
                              "{\"type\":\"\\u001b[2J\",\"x\":\"\\u009b\"}\n"
                              "[image \\u{1B}[0m\\nforged, 0 bytes] not saved; --out DIR saves it\n";
    const auto outcome = called(zelto, server, contentOf(hostile));
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, shown);
    auto onTerminal = shown;
    for (std::size_t at = 0; (at = onTerminal.find('\n', at)) != std::string::npos; at += 2) {
        onTerminal.insert(at, "\r");
    }
    EXPECT_EQ(zelto
                  .runOnTerminal({"mcp", "call", server.url().absoluteString(), "t", "--args",
                                  R"({"result":)" + contentOf(hostile) + "}"})
                  .output,
              onTerminal);
}

} // namespace
} // namespace zelto
