#include <zelto/ConnectedProgram.h>

namespace zelto {

namespace {

using TypedSecrets = ConnectedProgram;

const std::string tokenPrompt =
    "until(r'Access token of Zoom \\(it is not shown\\): ')\nprint('hidden:', hides())\n";
const std::string connectsZoom = "connect zoom --name typed --token - --json";

// What the driver prints once the program has ended.
const std::string asBefore = "the terminal is as before\n";

bool holds(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

} // namespace

TEST_F(TypedSecrets, AreTakenUnseen) {
    const auto outcome = driveTerminal(tokenPrompt + "type('canary-wrong\\x15canary-accexx\\x7f\\x08ss\\n')\n"
                                                     "until('Refresh token of Zoom')\n"
                                                     "type('canary-refresh\\n')\n"
                                                     "end()\n",
                                       "connect zoom --name typed --token - --refresh-token -");
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_TRUE(holds(outcome.output, "hidden: True\n")) << outcome.output;
    EXPECT_TRUE(outcome.output.ends_with(asBefore)) << outcome.output;
    EXPECT_FALSE(holds(outcome.errorOutput, "canary")) << outcome.errorOutput;
    EXPECT_EQ(stored("Zoom+typed").accessToken, "canary-access");
    EXPECT_EQ(stored("Zoom+typed").refreshToken, "canary-refresh");
}

TEST_F(TypedSecrets, MayBeLongerThanATerminalsOwnLines) {
    const auto outcome =
        driveTerminal(tokenPrompt + "type('0123456789' * 1000 + '\\n')\nend()\n", connectsZoom);
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_EQ(stored("Zoom+typed").accessToken.value_or("").size(), 10'000U);
}

TEST_F(TypedSecrets, OfAPasswordAreTakenUnseen) {
    const auto outcome = driveTerminal("until('Password of Instapaper')\nprint('hidden:', hides())\n"
                                       "type(' canary w\\xf6rd \\n')\nend()\n",
                                       "connect instapaper --login me --password-stdin");
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_TRUE(holds(outcome.output, "hidden: True\n")) << outcome.output;
    EXPECT_TRUE(outcome.output.ends_with(asBefore)) << outcome.output;
    EXPECT_FALSE(holds(outcome.errorOutput, "canary")) << outcome.errorOutput;
    EXPECT_EQ(stored("Instapaper+me").password, " canary w\xc3\xb6rd ");
}

TEST_F(TypedSecrets, LeaveTheTerminalAsItWasOnEveryWayOut) {
    struct Row {
        std::string typed;
        int status;
        std::string said;
    };

    const auto canceled =
        R"({"error":"canceled","message":"The sign-in was canceled.","next":"zelto connect zoom )";
    const Row rows[] = {
        {"type('\\x04')\n", 2, "--token gives no token"},
        {"type('two words\\n')\n", 2, "--token gives no token"},
        {"type('0123456789' * 7000)\n", 2, "Standard input is too long for --token."},
        {"type('canary\\x03')\n", 130, canceled},
        {"zelto.send_signal(signal.SIGTERM)\n", 130, canceled},
    };
    for (const auto& row : rows) {
        const auto outcome = driveTerminal(tokenPrompt + row.typed + "end()\n", connectsZoom);
        EXPECT_EQ(outcome.status, row.status) << row.typed << outcome.errorOutput;
        EXPECT_TRUE(holds(outcome.output, row.said)) << row.typed << outcome.output;
        EXPECT_TRUE(outcome.output.ends_with(asBefore)) << row.typed << outcome.output;
        EXPECT_FALSE(holds(outcome.errorOutput, "canary")) << outcome.errorOutput;
    }
}

TEST_F(TypedSecrets, AreHiddenAgainWhenTheProgramGoesOnAfterAStop) {
    const auto outcome = driveTerminal(tokenPrompt + "zelto.send_signal(signal.SIGSTOP)\n"
                                                     "os.waitpid(zelto.pid, os.WUNTRACED)\n"
                                                     "termios.tcsetattr(inner, termios.TCSANOW, before)\n"
                                                     // Again, since a thread sanitizer may lose it.
                                                     "while not hides(): zelto.send_signal(signal.SIGCONT)\n"
                                                     "type('canary-access\\n')\n"
                                                     "end()\n",
                                       connectsZoom);
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_TRUE(outcome.output.ends_with(asBefore)) << outcome.output;
    EXPECT_FALSE(holds(outcome.errorOutput, "canary")) << outcome.errorOutput;
}

TEST_F(TypedSecrets, OfAPastedAddressAreTakenUnseen) {
    sandbox->setConsent(SandboxConsent::allow);
    const std::string toTheEnd =
        "until(r'^  (http.*)\\r$')\n"
        "while not hides(): pass\n"
        "import urllib.error, urllib.request\n"
        "class Stay(urllib.request.HTTPRedirectHandler):\n"
        "    def redirect_request(self, *arguments): return None\n"
        "page = re.search(r'^  (http.*)\\r$', seen, re.M).group(1)\n"
        "try: urllib.request.build_opener(Stay).open(page)\n"
        "except urllib.error.HTTPError as response: target = response.headers['Location']\n";
    const auto pasted = driveTerminal(toTheEnd + "type(target[:-3] + '\\n')\n"
                                                 "until('its end is missing')\n"
                                                 "type(target + '\\n')\n"
                                                 "end()\n",
                                      "connect zoom --name pasted --no-browser");
    EXPECT_EQ(pasted.status, 0) << pasted.errorOutput;
    EXPECT_TRUE(holds(pasted.errorOutput, "What you paste is not shown")) << pasted.errorOutput;
    EXPECT_FALSE(holds(pasted.errorOutput, "?code=")) << pasted.errorOutput;
    EXPECT_TRUE(pasted.output.ends_with(asBefore)) << pasted.output;
    const auto canceled =
        driveTerminal(toTheEnd + "type('\\x03')\nend()\n", "connect zoom --no-browser --json");
    EXPECT_EQ(canceled.status, 130) << canceled.errorOutput;
    EXPECT_TRUE(holds(canceled.output, R"({"error":"canceled",)")) << canceled.output;
    EXPECT_TRUE(canceled.output.ends_with(asBefore)) << canceled.output;
}

TEST_F(TypedSecrets, OfHeaderFieldsAreTakenUnseen) {
    const auto outcome = driveTerminal("until('they are not shown')\nprint('hidden:', hides())\n"
                                       "type('Authorization: Bearer canary\\n\\x04')\nend()\n",
                                       "mcp ping http://127.0.0.1:1/mcp --header-stdin --json");
    EXPECT_TRUE(holds(outcome.output, R"({"error":"connectionError",)")) << outcome.output;
    EXPECT_TRUE(holds(outcome.output, "hidden: True\n")) << outcome.output;
    EXPECT_TRUE(outcome.output.ends_with(asBefore)) << outcome.output;
    EXPECT_FALSE(holds(outcome.errorOutput, "canary")) << outcome.errorOutput;
}

TEST_F(TypedSecrets, OrAnyOtherInputGiveWayToCtrlC) {
    struct Row {
        std::string arguments;
        std::string document;
    };

    const std::string mail =
        R"({"error":"canceled","message":"The reading of standard input was canceled.",)";
    const std::string signIn = R"({"error":"canceled","message":"The sign-in was canceled.","next":"zelto )";
    const auto again = " --keychain file --json --sandbox " + sandbox->url().absoluteString() + R"("})";
    const Row rows[] = {
        {"export - --to bear", mail + R"("next":"zelto export --help"})"},
        {"config - --to bear", mail + R"("next":"zelto config --help"})"},
        {"preview - --to bear", mail + R"("next":"zelto preview --help"})"},
        {"connect zoom --token -", signIn + "connect zoom --token -" + again},
        {"connect instapaper --login me --password-stdin",
         signIn + "connect instapaper --login me --password-stdin" + again},
        {"mcp ping http://127.0.0.1:1/mcp --header-stdin",
         R"({"error":"cancelled","message":"The request was cancelled.","next":"zelto mcp ping --help"})"},
    };
    for (const auto& row : rows) {
        const auto outcome = interruptWhileReading(row.arguments + " --json");
        EXPECT_EQ(outcome.status, 130) << row.arguments << outcome.errorOutput;
        EXPECT_EQ(outcome.output, row.document + "\n");
        EXPECT_EQ(outcome.errorOutput, "");
    }
}

} // namespace zelto
