#include "ZeltoProgram.h"

#include <Support/MCPServer.h>

#include <Platform/Base64.h>

#include <gtest/gtest.h>

#include <fstream>
#include <future>

namespace zelto {
namespace {

// A server whose tools give the result that they are asked for in the arguments' "result".
MCPServer::Answer echoing() {
    return [](const ReceivedRequest& request) {
        const auto method = methodOf(request);
        if (method == "DELETE") {
            return status(200);
        }
        if (method == "tools/list") {
            return jsonAnswer(
                request,
                R"({"tools":[{"name":"first","description":"Does it.\nAnd more","inputSchema":)"
                R"({"type":"object","z":1.0}},{"name":"\u001b[31mred","title":"T","inputSchema":{}}]})");
        }
        if (method == "tools/call") {
            const auto body = JSONValue::parse(request.body).value();
            const auto* arguments = body.find("params")->find("arguments");
            const auto* result = arguments ? arguments->find("result") : nullptr;
            return eventStream(
                eventOf(answerTo(idOf(request), result ? result->text().value()
                                                       : R"({"content":[{"type":"text","text":"done"}]})")));
        }
        return jsonAnswer(request, "{}");
    };
}

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

TEST(Mcp, ListsItsCommands) {
    const ZeltoProgram zelto;
    const auto outcome = zelto.run({"mcp"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output,
              "zelto mcp ping  See whether a server answers\nzelto mcp tools  List a server's tools\n"
              "zelto mcp call  Call a tool\n");
}

TEST(Mcp, PingTellsWhoAnswersAndEndsTheSession) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const auto outcome = zelto.run({"mcp", "ping", server.url().absoluteString()});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(outcome.output, "s 1 answers; it speaks version 2025-11-25.\n");
    EXPECT_EQ(outcome.errorOutput, "");
    EXPECT_EQ(server.log(), (std::vector<std::string>{"initialize -", "notifications/initialized session-1",
                                                      "ping session-1", "DELETE session-1"}));
    const auto json = zelto.run({"mcp", "ping", server.url().absoluteString(), "--json"});
    EXPECT_EQ(json.output,
              R"({"result":"success","protocolVersion":"2025-11-25","capabilities":{"tools":{}},)"
              R"("serverInfo":{"name":"s","version":"1"}})"
              "\n");
}

TEST(Mcp, ToolsAreListedByNameWithWhatTheServerSaysOfThem) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const auto outcome = zelto.run({"mcp", "tools", server.url().absoluteString()});
    EXPECT_EQ(outcome.output, "first  Does it.\n\x1b[31mred  T\n");
    const auto shown = zelto.runOnTerminal({"mcp", "tools", server.url().absoluteString()});
    EXPECT_EQ(shown.output, "first  Does it.\r\n\\u{1B}[31mred  T\r\n");
    const auto json = zelto.run({"mcp", "tools", server.url().absoluteString(), "--json"});
    EXPECT_EQ(json.output,
              R"({"result":"success","tools":[{"name":"first","description":"Does it.\nAnd more",)"
              R"("inputSchema":{"type":"object","z":1.0}},{"name":"\u001b[31mred","title":"T",)"
              R"("inputSchema":{}}]})"
              "\n");
}

TEST(Mcp, CallPrintsTextAndShowsWhatItDoesNotKnowAsJSON) {
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

TEST(Mcp, CallGivesTheWholeResultAsJSON) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const auto items = R"({"type":"x","z":[1.0,123456789012345678901234567890],"a":"é"},)" + png;
    const auto outcome =
        called(zelto, server, R"({"content":[)" + items + R"(],"isError":false})", {"--json"});
    EXPECT_EQ(outcome.output, R"({"result":"success","content":[)" + items + R"(],"isError":false})" + "\n");
}

TEST(Mcp, CallSavesFilesUnderCleanNamesAndNeverOverOthers) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const auto out = zelto.home / "cwd/out";
    const auto resource = [](const std::string& uri, const std::string& rest = R"(,"blob":"Yg==")") {
        return R"({"type":"resource","resource":{"uri":")" + uri + "\"" + rest + "}}";
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

TEST(Mcp, CallFollowsNoLinkThatIsPlantedWhereItSaves) {
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

TEST(Mcp, CallTellsWhereItCannotSave) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    std::ofstream(zelto.home / "cwd/out") << "a file";
    const auto outcome = called(zelto, server, contentOf(png), {"--out", "out", "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.text("error"), "");
    EXPECT_EQ(server.log().back(), "DELETE session-1");
}

TEST(Mcp, AToolsOwnErrorIsShownWithItsText) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const std::string result =
        R"({"content":[{"type":"text","text":"no\u001b]52;c;x\u0007 disk"},{"type":"x"}],"isError":true})";
    const auto outcome = called(zelto, server, result);
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.output, "");
    EXPECT_TRUE(outcome.errorOutput.starts_with(
        "zelto: toolCallFailed: The tool failed: no\\u{1B}]52;c;x\\u{7} disk.\n"))
        << outcome.errorOutput;
    const auto json = called(zelto, server, result, {"--json"});
    EXPECT_EQ(json.status, 1);
    EXPECT_EQ(json.text("error"), "toolCallFailed");
    EXPECT_EQ(json.json().find("isError")->asBool(), true);
    EXPECT_EQ(json.json().find("content")->asArray()->size(), 2u);
    EXPECT_EQ(server.log().back(), "DELETE session-2");
}

TEST(Mcp, ArgumentsComeFromTheLineOrAFileAndAreCheckedBeforeAnythingIsSent) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const auto url = server.url().absoluteString();
    std::ofstream(zelto.home / "cwd/args.json")
        << R"({"result":{"content":[{"type":"text","text":"filed"}]}})";
    EXPECT_EQ(zelto.run({"mcp", "call", url, "t", "--args", "@args.json"}).output, "filed\n");
    EXPECT_EQ(zelto.run({"mcp", "call", url, "t"}).output, "done\n");
    const auto before = server.log().size();
    const auto broken = zelto.run({"mcp", "call", url, "t", "--args", "{\"a\":", "--json"});
    EXPECT_EQ(broken.status, 2);
    EXPECT_EQ(broken.text("error"), "wrongUsage");
    EXPECT_EQ(zelto.run({"mcp", "call", url, "t", "--args", "@none.json", "--json"}).text("error"),
              "notFound");
    EXPECT_EQ(server.log().size(), before);
}

TEST(Mcp, HeadersComeFromTheLineOrStandardInput) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const auto url = server.url().absoluteString();
    const auto outcome =
        zelto.run({"mcp", "ping", url, "--header", "X-One: 1", "--header", "x-two:a: b", "--header-stdin"},
                  "\nAuthorization: Bearer canary-token\n");
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    const auto requests = server.http().requests();
    ASSERT_EQ(requests.size(), 4u);
    for (const auto& request : requests) {
        EXPECT_EQ(request.headers.value("X-One"), "1");
        EXPECT_EQ(request.headers.value("X-Two"), "a: b");
        EXPECT_EQ(request.headers.value("Authorization"), "Bearer canary-token");
    }
    for (const std::string header : {"no colon", ": value", "na me: v", "Name: a\nEvil: b"}) {
        const auto refused = zelto.run({"mcp", "ping", url, "--header", header, "--json"});
        EXPECT_EQ(refused.status, 2) << header;
        EXPECT_EQ(refused.text("error"), "wrongUsage");
    }
    EXPECT_EQ(server.http().requests().size(), 4u);
}

