#include <zelto/ConnectedProgram.h>

#include <ZeltoHost/Storage/RestorableKeyChain.h>

#include <TrovenhalCommon/KeyChain/FileKeyChainStore.h>

#include <Platform/Date.h>

#include <algorithm>

namespace zelto {

namespace {

const std::string account = "Asana+robin@sandbox.example";
const std::string restore = "zelto accounts restore " + account;
const std::string reconnect = "zelto reconnect " + account;

class Restore : public ConnectedProgram {
  protected:
    void SetUp() override {
        ConnectedProgram::SetUp();
        const auto connected = run({"connect", "asana", "--follow"});
        ASSERT_EQ(connected.status, 0) << connected.errorOutput;
        tokens = stored(account);
        ASSERT_TRUE(tokens.refreshToken);
    }

    // The next use of the account finds its token expired and the token endpoint out of order.
    void putTokenEndpointOutOfOrder(int status) const {
        sandbox->expireTokens("Asana");
        sandbox->addFault({.host = "app.asana.com", .path = "/-/oauth_token", .status = status});
    }

    std::string hint() const {
        return " The account's tokens could not be renewed, and were wiped; `" + restore + surroundings() +
               "` brings them back until ";
    }

    void wipe() const {
        putTokenEndpointOutOfOrder(503);
        ASSERT_EQ(use().status, 1);
        ASSERT_EQ(stored(account).accessToken, std::nullopt);
        ASSERT_EQ(stored(account).refreshToken, std::nullopt);
    }

    ProgramOutcome use() const { return run({"targets", account, "--refresh", "--json"}); }

    ProgramOutcome restored() const { return run({"accounts", "restore", account, "--json"}); }

    std::optional<Data> kept() const {
        FileKeyChainStore store(zelto.dataDirectory() / "keychain");
        return store.read("Wiped " + tokens.serviceCredentialsKey).value();
    }

    std::string keptNote() const {
        const auto files = ZeltoProgram::filesBelow(zelto.dataDirectory() / "wiped");
        const auto isNote = [](const auto& file) { return file.first.ends_with(".wipe"); };
        const auto note = std::ranges::find_if(files, isNote);
        return note == files.end() ? "" : note->first;
    }

    // As if the tokens had been wiped so long ago.
    void makeOlder(TimeInterval age) const {
        auto store = std::make_shared<FileKeyChainStore>(zelto.dataDirectory() / "keychain");
        RestorableKeyChain keyChain(store, "file", zelto.dataDirectory());
        const auto record = store->read(tokens.serviceCredentialsKey).value().value();
        ASSERT_TRUE(keyChain.restore(tokens.serviceCredentialsKey));
        const ClockOverride clock(Date::now() - age);
        ASSERT_TRUE(keyChain.write(tokens.serviceCredentialsKey, record));
    }

    ServiceAccountCredentials tokens;
};

} // namespace

TEST_F(Restore, BringsTheTokensBackThatAServiceOutOfOrderHasCost) {
    for (const int status : {503, 429}) {
        putTokenEndpointOutOfOrder(status);
        const auto failed = use();
        EXPECT_EQ(failed.text("next"), restore + surroundings()) << failed.output;
        EXPECT_NE(failed.text("message").find(hint()), std::string::npos) << failed.output;
        const auto later = use();
        EXPECT_EQ(later.text("error"), "oauthError");
        EXPECT_NE(later.text("message").find(hint()), std::string::npos) << later.output;
        EXPECT_EQ(later.text("next"), reconnect + surroundings());
        EXPECT_EQ(later.text("restore"), restore + surroundings());
        EXPECT_EQ(stored(account).accessToken, std::nullopt);

        EXPECT_EQ(run({"accounts", "restore", account}).output, "Restored the tokens of " + account + ".\n");
        EXPECT_EQ(use().status, 0);
        EXPECT_EQ(kept(), std::nullopt);
        EXPECT_EQ(keptNote(), "");
    }
}

TEST_F(Restore, IsNamedByAFailedExport) {
    const auto converter = zelto.home.write("converter", "printf '%%PDF-1.7 page' > \"$2\"\n").string();
    const std::vector<std::string> exporting = {"export",
                                                ZeltoProgram::sample("plain-note.eml"),
                                                "--to",
                                                account,
                                                "--pdf-converter",
                                                "/bin/sh " + converter,
                                                "--json"};
    ASSERT_EQ(use().status, 0);
    putTokenEndpointOutOfOrder(503);
    const auto failed = run(exporting);
    EXPECT_EQ(failed.status, 1);
    EXPECT_NE(failed.text("message").find(hint()), std::string::npos) << failed.output;
    EXPECT_EQ(failed.text("next"), restore + surroundings());
    const auto later = run(exporting);
    EXPECT_NE(later.text("message").find(hint()), std::string::npos) << later.output;
    EXPECT_EQ(later.text("next"), reconnect + surroundings());
}

TEST_F(Restore, IsRefusedWhereTheAccountHasTokens) {
    const auto outcome = restored();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "newerTokens");
    EXPECT_EQ(outcome.text("message"), "The account " + account + " has tokens, which stay as they are.");
    wipe();
    ASSERT_EQ(run({"reconnect", account, "--follow"}).status, 0);
    const auto newer = stored(account);
    EXPECT_EQ(restored().text("error"), "newerTokens");
    EXPECT_EQ(stored(account), newer);
    EXPECT_EQ(kept(), std::nullopt);
}

