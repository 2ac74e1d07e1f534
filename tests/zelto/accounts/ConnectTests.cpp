#include <zelto/ConnectedProgram.h>

#include <accounts/FolderAccounts.h>
#include <export/ServiceTable.h>

#include <Support/FakePlatformInteractor.h>
#include <Support/FakeStorage.h>

#include <ZeltoHost/SignIn/SignInService.h>
#include <ZeltoIntegrations/IntegrationsManager.h>

#include <Platform/PercentEncoding.h>

namespace zelto {

namespace {

using Connect = ConnectedProgram;

const std::string goThere = "urllib.request.urlopen(address).read()\n";

// The notes of flows that have not removed what they had in the key chain; beside them lies their lock.
std::size_t flowsLeft(const ZeltoProgram& zelto) {
    const auto files = ZeltoProgram::filesBelow(zelto.dataDirectory() / "flows");
    EXPECT_FALSE(files.empty());
    return files.empty() ? 0 : files.size() - 1;
}

// Those with a sign-in in the browser whose accounts are checked that way.
std::vector<ServiceType> signInServices(AccountCheck check) {
    std::vector<ServiceType> types;
    for (const auto& each : casesOf<ServiceType>()) {
        if (signInServiceFor(each.value) && IntegrationsManager::accountCheck(each.value) == check) {
            types.push_back(each.value);
        }
    }
    return types;
}

bool hasMeetingCreator(ServiceType type) {
    IntegrationsManager manager(
        std::make_shared<FakeStorage>(), std::make_shared<FakePlatformInteractor>(),
        [](const auto&) { return true; }, "");
    ServiceAccountConfiguration account(type, std::nullopt, true);
    account.credentials = ServiceAccountCredentials::forIdentifier(account.identifier());
    return manager.createMeetingCreator(account) != nullptr;
}

// The services that this version can ask whose an account is, or else those that it should be able to ask.
std::vector<ServiceType> checkedServices(bool ready) {
    auto types = signInServices(AccountCheck::byExporter);
    std::erase_if(
        types, [&](ServiceType type) { return (cli::canExport(type) && !cli::takesFolder(type)) != ready; });
    auto ofMeetings = signInServices(AccountCheck::byMeetingCreator);
    std::erase_if(ofMeetings, [&](ServiceType type) { return hasMeetingCreator(type) != ready; });
    types.insert(types.end(), ofMeetings.begin(), ofMeetings.end());
    return types;
}

std::size_t accountCount(const ZeltoProgram& zelto) {
    return zelto.run({"accounts", "--json"}).json().find("sandboxAccounts")->asArray()->size();
}

} // namespace

TEST_F(Connect, SignsInToTrelloInTheBrowser) {
    sandbox->setConsent(SandboxConsent::allow);
    const auto outcome = run({"connect", "trello", "--opener", browser(goThere)});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "Connected " + sandboxAccount + ".\n");
    EXPECT_EQ(outcome.errorOutput,
              "The page of Trello opens in the browser; zelto waits until you have agreed there.\n");
    EXPECT_EQ(zelto.run({"accounts"}).output, sandboxAccount + "  (sandbox)\n");
    const auto credentials = stored(sandboxAccount);
    EXPECT_TRUE(credentials.accessToken);
    EXPECT_TRUE(credentials.tokenSecret);
    EXPECT_EQ(flowsLeft(zelto), 0U);
}

TEST_F(Connect, FollowsTheSandboxsPagesByItself) {
    const auto outcome = run({"connect", "trello", "--follow", "--json"});
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_EQ(outcome.errorOutput, "");
    const auto document = outcome.json();
    EXPECT_EQ(*document.find("account")->find("identifier")->asString(), sandboxAccount);
    EXPECT_EQ(document.find("verified")->asBool(), true);
}