TEST(Mcp, SecretsAreInNoOutput) {
    MCPServer server([](const ReceivedRequest& request) {
        return request.method == "DELETE" ? status(200) : status(401, {{"WWW-Authenticate", "Basic"}});
    });
    const ZeltoProgram zelto;
    const auto outcome =
        zelto.run({"mcp", "ping", server.url().absoluteString(), "--header-stdin", "--verbose"},
                  "X-Key: canary-secret-7\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ((outcome.output + outcome.errorOutput).find("canary-secret-7"), std::string::npos);
    EXPECT_EQ(outcome.errorOutput.find("session-1"), std::string::npos);
}

TEST(Mcp, RepeatsInOneSessionAndTellsTheRate) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const auto url = server.url().absoluteString();
    const auto outcome = zelto.run({"mcp", "call", url, "t", "--repeat", "7"});
    EXPECT_TRUE(outcome.output.starts_with("done\n7 calls in ")) << outcome.output;
    EXPECT_TRUE(outcome.output.ends_with(" a second\n")) << outcome.output;
    EXPECT_EQ(server.log().size(), 3u + 7u);
    const auto json = zelto.run({"mcp", "ping", url, "--repeat", "3", "--json"}).json();
    EXPECT_EQ(json.find("calls")->asInt64(), 3);
    EXPECT_GT(json.find("callsPerSecond")->asDouble(), 0);
    for (const auto* wrong : {"0", "-1", "x", "1.5", ""}) {
        EXPECT_EQ(zelto.run({"mcp", "ping", url, "--repeat", wrong}).status, 2) << wrong;
    }
}

