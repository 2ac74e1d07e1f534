#include <zelto/EchoingServer.h>
#include <zelto/ZeltoProgram.h>

#include <mcp/McpSession.h>

#include <Support/Event.h>
#include <Support/LogCapture.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <mutex>
#include <sys/stat.h>
#include <thread>

namespace zelto {
namespace {

TEST(Mcp, ListsItsCommands) {
    const ZeltoProgram zelto;
    const auto outcome = zelto.run({"mcp"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output,
              "zelto mcp ping  See whether a server responds\nzelto mcp tools  List a server's tools\n"
              "zelto mcp call  Call a tool\n");
}

TEST(Mcp, PingNamesTheServerAndEndsTheSession) {
    MCPServer server(echoing());
    const ZeltoProgram zelto;
    const auto outcome = zelto.run({"mcp", "ping", server.url().absoluteString()});
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(outcome.output, "s 1 responds; it speaks version 2025-11-25.\n");
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
    EXPECT_EQ(outcome.output, "first  Does it.\n\\u{1B}[31mred  T\n");
    const auto shown = zelto.runOnTerminal({"mcp", "tools", server.url().absoluteString()});
    EXPECT_EQ(shown.output, "first  Does it.\r\n\\u{1B}[31mred  T\r\n");
    const auto json = zelto.run({"mcp", "tools", server.url().absoluteString(), "--json"});
    EXPECT_EQ(json.output,
              R"({"result":"success","tools":[{"name":"first","description":"Does it.\nAnd more",)"
              R"("inputSchema":{"type":"object","z":1.0}},{"name":"\u001b[31mred","title":"T",)"
              R"("inputSchema":{}}]})"
              "\n");
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
    for (const std::string header :
         {"no colon", ": value", "na me: v", "Name: a\nEvil: b", "Host: x", "content-length: 5"}) {
        const auto refused = zelto.run({"mcp", "ping", url, "--header", header, "--json"});
        EXPECT_EQ(refused.status, 2) << header;
        EXPECT_EQ(refused.text("error"), "wrongUsage");
    }
    EXPECT_EQ(server.http().requests().size(), 4u);
}

TEST(Mcp, TheLogMasksTheSessionAndTheGivenFieldsByTheirValues) {
    std::atomic<bool> isDropped = false;
    MCPServer server([&](const ReceivedRequest& request) {
        return isDropped.exchange(false) ? status(404) : jsonResponse(request, "{}");
    });
    cli::McpSession session({.server = server.url(),
                             .headers = {{"Authorization", "Bearer canary-token"}, {"X-Key", "canary-key"}},
                             .timeout = std::chrono::minutes(1)});
    const auto logged = [](const std::string& text) {
        const LogCapture log;
        Logger::shared().info(text, __func__);
        return log.messages().back();
    };
    const auto ping = [&] {
        return session.repeat<void>(
            [](MCPClient& client, MCPCompletion<void> done) { client.ping(std::move(done)); });
    };
    EXPECT_EQ(logged("it holds session-1"), "it holds session-1");
    ASSERT_TRUE(session.connect());
    for (const std::string secret : {"session-1", "canary-token", "canary-key"}) {
        EXPECT_EQ(logged("it holds " + secret).find(secret), std::string::npos) << secret;
    }
    isDropped = true;
    ASSERT_TRUE(ping());
    EXPECT_EQ(logged("it holds session-2").find("session-2"), std::string::npos);
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

// A server is slow to end a session: slower than the program looks about itself.
PlayedResponse slowEnd() {
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    return status(200);
}

TEST(Mcp, GivesUpAfterTheTimeoutAndEndsTheSession) {
    Event goOn;
    MCPServer server([&](const ReceivedRequest& request) {
        if (request.method == "DELETE") {
            return slowEnd();
        }
        return eventStream([&](const Sender& send) {
            send(": wait\n\n");
            goOn.wait();
        });
    });
    const ZeltoProgram zelto;
    const auto outcome =
        zelto.run({"mcp", "ping", server.url().absoluteString(), "--timeout", "3", "--json"});
    goOn.set();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "timedOut");
    EXPECT_EQ(outcome.errorOutput, "");
    EXPECT_EQ(server.log().back(), "DELETE session-1");
    for (const auto* wrong : {"0", "-1", "x", "inf", "nan", "1e9"}) {
        EXPECT_EQ(zelto.run({"mcp", "ping", server.url().absoluteString(), "--timeout", wrong}).status, 2)
            << wrong;
    }
}

TEST(Mcp, GivesUpAfterTheTimeoutHoweverFastTheResponsesAre) {
    const auto start = std::chrono::steady_clock::now();
    cli::McpSession session({.server = URL::parse("http://127.0.0.1:9/").value(),
                             .repeat = 1'000'000'000,
                             .timeout = std::chrono::milliseconds(50)});
    const auto end = session.repeat<void>([&](MCPClient&, MCPCompletion<void> done) {
        const bool goesOn = std::chrono::steady_clock::now() - start < std::chrono::seconds(30);
        done(goesOn ? MCPResult<void>() : failure(MCPError(MCPClientError::endpointNotFound())));
    });
    ASSERT_FALSE(end);
    EXPECT_EQ(session.failureOfEnd(end.error()).name, "timedOut");
}

TEST(Mcp, IsCancelledByCtrlCHoweverFastTheServerIs) {
    const ZeltoProgram zelto;
    const auto fifo = (zelto.home / "cwd/begun").string();
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
    std::once_flag begun;
    MCPServer server([&](const ReceivedRequest& request) {
        if (request.method == "DELETE") {
            return slowEnd();
        }
        std::call_once(begun, [&] { std::ofstream(fifo) << "begun\n"; });
        return jsonResponse(request, "{}");
    });
    const auto outcome =
        zelto.runShell("zelto mcp ping " + server.url().absoluteString() +
                       " --repeat 1000000000 --json & read -r < begun; kill -INT $!; wait $!");
    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.text("error"), "cancelled");
    EXPECT_EQ(outcome.errorOutput, "");
    EXPECT_EQ(server.log().back(), "DELETE session-1");
}

TEST(Mcp, AFailingEndOfTheSessionIsAWarning) {
    MCPServer server([](const ReceivedRequest& request) {
        return request.method == "DELETE" ? status(500) : jsonResponse(request, "{}");
    });
    const ZeltoProgram zelto;
    const auto outcome = zelto.run({"mcp", "ping", server.url().absoluteString()});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errorOutput,
              "zelto: warning: the session was not ended: The server responds with status 500.\n");
}

// What `zelto mcp ping` prints, as JSON, of a server that responds to everything like this.
ProgramOutcome pinged(PlayedResponse response) {
    TestHTTPServer server([&](const ReceivedRequest&) { return response; });
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
    EXPECT_EQ(payloadOf(pinged(PlayedResponse::json(R"({"jsonrpc":"1.0","id":1})")), "version"),
              R"(invalidJSONRPCVersion "1.0")");
    EXPECT_EQ(payloadOf(pinged(PlayedResponse::json("{}")), "version"), "invalidJSONRPCVersion null");
    EXPECT_EQ(
        payloadOf(
            pinged(PlayedResponse::json(respondTo(
                "1", R"({"protocolVersion":"x","capabilities":{},"serverInfo":{"name":"","version":""}})"))),
            "version"),
        R"(unsupportedProtocolVersion "x")");
    const auto refused = pinged(
        PlayedResponse::json(R"({"jsonrpc":"2.0","id":1,"error":{"code":-1,"message":"m","data":[1.0]}})"));
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
    EXPECT_EQ(payloadOf(pinged(PlayedResponse::json(R"({"jsonrpc":"2.0","id":[]})")), "x"),
              "invalidJSONRPCIdentifier absent");
    EXPECT_EQ(payloadOf(pinged(PlayedResponse::json(R"({"jsonrpc":"2.0","id":1})")), "x"),
              "missingJSONRPCResult absent");
    EXPECT_EQ(payloadOf(pinged(eventStream("data: \xFF\n")), "x"), "invalidServerSentEventsUTF8 absent");
    EXPECT_EQ(payloadOf(pinged(eventStream(": x\n\n")), "x"), "missingJSONRPCResponse absent");
    EXPECT_EQ(payloadOf(pinged(PlayedResponse::json("ping")), "x"), "decodingError absent");
    EXPECT_EQ(payloadOf(pinged(PlayedResponse::reset()), "x"), "connectionError absent");
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
    MCPServer echo(echoing());
    const auto unsendable =
        zelto.run({"mcp", "call", echo.url().absoluteString(), "no UTF-8: \xFF", "--json"});
    EXPECT_EQ(unsendable.status, 1);
    EXPECT_EQ(unsendable.text("error"), "encodingError");
}

TEST(Mcp, NoNameOfAServerForgesALine) {
    MCPServer server([](const ReceivedRequest& request) {
        return jsonResponse(request, R"({"tools":[{"name":"a\nb\u001b","title":"c\td","inputSchema":{}}]})");
    });
    const ZeltoProgram zelto;
    EXPECT_EQ(zelto.run({"mcp", "tools", server.url().absoluteString()}).output, "a\\nb\\u{1B}  c\\td\n");
}

} // namespace
} // namespace zelto