TEST_F(Connect, KeepsWhatAServiceWithoutACheckGives) {
    for (const auto type : signInServices(AccountCheck::none)) {
        const auto outcome = run({"connect", std::string(nameOf(type)), "--follow", "--json"});
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        EXPECT_EQ(outcome.json().find("verified")->asBool(), false) << nameOf(type);
    }
    EXPECT_TRUE(stored("Zoom").refreshToken);
    EXPECT_TRUE(stored("Zoom").expirationDate);
}

TEST_F(Connect, AsksAtATerminalForTheNameThatAServiceDoesNotGive) {
    sandbox->setConsent(SandboxConsent::allow);
    const auto opener = " --opener " + browser(goThere);
    const auto asksFor = [](const std::string& service, const std::string& typed) {
        return "until('A name for this account of " + service + ".*:')\ntype('" + typed + "')\nend()\n";
    };
    const auto named = driveTerminal(asksFor("Zoom", " Büro \\n"), "connect zoom" + opener);
    EXPECT_EQ(named.status, 0) << named.errorOutput;
    EXPECT_TRUE(stored("Zoom+Büro").accessToken) << named.output;
    const auto ofTeams = driveTerminal(asksFor("Microsoft Teams", "work\\n"), "connect teams" + opener);
    EXPECT_EQ(ofTeams.status, 0) << ofTeams.errorOutput;
    EXPECT_TRUE(stored("Microsoft Teams+work").accessToken) << ofTeams.output;
    const auto unnamed = driveTerminal(asksFor("GoTo", "\\n"), "connect goto" + opener);
    EXPECT_EQ(unnamed.status, 0) << unnamed.errorOutput;
    EXPECT_TRUE(stored("GoTo").accessToken) << unnamed.output;
    // Trello names its accounts itself.
    EXPECT_EQ(driveTerminal("end()\n", "connect trello" + opener).status, 0);
}

TEST_F(Connect, VerifiesTheAccountOfEachServiceThatIsReady) {
    const auto services = checkedServices(true);
    EXPECT_FALSE(services.empty());
    for (const auto type : services) {
        const auto outcome = run({"connect", std::string(nameOf(type)), "--follow", "--json"});
        EXPECT_EQ(outcome.status, 0) << outcome.output;
        EXPECT_EQ(outcome.json().find("verified")->asBool(), true) << nameOf(type);
    }
    EXPECT_EQ(accountCount(zelto), services.size());
}

TEST_F(Connect, KeepsNothingOfAServiceThatThisVersionCannotAsk) {
    for (const auto type : checkedServices(false)) {
        const auto outcome = run({"connect", std::string(nameOf(type)), "--follow", "--json"});
        // The sign-in itself has worked: what fails is what comes behind it.
        EXPECT_EQ(outcome.text("error"), "dataLoadingError") << nameOf(type) << outcome.output;
        EXPECT_NE(outcome.text("message").find("so nothing was kept"), std::string::npos);
        EXPECT_NE(outcome.errorOutput.find("This version has no client for"), std::string::npos);
    }
    EXPECT_EQ(accountCount(zelto), 0U);
}

TEST_F(Connect, WarnsThatAKeyChainInMemoryKeepsNothingForTheNextCommand) {
    const std::string warning =
        "zelto: warning: --keychain memory forgets the account's secrets when this command ends, so the next "
        "command cannot use the account. Take --keychain file to keep them.\n";
    const auto sandboxed = [&](ZeltoProgram::Arguments arguments) {
        arguments.insert(arguments.end(), {"--sandbox", sandbox->url().absoluteString()});
        return zelto.run(arguments);
    };
    const auto connected =
        sandboxed({"connect", "zoom", "--name", "work", "--token", "t", "--keychain", "memory"});
    EXPECT_EQ(connected.status, 0);
    EXPECT_EQ(connected.errorOutput, warning);
    const auto reconnected =
        sandboxed({"reconnect", "Zoom+work", "--token", "t", "--keychain", "memory", "--json"});
    EXPECT_EQ(reconnected.text("result"), "success");
    EXPECT_EQ(reconnected.errorOutput, warning);
    EXPECT_EQ(sandboxed({"reconnect", "Zoom+work", "--token", "t", "--keychain", "file"}).errorOutput, "");
    // An application has no secrets.
    EXPECT_EQ(sandboxed({"connect", "bear", "--keychain", "memory"}).errorOutput, "");
}