TEST(Mcp, GivesUpAfterTheTimeoutAndEndsTheSession) {
    std::promise<void> goOn;
    auto gate = goOn.get_future().share();
    MCPServer server([&](const ReceivedRequest& request) {
        if (request.method == "DELETE") {
            return status(200);
        }
        return eventStream([gate](const Sender& send) {
            send(": wait\n\n");
            gate.wait();
        });
    });
    const ZeltoProgram zelto;
    const auto outcome =
        zelto.run({"mcp", "ping", server.url().absoluteString(), "--timeout", "0.3", "--json"});
    goOn.set_value();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "timedOut");
    EXPECT_EQ(server.log().back(), "DELETE session-1");
    for (const auto* wrong : {"0", "-1", "x", "inf", "nan", "1e9"}) {
        EXPECT_EQ(zelto.run({"mcp", "ping", server.url().absoluteString(), "--timeout", wrong}).status, 2)
            << wrong;
    }
}

TEST(Mcp, AFailingEndOfTheSessionIsAWarning) {
    MCPServer server([](const ReceivedRequest& request) {
        return request.method == "DELETE" ? status(500) : jsonAnswer(request, "{}");
    });
    const ZeltoProgram zelto;
    const auto outcome = zelto.run({"mcp", "ping", server.url().absoluteString()});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errorOutput,
              "zelto: warning: the session was not ended: The server answers with status 500\n");
}

// What `zelto mcp ping` says, as JSON, of a server that answers everything so.
ProgramOutcome pinged(PlayedAnswer answer) {
    TestHTTPServer server([&](const ReceivedRequest&) { return answer; });
    const ZeltoProgram zelto;
    return zelto.run({"mcp", "ping", server.url().absoluteString(), "--json"});
}

