#include <zelto/ConnectedProgram.h>

#include <ZeltoHost/Storage/SQLiteAccountStorage.h>

#include <TrovenhalCommon/KeyChain/FileKeyChainStore.h>

namespace zelto {

namespace {

const std::string tokensOf = "The tokens of the account " + sandboxAccount;

class SecretPlaces : public ConnectedProgram {
  protected:
    void SetUp() override {
        ConnectedProgram::SetUp();
        zelto.variables["ZELTO_SANDBOX"] = sandbox->url().absoluteString();
    }

    // Connects it by the key chain of that kind.
    void connect(const std::string& kind) const {
        const auto outcome = zelto.run({"connect", "trello", "--follow", "--keychain", kind});
        ASSERT_EQ(outcome.status, 0) << outcome.errorOutput;
    }

    ProgramOutcome exported(const std::string& kind) const {
        return zelto.run(
            {"export", mail, "--to", sandboxAccount, "--as", "backLink", "--keychain", kind, "--json"});
    }

    std::optional<std::string> remembered() const {
        const auto storage = SQLiteAccountStorage::open(zelto.dataDirectory()).value();
        return storage->tryMarks(storage->load(sandboxAccount).value()).value().keyChain;
    }

    void remember(const std::optional<std::string>& keyChain) const {
        const auto storage = SQLiteAccountStorage::open(zelto.dataDirectory()).value();
        const auto account = storage->load(sandboxAccount).value();
        ASSERT_TRUE(storage->trySetMarks(account, {.isOfSandbox = true, .keyChain = keyChain}));
    }

    void eraseFromFile() const {
        FileKeyChainStore store(zelto.dataDirectory() / "keychain");
        ASSERT_TRUE(store.erase("ServiceCredentials - " + sandboxAccount).value());
    }

    static void expectFailure(const ProgramOutcome& outcome, const std::string& message,
                              const std::string& next) {
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.text("error"), "noSecrets");
        EXPECT_EQ(outcome.text("message"), message);
        EXPECT_EQ(outcome.text("next"), next);
    }

    const std::string mail = ZeltoProgram::sample("plain-note.eml");
    const std::string reconnect = "zelto reconnect " + sandboxAccount + " --keychain file";
};

} // namespace

TEST_F(SecretPlaces, AreNamedWhereTheAccountIsUsedWithAnotherKeyChain) {
    connect("file");
    const auto message = tokensOf +
                         " are in the encrypted file of the data directory, and this command uses a key "
                         "chain in memory. Pass --keychain file.";
    expectFailure(exported("memory"), message,
                  "zelto export " + mail + " --to " + sandboxAccount +
                      " --as backLink --keychain file --json");
    for (const ZeltoProgram::Arguments& arguments :
         {ZeltoProgram::Arguments{"targets", sandboxAccount, "--refresh", "--keychain", "memory", "--json"},
          {"config", mail, "--to", sandboxAccount, "--target", "x", "--keychain", "memory", "--json"}}) {
        const auto requests = sandbox->requests().size();
        const auto outcome = zelto.run(arguments);
        EXPECT_EQ(outcome.output.find("does not accept"), std::string::npos) << outcome.output;
        EXPECT_EQ(sandbox->requests().size(), requests);
    }
    expectFailure(zelto.run({"accounts", "restore", sandboxAccount, "--keychain", "memory", "--json"}),
                  message, "zelto accounts restore " + sandboxAccount + " --keychain file --json");
    EXPECT_EQ(exported("file").text("result"), "success");
}

TEST_F(SecretPlaces, AreNamedWhereTheDesktopsKeyChainIsNotThere) {
    connect("file");
    eraseFromFile();
    remember("secret-service");
    expectFailure(exported("file"),
                  tokensOf + " are in the desktop's key chain (Secret Service), and this command uses the "
                             "encrypted file of the data directory. Start it if it is not there, and pass "
                             "--keychain secret-service.",
                  "zelto export " + mail + " --to " + sandboxAccount +
                      " --as backLink --keychain secret-service --json");
}

TEST_F(SecretPlaces, OfMemoryAreGone) {
    connect("memory");
    expectFailure(exported("file"),
                  tokensOf + " were kept in memory alone (--keychain memory), and are gone. Sign in again.",
                  reconnect);
    ASSERT_EQ(zelto.run({"reconnect", sandboxAccount, "--follow", "--keychain", "file"}).status, 0);
    EXPECT_EQ(exported("file").text("result"), "success");
}

TEST_F(SecretPlaces, ThatNobodyKnowsAreMissing) {
    connect("file");
    eraseFromFile();
    const auto message = "There are no tokens of the account " + sandboxAccount +
                         " in the encrypted file of the data directory. Pass --keychain if they are in "
                         "another key chain, or sign in again.";
    expectFailure(exported("file"), message, reconnect);
    remember(std::nullopt);
    expectFailure(exported("file"), message, reconnect);
    expectFailure(zelto.run({"targets", sandboxAccount, "--refresh", "--keychain", "file", "--json"}),
                  message, reconnect);
}

TEST_F(SecretPlaces, OfAnEarlierVersionAreRememberedOnceTheyAreUsed) {
    connect("file");
    remember(std::nullopt);
    EXPECT_EQ(exported("memory").text("error"), "noSecrets");
    EXPECT_EQ(remembered(), std::nullopt);
    EXPECT_EQ(exported("file").text("result"), "success");
    EXPECT_EQ(remembered(), "file");
}

TEST_F(SecretPlaces, StayWhatTheyAreAfterASignInForMemoryAlone) {
    connect("file");
    const auto before = stored(sandboxAccount);
    ASSERT_EQ(zelto.run({"reconnect", sandboxAccount, "--follow", "--keychain", "memory"}).status, 0);
    EXPECT_EQ(remembered(), "file");
    EXPECT_EQ(stored(sandboxAccount), before);
    EXPECT_EQ(exported("file").text("result"), "success");
}

TEST_F(SecretPlaces, OfARemovedAccountAreErasedInTheKeyChainThatHoldsThem) {
    connect("file");
    const auto removed = zelto.run({"accounts", "remove", sandboxAccount, "--keychain", "memory"});
    EXPECT_EQ(removed.output, "Removed " + sandboxAccount + ".\n");
    EXPECT_EQ(removed.errorOutput, "");
    EXPECT_EQ(stored(sandboxAccount).accessToken, std::nullopt);
}

TEST_F(SecretPlaces, OfARemovedAccountThatCannotBeErasedAreAWarning) {
    connect("file");
    remember("secret-service");
    const auto removed = zelto.run({"accounts", "remove", sandboxAccount, "--keychain", "file"});
    EXPECT_EQ(removed.status, 0);
    EXPECT_TRUE(removed.errorOutput.starts_with("zelto: warning: the account's secrets may still be in the "
                                                "desktop's key chain (Secret Service). "))
        << removed.errorOutput;
    EXPECT_EQ(stored(sandboxAccount).accessToken, std::nullopt);
}

} // namespace zelto