TEST_F(Connect, KeepsNothingAfterADenial) {
    sandbox->setConsent(SandboxConsent::deny);
    const auto outcome = run({"connect", "zoom", "--opener", browser(goThere)});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.errorOutput.ends_with("zelto: denied: The access was denied on the page of Zoom.\n"
                                              "Try: zelto connect zoom --opener " +
                                              (zelto.home / "browser").string() + surroundings() + "\n"))
        << outcome.errorOutput;
    EXPECT_EQ(accountCount(zelto), 0U);
    EXPECT_EQ(stored("Zoom").accessToken, std::nullopt);
}

TEST_F(Connect, TellsADenialAfterStandardInputHasEnded) {
    const auto outcome =
        drive("zelto.stdin.close()\n"
              "urllib.request.urlopen(until(r'^  (http.*)$') + '&sandbox_consent=deny').read()\n"
              "zelto.stdin = None\n"
              "sys.stderr.write(zelto.communicate()[1])\n"
              "sys.exit(zelto.returncode)\n",
              "connect zoom --no-browser");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_TRUE(outcome.errorOutput.ends_with("zelto: denied: The access was denied on the page of Zoom.\n"
                                              "Try: zelto connect zoom --no-browser" +
                                              surroundings() + "\n"))
        << outcome.errorOutput;
}

TEST_F(Connect, TellsAnEvernoteSignInThatIsDeniedOrSpentAsWhatItIs) {
    sandbox->setConsent(SandboxConsent::deny);
    const auto denied = run({"connect", "evernote", "--opener", browser(goThere), "--json"});
    EXPECT_EQ(denied.text("error"), "denied");
    EXPECT_EQ(denied.text("message"), "The access was denied on the page of Evernote.");
    sandbox->setConsent(SandboxConsent::allow);
    const auto spent = run({"connect", "evernote", "--opener",
                            browser("class Stay(urllib.request.HTTPRedirectHandler):\n"
                                    "    def redirect_request(self, *arguments): return None\n"
                                    "try: urllib.request.build_opener(Stay).open(address)\n"
                                    "except urllib.error.HTTPError as response: target = "
                                    "response.headers['Location']\n"
                                    "urllib.request.urlopen(target[:-3]).read()\n"),
                            "--json"});
    EXPECT_EQ(spent.text("error"), "refused") << spent.output;
    EXPECT_EQ(spent.text("message"),
              "Evernote does not take the response of its own page; it is spent or too "
              "old. Sign in again (status 401).");
    EXPECT_EQ(accountCount(zelto), 0U);
}

TEST_F(Connect, SeveralAtOnceMakeOneAccount) {
    const auto outcome = zelto.runShell(
        "for i in 1 2 3 4; do zelto --keychain file --sandbox " + sandbox->url().absoluteString() +
        " connect trello --follow 2>> said & done; wait; grep -c 'is connected already' said");
    EXPECT_EQ(outcome.output, "Connected " + sandboxAccount + ".\n3\n");
    EXPECT_EQ(run({"targets", sandboxAccount, "--refresh"}).status, 0);
    EXPECT_EQ(flowsLeft(zelto), 0U);
}

