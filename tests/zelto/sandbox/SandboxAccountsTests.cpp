#include <zelto/ConnectedProgram.h>
#include <zelto/TrelloAccount.h>

#include <Support/TestHTTPServer.h>

#include <ZeltoHost/Storage/SQLiteAccountStorage.h>

namespace zelto {

namespace {

class SandboxAccounts : public ConnectedProgram {
  protected:
    using Arguments = ZeltoProgram::Arguments;

    void connect() const {
        const auto connected = run({"connect", "trello", "--follow", "--json"});
        ASSERT_EQ(connected.status, 0) << connected.output;
        EXPECT_EQ(connected.json().find("sandbox")->asBool(), true);
    }

    // An account that is none of the sandbox, though its token is good there.
    void addReal() const {
        addTrelloAccount(zelto, AccountOf::service);
        auto tokens = stored(trelloAccount);
        tokens.accessToken = sandbox->issueTokens("Trello")->accessToken;
        storeTokens(zelto, tokens);
    }

    ProgramOutcome withoutSandbox(Arguments arguments) const {
        arguments.insert(arguments.end(), {"--keychain", "file", "--json"});
        return zelto.run(arguments);
    }

    bool isOfSandbox(const std::string& identifier) const {
        const auto storage = SQLiteAccountStorage::open(zelto.dataDirectory()).value();
        return storage->tryMarks(storage->load(identifier).value()).value().isOfSandbox;
    }

    // That each command which uses the account ends by this failure, and sends nothing.
    void expectRefusals(const std::string& account, const Arguments& options, const std::string& error,
                        const std::string& message, const std::string& next) const {
        const auto before = sandbox->requests().size();
        for (const Arguments& command : {Arguments{"targets", account, "--refresh"},
                                         {"targets", account},
                                         {"config", mail, "--to", account},
                                         {"preview", mail, "--to", account},
                                         {"export", mail, "--to", account}}) {
            auto arguments = command;
            arguments.insert(arguments.end(), options.begin(), options.end());
            const auto refused = withoutSandbox(arguments);
            EXPECT_EQ(refused.status, 1) << command.front();
            EXPECT_EQ(refused.text("error"), error) << command.front();
            EXPECT_EQ(refused.text("message"), message);
            EXPECT_EQ(refused.text("next"), next);
        }
        EXPECT_EQ(sandbox->requests().size(), before);
    }

    std::string url() const { return sandbox->url().absoluteString(); }

    std::string question() const {
        return "zelto: The account " + trelloAccount +
               " was not connected in a sandbox, and its tokens would go to the one at " + url() +
               ". Use it there? [y/N] ";
    }

