#include <zelto/StoredAccount.h>
#include <zelto/ZeltoProgram.h>

#include <ZeltoSandbox/SandboxServer.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

std::string refusal(const std::string& address) {
    return "--sandbox (or $ZELTO_SANDBOX) takes the address that `zelto sandbox` prints, like "
           "http://127.0.0.1:8377, not \"" +
           address + "\".";
}

} // namespace

TEST(SandboxOption, TakesNothingButAnAddressOfThisMachine) {
    ZeltoProgram zelto;
    for (const auto* address :
         {"http://example.com:80", "https://127.0.0.1:8377", "http://127.0.0.1.example.com",
          "http://10.0.0.1:8377", "http://127.0.0.1:8377/x", "http://127.0.0.1:8377/?a",
          "http://u@127.0.0.1:8377", "127.0.0.1:8377", "x"}) {
        const auto outcome = zelto.run({"accounts", "--json", "--sandbox", address});
        EXPECT_EQ(outcome.status, 2) << address;
        EXPECT_EQ(outcome.text("message"), refusal(address));
        zelto.variables["ZELTO_SANDBOX"] = address;
        EXPECT_EQ(zelto.run({"accounts", "--json"}).status, 2) << address;
        zelto.variables.erase("ZELTO_SANDBOX");
    }
    for (const auto* address : {"http://127.0.0.1:8377", "http://[::1]:8377/", "http://localhost:8377"}) {
        EXPECT_EQ(zelto.run({"accounts", "--sandbox", address}).status, 0) << address;
    }
    zelto.variables["ZELTO_SANDBOX"] = "x";
    EXPECT_EQ(zelto.run({"accounts", "--sandbox", "http://127.0.0.1:1"}).status, 0);
}

TEST(SandboxOption, SendsEverythingToTheSandbox) {
    const auto sandbox = std::move(*SandboxServer::start());
    ZeltoProgram zelto;
    zelto.variables["ZELTO_SANDBOX"] = sandbox->url().absoluteString();
    const auto connected = zelto.run({"connect", "trello", "--follow", "--keychain", "file", "--json"});
    EXPECT_EQ(connected.text("result"), "success") << connected.output << connected.errorOutput;
    const auto exported = zelto.run({"export", ZeltoProgram::sample("plain-note.eml"), "--to", "trello",
                                     "--as", "backLink", "--keychain", "file", "--json"});
    EXPECT_EQ(exported.text("result"), "success") << exported.output << exported.errorOutput;
    std::vector<std::string> hosts;
    for (const auto& request : sandbox->requests()) {
        EXPECT_EQ(request.problem, "");
        hosts.push_back(request.host);
    }
    EXPECT_EQ(hosts, (std::vector<std::string>{"trello.com", "trello.com", "trello.com", "api.trello.com",
                                               "api.trello.com", "api.trello.com"}));
}

TEST(SandboxOption, TellsInEveryCommandThatNobodyListensThere) {
    ZeltoProgram zelto;
    addAccount(zelto, ServiceAccountConfiguration(ServiceType::Trello, "me", true));
    const auto mail = ZeltoProgram::sample("plain-note.eml");
    const ZeltoProgram::Arguments commands[] = {
        {"connect", "trello"},
        {"connect", "zoom"},
        {"connect", "zoom", "--no-browser"},
        {"connect", "zoom", "--follow"},
        {"connect", "trello", "--follow"},
        {"connect", "trello", "--token", "token"},
        {"reconnect", "Trello+me"},
        {"reconnect", "Trello+me", "--token", "token"},
        {"targets", "trello", "--refresh"},
        {"config", mail, "--to", "trello"},
        {"export", mail, "--to", "trello", "--as", "backLink"},
        {"mcp", "ping", "https://mcp.example/mcp"},
        {"mcp", "tools", "https://mcp.example/mcp"},
        {"mcp", "call", "https://mcp.example/mcp", "echo"},
    };
    for (auto arguments : commands) {
        arguments.insert(arguments.end(),
                         {"--sandbox", "http://127.0.0.1:1", "--keychain", "file", "--json"});
        const auto outcome = zelto.run(arguments);
        EXPECT_EQ(outcome.status, 1) << outcome.output;
        EXPECT_EQ(outcome.text("error"), "sandboxError") << outcome.output << outcome.errorOutput;
        EXPECT_EQ(
            outcome.text("message"),
            "The sandbox at http://127.0.0.1:1 does not respond: start it with `zelto sandbox --port 1`. "
            "Nothing was sent.");
        EXPECT_EQ(outcome.text("next"), "zelto sandbox --port 1");
        EXPECT_EQ(outcome.errorOutput, "");
    }
}