TEST(Mcp, FailuresNameTheirCaseAndCarryItsPayload) {
    const auto payloadOf = [](const ProgramOutcome& outcome, std::string_view key) {
        EXPECT_EQ(outcome.status, 1);
        const auto document = outcome.json();
        const auto* value = document.find(key);
        return outcome.text("error") + " " + (value ? value->text().value() : "absent");
    };
    EXPECT_EQ(payloadOf(pinged(PlayedAnswer::json(R"({"jsonrpc":"1.0","id":1})")), "version"),
              R"(invalidJSONRPCVersion "1.0")");
    EXPECT_EQ(payloadOf(pinged(PlayedAnswer::json("{}")), "version"), "invalidJSONRPCVersion null");
    EXPECT_EQ(
        payloadOf(
            pinged(PlayedAnswer::json(answerTo(
                "1", R"({"protocolVersion":"x","capabilities":{},"serverInfo":{"name":"","version":""}})"))),
            "version"),
        R"(unsupportedProtocolVersion "x")");
    const auto refused = pinged(
        PlayedAnswer::json(R"({"jsonrpc":"2.0","id":1,"error":{"code":-1,"message":"m","data":[1.0]}})"));
    EXPECT_EQ(payloadOf(refused, "code"), "jsonRPCFailure -1");
    EXPECT_EQ(payloadOf(refused, "message"), R"(jsonRPCFailure "m")");
    EXPECT_EQ(payloadOf(refused, "data"), "jsonRPCFailure [1.0]");
    EXPECT_EQ(payloadOf(pinged(status(401, {{"WWW-Authenticate", "Bearer resource_metadata=a://b"}})),
                        "resourceMetadataURL"),
              R"(authorizationRequired "a://b")");
    EXPECT_EQ(payloadOf(pinged(status(401, {{"WWW-Authenticate", "Bearer resource_metadata=b"}})), "value"),
              R"(invalidAuthorizationResourceMetadata "b")");
    EXPECT_EQ(payloadOf(pinged(status(401, {{"WWW-Authenticate", "Bearer"}})), "header"),
              "authorizationChallengeMissingResourceMetadata absent");
    EXPECT_EQ(payloadOf(pinged(status(401, {{"WWW-Authenticate", "Basic \xFF"}})), "header"),
              "authorizationChallenge \"Basic \u00FF\"");
    EXPECT_EQ(payloadOf(pinged(status(401)), "header"), "authorizationChallenge null");
    EXPECT_EQ(payloadOf(pinged(status(503)), "status"), "unexpectedHTTPStatus 503");
    EXPECT_EQ(payloadOf(pinged(status(200, {{"Content-Type", "text/html"}})), "contentType"),
              R"(unsupportedHTTPContentType "text/html")");
    EXPECT_EQ(payloadOf(pinged(status(200)), "contentType"), "unsupportedHTTPContentType null");
    EXPECT_EQ(payloadOf(pinged(status(404)), "x"), "endpointNotFound absent");
    EXPECT_EQ(payloadOf(pinged(PlayedAnswer::json(R"({"jsonrpc":"2.0","id":[]})")), "x"),
              "invalidJSONRPCIdentifier absent");
    EXPECT_EQ(payloadOf(pinged(PlayedAnswer::json(R"({"jsonrpc":"2.0","id":1})")), "x"),
              "missingJSONRPCResult absent");
    EXPECT_EQ(payloadOf(pinged(eventStream("data: \xFF\n")), "x"), "invalidServerSentEventsUTF8 absent");
    EXPECT_EQ(payloadOf(pinged(eventStream(": x\n\n")), "x"), "missingJSONRPCResponse absent");
    EXPECT_EQ(payloadOf(pinged(PlayedAnswer::json("ping")), "x"), "decodingError absent");
    EXPECT_EQ(payloadOf(pinged(PlayedAnswer::reset()), "x"), "connectionError absent");
}

TEST(Mcp, OtherFailuresHaveNamesOfTheirOwn) {
    const ZeltoProgram zelto;
    const auto nowhere = zelto.run({"mcp", "ping", "http://mcp.example/", "--json"});
    EXPECT_EQ(nowhere.status, 1);
    EXPECT_EQ(nowhere.text("error"), "connectionError");
    for (const auto* address : {"mcp.example", "ftp://x/", "", "file:///etc/passwd"}) {
        EXPECT_EQ(zelto.run({"mcp", "ping", address}).status, 2) << address;
    }
    MCPServer server([](const ReceivedRequest&) { return status(404); });
    const auto expired = zelto.run({"mcp", "tools", server.url().absoluteString(), "--json"});
    EXPECT_EQ(expired.text("error"), "sessionExpired");
}

TEST(Mcp, ControlCharactersOfAServerAreShownAsEscapesOnATerminal) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const auto hostile =
        R"({"type":"text","text":"a\u001b]52;c;eA==\u0007\u009b31m\u202eb\tc\nd"},)"
        R"({"type":"\u001b[2J","x":"\u009b"},{"type":"image","data":"","mimeType":"\u001b[0m"})";
    const auto outcome = zelto.runOnTerminal({"mcp", "call", server.url().absoluteString(), "t", "--args",
                                              R"({"result":)" + contentOf(hostile) + "}"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output.find('\x1b'), std::string::npos) << outcome.output;
    EXPECT_EQ(outcome.output.find("\xC2\x9B"), std::string::npos);
    EXPECT_EQ(outcome.output.find('\a'), std::string::npos);
    EXPECT_NE(outcome.output.find("\\u{202E}b\tc\r\nd"), std::string::npos) << outcome.output;
}

} // namespace
} // namespace zelto