    const std::string mail = ZeltoProgram::sample("plain-note.eml");
};

} // namespace

TEST_F(SandboxAccounts, AreUsedWithASandboxAlone) {
    connect();
    const auto message = "The account " + sandboxAccount +
                         " was connected in a sandbox, and is used with one alone. Start one and pass its "
                         "address by --sandbox.";
    expectRefusals(sandboxAccount, {}, "sandboxAccount", message, "zelto sandbox");
    const auto dryRun = withoutSandbox({"export", mail, "--to", "trello", "--dry-run"});
    EXPECT_EQ(dryRun.text("error"), "sandboxAccount");
    EXPECT_EQ(run({"targets", sandboxAccount, "--refresh"}).status, 0);
    EXPECT_EQ(withoutSandbox({"accounts", "remove", sandboxAccount}).status, 0);
}

TEST_F(SandboxAccounts, AreListedBehindTheOthers) {
    connect();
    addTrelloAccount(zelto, AccountOf::service);
    ASSERT_EQ(run({"connect", "bear"}).status, 0);
    EXPECT_EQ(zelto.run({"accounts"}).output, trelloAccount + "\nBear\n" + sandboxAccount + "  (sandbox)\n");
    const auto document = zelto.run({"accounts", "--json"}).json();
    const auto identifiers = [&](std::string_view key) {
        std::vector<std::string> texts;
        for (const auto& each : *document.find(key)->asArray()) {
            texts.push_back(*each.find("identifier")->asString());
        }
        return texts;
    };
    EXPECT_EQ(identifiers("accounts"), (std::vector<std::string>{trelloAccount, "Bear"}));
    EXPECT_EQ(identifiers("sandboxAccounts"), std::vector{sandboxAccount});
}

TEST_F(SandboxAccounts, AreNotApplications) {
    ASSERT_EQ(run({"connect", "bear"}).status, 0);
    ASSERT_EQ(run({"export", mail, "--to", "things", "--opener", "-"}).status, 0);
    EXPECT_FALSE(isOfSandbox("Bear"));
    EXPECT_FALSE(isOfSandbox("Things"));
    for (const auto* each : {"Bear", "Things"}) {
        EXPECT_EQ(withoutSandbox({"export", mail, "--to", each, "--opener", "-"}).status, 0);
        EXPECT_EQ(run({"export", mail, "--to", each, "--opener", "-"}).status, 0);
    }
}

TEST_F(SandboxAccounts, AreThoseThatTheServicesNameMeansInASandbox) {
    connect();
    addTrelloAccount(zelto, AccountOf::service);
    const auto used = [&](const ProgramOutcome& outcome) { return outcome.text("identifier"); };
    const Arguments dryRun{"export",   mail,       "--to",      "trello",   "--as",
                           "backLink", "--target", "Work/Done", "--dry-run"};
    const Arguments sandboxed{"export", mail, "--to", "trello", "--as", "backLink", "--json"};
    EXPECT_EQ(used(withoutSandbox(dryRun)), trelloAccount);
    EXPECT_EQ(used(run(sandboxed)), sandboxAccount);
    // The last one that was used is of the sandbox now.
    EXPECT_EQ(used(withoutSandbox(dryRun)), trelloAccount);
    EXPECT_EQ(used(run(sandboxed)), sandboxAccount);
}

TEST_F(SandboxAccounts, LeaveTheRealAccountThatWasUsedLast) {
    connect();
    addReal();
    {
        const auto storage = SQLiteAccountStorage::open(zelto.dataDirectory()).value();
        storage->setLastUsedConfiguration(ServiceType::Trello, storage->load(trelloAccount));
    }
    ASSERT_EQ(run({"export", mail, "--to", "trello", "--as", "backLink"}).status, 0);
    EXPECT_EQ(zelto.run({"accounts"}).output,
              trelloAccount + "  (last used)\n" + sandboxAccount + "  (sandbox)\n");
}

TEST_F(SandboxAccounts, AreTheOnlyOnesThatGoToASandboxUnasked) {
    addReal();
    expectRefusals(trelloAccount, {"--sandbox", url()}, "realAccount",
                   "The account " + trelloAccount +
                       " was not connected in a sandbox, and its tokens would go to the one at " + url() +
                       ". Connect an account there, or pass --real-account if that is meant.",
                   "zelto connect Trello --sandbox " + url() + " --keychain file");
    EXPECT_EQ(run({"reconnect", trelloAccount, "--token", "t", "--json"}).text("error"), "realAccount");
    EXPECT_EQ(run({"targets", trelloAccount, "--refresh", "--real-account"}).status, 0);
    EXPECT_FALSE(isOfSandbox(trelloAccount));
    const auto exported = run({"export", mail, "--to", trelloAccount, "--as", "backLink", "--real-account"});
    EXPECT_EQ(exported.status, 0) << exported.errorOutput;
}

TEST_F(SandboxAccounts, AreTheOnlyOnesThatGoToAnAddressWithoutAProof) {
    addReal();
    for (const auto* body : {"{}", R"({"proof":"guessed"})", "<html>"}) {
        const TestHTTPServer other([&](const ReceivedRequest&) { return PlayedResponse::json(body); });
        const auto refused = withoutSandbox({"targets", trelloAccount, "--refresh", "--real-account",
                                             "--sandbox", other.url().absoluteString()});
        EXPECT_EQ(refused.text("error"), "notASandbox");
        EXPECT_EQ(refused.text("message"),
                  "The account " + trelloAccount +
                      " was not connected in a sandbox, and its tokens were not sent to " +
                      other.url().absoluteString() + ". What listens there is no sandbox of this version.");
        EXPECT_EQ(refused.text("next"), "zelto sandbox");
        ASSERT_EQ(other.requests().size(), 1U);
        const auto request = other.requests().front();
        EXPECT_TRUE(request.target.starts_with("/control/identity?challenge=")) << request.target;
        EXPECT_EQ(request.headers.value("Authorization"), std::nullopt);
    }
    const auto nobody =
        withoutSandbox({"targets", trelloAccount, "--real-account", "--sandbox", "http://127.0.0.1:1"});
    EXPECT_EQ(nobody.text("error"), "notASandbox");
}

TEST_F(SandboxAccounts, AreTheOnlyOnesThatTheTerminalDoesNotAskAbout) {
    addReal();
    const Arguments targets{"targets", trelloAccount, "--refresh", "--keychain", "file", "--sandbox", url()};
    for (const auto* typed : {"n\n", "\n", "yesterday\n"}) {
        const auto refused = zelto.runOnTerminal(targets, typed);
        EXPECT_NE(refused.output.find(question()), std::string::npos) << refused.output;
        EXPECT_NE(refused.output.find("canceled: Nothing was sent."), std::string::npos) << refused.output;
        EXPECT_EQ(refused.status, 1);
    }
    EXPECT_EQ(sandbox->requests().size(), 0U);
    for (const auto* typed : {"y\n", "Yes\n"}) {
        EXPECT_EQ(zelto.runOnTerminal(targets, typed).status, 0);
    }
    EXPECT_GT(sandbox->requests().size(), 0U);
}

TEST_F(SandboxAccounts, ComeOfASignInInTheSandbox) {
    connect();
    {
        // As an earlier version kept it.
        const auto storage = SQLiteAccountStorage::open(zelto.dataDirectory()).value();
        ASSERT_TRUE(storage->trySetMarks(storage->load(sandboxAccount).value(), {}));
    }
    EXPECT_EQ(run({"reconnect", sandboxAccount, "--follow", "--json"}).text("error"), "realAccount");
    EXPECT_FALSE(isOfSandbox(sandboxAccount));
    EXPECT_EQ(run({"reconnect", sandboxAccount, "--follow", "--real-account"}).status, 0);
    EXPECT_TRUE(isOfSandbox(sandboxAccount));
    EXPECT_EQ(run({"targets", sandboxAccount, "--refresh"}).status, 0);
}

TEST_F(SandboxAccounts, BecomeRealOnesByASignInWithoutOne) {
    ASSERT_EQ(run({"connect", "zoom", "--name", "work", "--token", "of-the-sandbox"}).status, 0);
    ASSERT_TRUE(isOfSandbox("Zoom+work"));
    const auto twin = withoutSandbox({"connect", "zoom", "--name", "work", "--token", "real"});
    EXPECT_EQ(twin.text("error"), "accountAlreadyExist");
    EXPECT_EQ(twin.text("next"), "zelto reconnect Zoom+work --keychain file");
    const auto reconnected = withoutSandbox({"reconnect", "Zoom+work", "--token", "real"});
    EXPECT_EQ(reconnected.json().find("sandbox")->asBool(), false) << reconnected.output;
    EXPECT_FALSE(isOfSandbox("Zoom+work"));
    EXPECT_EQ(stored("Zoom+work").accessToken, "real");
}

TEST_F(SandboxAccounts, AreThoseThatAServicesNameMeansInTheirOwnCommandsToo) {
    ASSERT_EQ(run({"connect", "zoom", "--name", "work", "--token", "of-the-sandbox"}).status, 0);
    ASSERT_EQ(withoutSandbox({"connect", "zoom", "--name", "real", "--token", "real"}).status, 0);
    EXPECT_EQ(withoutSandbox({"reconnect", "zoom", "--token", "newer"}).status, 0);
    EXPECT_EQ(stored("Zoom+real").accessToken, "newer");
    EXPECT_EQ(run({"reconnect", "zoom", "--token", "newest"}).status, 0);
    EXPECT_EQ(stored("Zoom+work").accessToken, "newest");
    EXPECT_EQ(run({"accounts", "remove", "zoom"}).output, "Removed Zoom+work.\n");
    EXPECT_EQ(withoutSandbox({"accounts", "remove", "zoom"}).text("result"), "success");
}

TEST_F(SandboxAccounts, AreMeantByTheOptionWithASandboxAlone) {
    addReal();
    const auto refused = withoutSandbox({"targets", trelloAccount, "--real-account"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_EQ(refused.text("message"), "--real-account goes with --sandbox.");
}

} // namespace zelto