TEST_F(Connect, OfAnAccountThatIsThereNamesReconnect) {
    ASSERT_EQ(run({"connect", "trello", "--follow"}).status, 0);
    const auto before = stored(sandboxAccount);
    const auto outcome = run({"connect", "trello", "--follow"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errorOutput, "zelto: accountAlreadyExist: The account " + sandboxAccount +
                                       " is connected already.\nTry: zelto reconnect " + sandboxAccount +
                                       surroundings() + "\n");
    EXPECT_EQ(stored(sandboxAccount), before);
}

TEST_F(Connect, KeepsNothingWithATokenThatIsRefused) {
    const auto outcome = run({"connect", "trello", "--token", "no-such-token", "--json"});
    EXPECT_EQ(outcome.text("error"), "dataLoadingError");
    EXPECT_EQ(outcome.text("message"), "Trello did not say whose account this is, so nothing was kept; it "
                                       "says: \"invalid token\".");
    EXPECT_EQ(stored(sandboxAccount).accessToken, std::nullopt);
    EXPECT_EQ(flowsLeft(zelto), 0U);
    EXPECT_EQ(accountCount(zelto), 0U);
}

TEST_F(Connect, SaysInJSONThatNothingWasSent) {
    const auto outcome = zelto.run({"--keychain", "file", "--sandbox", "http://127.0.0.1:1", "connect",
                                    "trello", "--token", "token", "--json"});
    EXPECT_EQ(outcome.text("error"), "sandboxError");
    EXPECT_EQ(outcome.json().find("nothingWasSent")->asBool(), true);
}

TEST_F(Connect, SaysThatNothingWasSentWhereTheServiceCannotBeReached) {
    zelto.variables["https_proxy"] = "http://127.0.0.1:1";
    const auto connect = [&](ZeltoProgram::Arguments more) {
        more.insert(more.begin(), {"--keychain", "file", "connect", "trello"});
        return zelto.run(more);
    };
    EXPECT_EQ(connect({"--token", "token"}).errorOutput,
              "zelto: dataLoadingError: Trello could not be reached, so nothing was kept. Nothing was sent.\n"
              "Try: zelto connect trello --token - --keychain file --verbose\n");
    const auto signIn = connect({"--no-browser", "--json"});
    EXPECT_EQ(signIn.text("error"), "connectionError");
    EXPECT_TRUE(signIn.text("message").ends_with(" Nothing was sent.")) << signIn.output;
    EXPECT_EQ(signIn.json().find("nothingWasSent")->asBool(), true);
}

TEST_F(Connect, RefusesARedirectToAnotherMachineOverPlainHTTP) {
    const auto outcome = run({"connect", "trello", "--redirect", "http://example.org/x", "--json"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.text("message"), "--redirect takes an address of plain http on this machine alone: "
                                       "127.0.0.1, [::1] or localhost.");
    EXPECT_EQ(outcome.text("next"), "zelto connect --help");
}

TEST_F(Connect, TakesATokenFromEachPlace) {
    const auto token = sandbox->issueTokens("Trello").value().accessToken;
    const auto connects = [&](const ZeltoProgram::Arguments& more, const std::string& input = {}) {
        ZeltoProgram::Arguments arguments{"connect", "trello"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const auto outcome = run(arguments, input);
        EXPECT_EQ(outcome.output, "Connected " + sandboxAccount + ".\n") << outcome.errorOutput;
        EXPECT_EQ(stored(sandboxAccount).accessToken, token);
        EXPECT_EQ(run({"accounts", "remove", sandboxAccount}).status, 0);
    };
    connects({"--token", token});
    connects({"--token=" + token});
    connects({"--token", "-"}, token + "\r\n");
    connects({"--token", "-"}, "  " + token);
    zelto.variables["ZELTO_TOKEN"] = token + "\n";
    connects({});
}

TEST_F(Connect, TakesTokensWithTheirLifetime) {
    ASSERT_EQ(run({"connect", "zoom", "--name", "work", "--token", "-", "--refresh-token", "-",
                   "--expires-in", "3600"},
                  "access-token\nrefresh-token\n")
                  .output,
              "Connected Zoom+work.\nZoom was not asked whether these credentials are good, nor whose they "
              "are.\n");
    const auto credentials = stored("Zoom+work");
    EXPECT_EQ(credentials.accessToken, "access-token");
    EXPECT_EQ(credentials.refreshToken, "refresh-token");
    const auto left = credentials.expirationDate.value() - Date::now();
    EXPECT_GT(left.count(), 3400);
    EXPECT_LE(left.count(), 3600);
}

TEST_F(Connect, TakesAUserNameAndAPassword) {
    EXPECT_EQ(run({"connect", "instapaper", "--login", "me@example.org", "--password-stdin"}, " pass word \n")
                  .status,
              0);
    const auto credentials = stored("Instapaper+me@example.org");
    EXPECT_EQ(credentials.loginName, "me@example.org");
    EXPECT_EQ(credentials.password, " pass word ");
    EXPECT_EQ(credentials.accessToken, std::nullopt);
}

TEST_F(Connect, TellsWhatIsWrongWithTheOptions) {
    struct Row {
        ZeltoProgram::Arguments arguments;
        std::string message;
        std::string input = {};
    };

    const Row rows[] = {
        {{"zoom", "--token", "two words"}, "--token gives no token"},
        {{"zoom", "--token", ""}, "--token needs a value: TOKEN."},
        {{"zoom", "--token", "-"}, "--token gives no token"},
        {{"zoom", "--token", "caf\xc3\xa9"}, "--token gives no token"},
        {{"zoom", "--token", "-"}, "Standard input is too long", std::string(100'000, 'a')},
        {{"zoom", "--token", "a", "--refresh-token", "-"}, "--refresh-token gives no token"},
        {{"zoom", "--refresh-token", "a"}, "go with --token"},
        {{"zoom", "--expires-in", "60"}, "go with --token"},
        {{"zoom", "--token", "a", "--expires-in", "soon"}, "--expires-in takes seconds"},
        {{"zoom", "--token", "a", "--expires-in", "-1"}, "--expires-in takes seconds"},
        {{"zoom", "--token", "a", "--expires-in", "1e999"}, "--expires-in takes seconds"},
        {{"zoom", "--login", "me"}, "are for services without tokens"},
        {{"zoom", "--password-stdin"}, "are for services without tokens"},
        {{"instapaper"}, "user name and a password"},
        {{"instapaper", "--token", "a"}, "has no tokens"},
        {{"instapaper", "--login", "me"}, "--password-stdin"},
        {{"instapaper", "--login", "me", "--password-stdin"}, "more than one line", "a\nb\n"},
        {{"zoom", "--redirect", "no url"}, "--redirect takes"},
        {{"zoom", "--redirect", "http://127.0.0.1:1/?a=b"}, "--redirect takes"},
        {{"zoom", "--opener", "'open"}, "--opener leaves"},
    };
    for (const auto& row : rows) {
        auto arguments = row.arguments;
        arguments.insert(arguments.begin(), "connect");
        arguments.push_back("--json");
        const auto outcome = run(arguments, row.input);
        EXPECT_EQ(outcome.status, 2) << outcome.output;
        EXPECT_EQ(outcome.text("error"), "wrongUsage");
        EXPECT_NE(outcome.text("message").find(row.message), std::string::npos) << outcome.text("message");
    }
    const auto follow = zelto.run({"connect", "zoom", "--follow", "--json"});
    EXPECT_NE(follow.text("message").find("--sandbox"), std::string::npos);
}

TEST_F(Connect, TriesTheKeyChainBeforeItAsksAnything) {
    ASSERT_EQ(run({"connect", "bear"}).status, 0);
    std::filesystem::create_directory(zelto.dataDirectory() / "keychain");
    const auto outcome = run({"connect", "zoom", "--opener", browser(goThere), "--json"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "keyChainError") << outcome.output;
    EXPECT_TRUE(sandbox->requests().empty());
    EXPECT_EQ(outcome.errorOutput, "");
}

TEST_F(Connect, PrintsTheAddressAndTakesThePastedOne) {
    const auto redirect = "https://example.org/oauth-redirect/zoom";
    const auto wrong = std::string(redirect) + "?code=a&state=wrong";
    const auto outcome =
        run({"connect", "zoom", "--redirect", redirect},
            "garbage\n\n" + wrong + "\nhttps://evil.example/\n" + redirect + "?code=a&sta\n");
    EXPECT_EQ(outcome.status, 1);
    const auto& text = outcome.errorOutput;
    EXPECT_TRUE(text.starts_with("Open this address in a browser:\n\n  " + sandbox->url().absoluteString()))
        << text;
    EXPECT_NE(text.find("/host/zoom.us/oauth/authorize?response_type=code&"), std::string::npos);
    EXPECT_NE(text.find("paste the address that the browser ends at here; it begins with\n" +
                        std::string(redirect) + "\n"),
              std::string::npos);
    const auto notTheAddress = "zelto: that is not the address; it begins with " + std::string(redirect) +
                               ". Paste the whole of it.\n";
    EXPECT_NE(text.find(notTheAddress +
                        "zelto: that address is the end of another sign-in. Paste that of this "
                        "one.\n" +
                        notTheAddress +
                        "zelto: that address is not whole: its end is missing. Paste all of it.\n"),
              std::string::npos)
        << text;
    EXPECT_TRUE(
        text.ends_with("zelto: canceled: Standard input ended before the right address was pasted: that "
                       "address is not whole: its end is missing. Paste all of it.\n"
                       "Try: zelto connect zoom --redirect " +
                       std::string(redirect) + surroundings() + "\n"))
        << text;
    EXPECT_EQ(run({"connect", "zoom", "--redirect", redirect, "--json"}).text("message"),
              "Standard input ended before the address was pasted.");
}

TEST_F(Connect, NamesTheSandboxsPortForABrowserOnAnotherMachine) {
    const auto port = std::to_string(sandbox->url().port().value());
    const auto pasted = run({"connect", "zoom", "--redirect", "https://example.org/zoom"});
    const auto start =
        "The page is on port " + port +
        " of this machine. If the browser runs on another one, run this there first:\n\n  ssh -L " + port +
        ":127.0.0.1:" + port + " ";
    EXPECT_NE(pasted.errorOutput.find(start), std::string::npos) << pasted.errorOutput;
}

TEST_F(Connect, TakesTheAddressThatWasPasted) {
    sandbox->setConsent(SandboxConsent::allow);
    const auto outcome =
        drive("class Stay(urllib.request.HTTPRedirectHandler):\n"
              "    def redirect_request(self, *arguments): return None\n"
              "try: urllib.request.build_opener(Stay).open(until(r'^  (http.*)$'))\n"
              "except urllib.error.HTTPError as response: target = response.headers['Location']\n"
              "zelto.stdin.write('nonsense\\n' + target + '\\n')\n"
              "zelto.stdin.flush()\n"
              "sys.exit(zelto.wait())\n",
              "connect zoom --no-browser");
    EXPECT_EQ(outcome.status, 0) << outcome.errorOutput;
    EXPECT_TRUE(outcome.output.starts_with("Connected Zoom.\n")) << outcome.output;
    EXPECT_TRUE(stored("Zoom").accessToken);
}

TEST_F(Connect, PrintsTheAddressWhenTheBrowserDoesNotStart) {
    for (const std::string opener : {"/none/such", "false"}) {
        const auto outcome =
            drive("until('(begins with)')\n"
                  "until('(ssh -L PORT:127.0.0.1:PORT -L ([0-9]+):127.0.0.1:\\\\2 .)'"
                  ".replace('PORT', str(urllib.parse.urlsplit(until(r'^  (http.*)$')).port)))\n"
                  "zelto.send_signal(signal.SIGINT)\n"
                  "until('(zelto: canceled)')\n"
                  "print(seen)\n"
                  "sys.exit(zelto.wait())\n",
                  "connect zoom --opener " + opener);
        EXPECT_EQ(outcome.status, 130) << outcome.errorOutput;
        EXPECT_NE(outcome.output.find(opener), std::string::npos);
    }
}

TEST_F(Connect, IsCanceledByCtrlC) {
    const auto opener = browser("import os, signal\nos.kill(os.getppid(), signal.SIGINT)\n");
    const auto outcome = run({"connect", "zoom", "--opener", opener, "--json"});
    EXPECT_EQ(outcome.status, 130);
    EXPECT_EQ(outcome.text("error"), "canceled");
}

TEST_F(Connect, KeepsSecretsOutOfTheListOfProcesses) {
    const auto seen = (zelto.home / "seen").string();
    zelto.variables["ZELTO_ZOOM_CLIENT_ID"] = "canary-client";
    zelto.variables["ZELTO_ZOOM_CLIENT_SECRET"] = "canary-secret";
    zelto.variables["ZELTO_TOKEN"] = "canary-token";
    zelto.variables["ZELTO_KEYCHAIN_PASSPHRASE"] = "canary-passphrase";
    const auto opener =
        zelto.home.write("look", "#!/bin/sh\n{ env; tr '\\0' '\\n' < /proc/$PPID/cmdline; tr '\\0' "
                                 "'\\n' < /proc/$PPID/environ; } > '" +
                                     seen + "' 2>&1\nexit 1\n");
    std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
    const auto mail = ZeltoProgram::sample("plain-note.eml");
    EXPECT_EQ(zelto.run({"export", mail, "--to", "bear", "--opener", opener}).status, 1);
    const auto text = TemporaryFolder::read(seen);
    EXPECT_NE(text.find("--opener"), std::string::npos);
    EXPECT_EQ(text.find("canary"), std::string::npos) << text;
}

TEST_F(Connect, BlanksTheTokenInItsArguments) {
    // It waits for standard input, and meanwhile the list of processes is read.
    const auto lookUntil = [](const std::string& shown) {
        return "while True:\n"
               "    line = open('/proc/%d/cmdline' % zelto.pid).read()\n"
               "    if '" +
               shown +
               "' in line: break\n"
               "print(line.replace(chr(0), ' '))\n";
    };
    const auto apart = drive(lookUntil("xxxxxxxxxx"), "connect zoom --token canary-one --refresh-token -");
    EXPECT_TRUE(apart.output.ends_with(" connect zoom --token xxxxxxxxxx --refresh-token - \n"))
        << apart.output;
    const auto joined =
        drive(lookUntil("refresh-token=x"), "connect zoom --token=canary-two --refresh-token=-");
    EXPECT_TRUE(joined.output.ends_with(" connect zoom --token=xxxxxxxxxx --refresh-token=x \n"))
        << joined.output;
}

TEST_F(Connect, WritesItsSecretsToTheKeyChainAlone) {
    sandbox->setConsent(SandboxConsent::allow);
    ASSERT_EQ(zelto
                  .runShell("for form in --verbose --json; do zelto $form --keychain file --sandbox " +
                            sandbox->url().absoluteString() + " connect zoom --name \"$form\" --opener " +
                            browser(goThere) + " >> out 2>> err; done")
                  .status,
              0);
    std::vector<std::string> secrets;
    for (const auto* name : {"Zoom+--verbose", "Zoom+--json"}) {
        const auto credentials = stored(name);
        secrets.insert(secrets.end(), {credentials.accessToken.value(), credentials.refreshToken.value()});
    }
    ASSERT_EQ(run({"connect", "zoom", "--name", "given", "--token", "canary-given", "--verbose"}).status, 0);
    secrets.emplace_back("canary-given");
    for (const auto& [file, content] : ZeltoProgram::filesBelow(zelto.home.path())) {
        for (const auto& secret : secrets) {
            EXPECT_EQ(content.find(secret), std::string::npos) << file;
            EXPECT_EQ(content.find(percentEncode(secret).value()), std::string::npos) << file;
        }
    }
}

} // namespace zelto