TEST_F(Restore, IsRefusedWhereNothingIsKept) {
    wipe();
    ASSERT_EQ(restored().text("restored"), account);
    storeTokens(zelto, ServiceAccountCredentials::forIdentifier(account));
    const auto outcome = restored();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "nothingKept");
    EXPECT_EQ(outcome.text("message"),
              "No wiped tokens of the account " + account + " are kept in this key chain.");
    EXPECT_EQ(outcome.text("next"), reconnect + surroundings());
}

TEST_F(Restore, IsRefusedAfterSevenDays) {
    wipe();
    makeOlder(RestorableKeyChain::keptFor + TimeInterval(60));
    const auto failed = use();
    EXPECT_EQ(failed.text("next"), reconnect + surroundings());
    EXPECT_EQ(failed.text("message").find("accounts restore"), std::string::npos) << failed.output;
    const auto outcome = restored();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.text("error"), "tooOld");
    EXPECT_EQ(outcome.text("message"), "The tokens of the account " + account +
                                           " were wiped more than seven days ago. They are erased now.");
    EXPECT_EQ(outcome.text("next"), reconnect + surroundings());
    EXPECT_EQ(kept(), std::nullopt);
    EXPECT_EQ(stored(account).accessToken, std::nullopt);
}

TEST_F(Restore, LeavesNothingThatIsOlderThanSevenDays) {
    wipe();
    makeOlder(RestorableKeyChain::keptFor - TimeInterval(60 * 60));
    ASSERT_EQ(run({"connect", "bear"}).status, 0);
    EXPECT_TRUE(kept());
    makeOlder(RestorableKeyChain::keptFor + TimeInterval(60));
    // Whatever key chain the command itself uses.
    ASSERT_EQ(zelto.run({"connect", "things", "--keychain", "memory"}).status, 0);
    EXPECT_EQ(kept(), std::nullopt);
    EXPECT_EQ(keptNote(), "");
}

TEST_F(Restore, FindsNothingOfARemovedAccount) {
    wipe();
    ASSERT_TRUE(kept());
    ASSERT_EQ(run({"accounts", "remove", account}).status, 0);
    EXPECT_EQ(kept(), std::nullopt);
    EXPECT_EQ(keptNote(), "");
    EXPECT_EQ(restored().text("error"), "unknownAccount");
}

TEST_F(Restore, ShowsNoTokenInTheLog) {
    putTokenEndpointOutOfOrder(503);
    const auto failed = run({"targets", account, "--refresh", "--verbose"});
    const auto outcome = run({"accounts", "restore", account, "--verbose"});
    ASSERT_EQ(outcome.status, 0);
    for (const auto& text : {failed.output + failed.errorOutput, outcome.output + outcome.errorOutput}) {
        EXPECT_EQ(text.find(*tokens.accessToken), std::string::npos);
        EXPECT_EQ(text.find(*tokens.refreshToken), std::string::npos);
    }
}

} // namespace zelto