TEST(SandboxOption, IsNoMatterWhereNothingIsAskedOfIt) {
    ZeltoProgram zelto;
    zelto.variables["ZELTO_SANDBOX"] = "http://127.0.0.1:1";
    const auto mail = ZeltoProgram::sample("plain-note.eml");
    EXPECT_EQ(zelto.run({"accounts"}).status, 0);
    EXPECT_EQ(zelto.run({"export", mail, "--to", "bear", "--opener", "-"}).status, 0);
    EXPECT_EQ(zelto.run({"export", mail, "--to", "trello", "--json"}).text("error"), "unknownAccount");
    EXPECT_EQ(zelto.run({"mcp", "ping", "http://127.0.0.1:1/mcp", "--json"}).text("error"),
              "connectionError");
}

TEST(SandboxOption, TellsThatTheSandboxHasEndedWhileABrowserIsAwaited) {
    const ZeltoProgram zelto;
    const auto driver = zelto.home.write(
        "driver",
        "import subprocess, sys\n"
        "sandbox = subprocess.Popen(['zelto', 'sandbox', '--port', '0', '--quiet'], text=True,\n"
        "                           stdout=subprocess.PIPE)\n"
        "url = sandbox.stdout.readline().strip()\n"
        "connect = subprocess.Popen(['zelto', 'connect', 'zoom', '--no-browser', '--sandbox', url,\n"
        "                            '--keychain', 'file', '--json'],\n"
        "                           stdin=subprocess.PIPE, stderr=subprocess.PIPE, text=True)\n"
        "while 'begins with' not in connect.stderr.readline(): pass\n"
        "sandbox.kill()\n"
        "print(url, connect.wait())\n");
    const auto outcome = zelto.runShell("python3 " + driver.string());
    EXPECT_NE(outcome.output.find(R"({"error":"sandboxError","message":"The sandbox at http://127.0.0.1:)"),
              std::string::npos)
        << outcome.output << outcome.errorOutput;
    EXPECT_TRUE(outcome.output.ends_with(" 1\n")) << outcome.output;
}

TEST(SandboxCommand, PrintsItsAddressAndEndsByCtrlC) {
    const ZeltoProgram zelto;
    const auto outcome = zelto.runShell(
        "zelto sandbox --port 0 --quiet > \"$HOME/url\" & until [[ -s $HOME/url ]]; do sleep 0.02; done; "
        "zelto accounts --sandbox \"$(cat \"$HOME/url\")\" && kill -INT $! && wait $!; echo \"status $?\"; "
        "cat \"$HOME/url\"");
    EXPECT_NE(outcome.output.find("status 0\nhttp://127.0.0.1:"), std::string::npos)
        << outcome.output << outcome.errorOutput;
}

TEST(SandboxCommand, SaysWhatIsWrong) {
    const ZeltoProgram zelto;
    const auto sandbox = std::move(*SandboxServer::start());
    const auto taken = zelto.run({"sandbox", "--json", "--port", std::to_string(sandbox->port())});
    EXPECT_EQ(taken.status, 1);
    EXPECT_EQ(taken.text("error"), "sandboxError");
    EXPECT_EQ(taken.text("next"), "zelto sandbox --port 0 --json");
    for (const auto* port : {"x", "-1", "65536", "1.5"}) {
        const auto outcome = zelto.run({"sandbox", "--json", std::string("--port=") + port});
        EXPECT_EQ(outcome.status, 2) << port;
        EXPECT_EQ(outcome.text("message"),
                  std::string("--port is a number from 0 to 65535, not \"") + port + "\".");
    }
    EXPECT_EQ(zelto.run({"sandbox", "--json", "--consent", "perhaps"}).status, 2);
}

} // namespace zelto
