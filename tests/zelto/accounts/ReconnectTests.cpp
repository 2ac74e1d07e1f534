#include <zelto/ConnectedProgram.h>
#include <zelto/TrelloAccount.h>

#include <Support/Eventually.h>

#include <ZeltoHost/Storage/AccountLock.h>

#include <future>

namespace zelto {

namespace {

using Reconnect = ConnectedProgram;

} // namespace

TEST_F(Reconnect, PutsANewSignInIntoTheAccount) {
    ASSERT_EQ(run({"connect", "trello", "--follow"}).status, 0);
    const auto before = stored(sandboxAccount);
    sandbox->expireTokens("Trello");
    const auto refused = run({"targets", sandboxAccount, "--refresh", "--json"});
    EXPECT_EQ(refused.text("error"), "oauthError");
    EXPECT_EQ(refused.text("next"), "zelto reconnect " + sandboxAccount + surroundings());
    const auto mail = ZeltoProgram::sample("plain-note.eml");
    const auto exported = run({"export", mail, "--to", sandboxAccount, "--json"});
    EXPECT_EQ(exported.status, 1);
    EXPECT_EQ(exported.text("next"), "zelto reconnect " + sandboxAccount + surroundings());
    EXPECT_EQ(run({"reconnect", sandboxAccount, "--follow"}).output, "Reconnected " + sandboxAccount + ".\n");
    EXPECT_NE(stored(sandboxAccount).accessToken, before.accessToken);
    EXPECT_EQ(run({"targets", sandboxAccount, "--refresh"}).status, 0);
    EXPECT_EQ(zelto.run({"accounts"}).output, sandboxAccount + "  (sandbox)\n");
}

TEST_F(Reconnect, LeavesTheAccountAloneWhenTheSignInFails) {
    ASSERT_EQ(run({"connect", "trello", "--follow"}).status, 0);
    const auto before = stored(sandboxAccount);
    EXPECT_EQ(run({"reconnect", sandboxAccount, "--token", "no-such-token", "--json"}).text("error"),
              "dataLoadingError");
    EXPECT_EQ(stored(sandboxAccount), before);
    EXPECT_EQ(zelto.run({"accounts"}).output, sandboxAccount + "  (sandbox)\n");
}

TEST_F(Reconnect, OfSomebodyElseChangesNothing) {
    addTrelloAccount(zelto);
    const auto before = stored(trelloAccount);
    const auto outcome = run({"reconnect", trelloAccount, "--follow", "--json"});
    EXPECT_EQ(outcome.text("error"), "accountMismatch") << outcome.output;
    EXPECT_EQ(outcome.text("message"), "The sign-in was that of " + sandboxAccount + ", not of " +
                                           trelloAccount + ", so nothing was changed.");
    EXPECT_EQ(outcome.text("next"), "zelto reconnect " + trelloAccount + surroundings());
    EXPECT_EQ(stored(trelloAccount), before);
    EXPECT_EQ(stored(sandboxAccount).accessToken, std::nullopt);
}

TEST_F(Reconnect, IsForAccountsWithASignInAlone) {
    ASSERT_EQ(run({"connect", "bear"}).status, 0);
    const auto outcome = run({"reconnect", "Bear", "--json"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.text("message"), "Bear is an application on this machine, which needs no sign-in.");
    EXPECT_EQ(run({"reconnect", "Zoom+nobody", "--json"}).text("error"), "unknownAccount");
}

TEST_F(Reconnect, TakesWhatIsGiven) {
    ASSERT_EQ(run({"connect", "zoom", "--name", "work", "--token", "old", "--refresh-token", "old"}).status,
              0);
    ASSERT_EQ(run({"reconnect", "Zoom+work", "--token", "new"}).status, 0);
    EXPECT_EQ(stored("Zoom+work").accessToken, "new");
    // The old one belonged to another grant.
    EXPECT_EQ(stored("Zoom+work").refreshToken, std::nullopt);
}

TEST_F(Reconnect, TakesAServiceWithOneAccountAlone) {
    ASSERT_EQ(run({"connect", "zoom", "--name", "work", "--token", "old"}).status, 0);
    EXPECT_EQ(run({"reconnect", "zoom", "--token", "new"}).output.substr(0, 23), "Reconnected Zoom+work.\n");
    EXPECT_EQ(stored("Zoom+work").accessToken, "new");
    ASSERT_EQ(run({"connect", "zoom", "--name", "home", "--token", "other"}).status, 0);
    const auto ambiguous = run({"reconnect", "zoom", "--token", "newer", "--json"});
    EXPECT_EQ(ambiguous.text("error"), "ambiguousAccount");
    EXPECT_EQ(ambiguous.text("message"), "Zoom has several accounts: Zoom+work, Zoom+home.");
    EXPECT_EQ(stored("Zoom+work").accessToken, "new");
}

TEST_F(Reconnect, WaitsForWhoeverUsesTheAccountAndSaysSo) {
    ASSERT_EQ(run({"connect", "zoom", "--name", "work", "--token", "old"}).status, 0);
    auto held = std::make_optional(AccountLock::take(zelto.dataDirectory(), "Zoom+work", [] {}));
    auto waiting = std::async(std::launch::async, [&] {
        return drive("until('(zelto: waiting for another zelto that uses Zoom.work.)')\n"
                     "print('waits', flush=True)\n"
                     "open('waits', 'w').close()\n"
                     "sys.exit(zelto.wait())\n",
                     "reconnect Zoom+work --token new");
    });
    const auto mark = zelto.home / "cwd/waits";
    EXPECT_TRUE(eventually([&] { return std::filesystem::exists(mark); }));
    EXPECT_EQ(stored("Zoom+work").accessToken, "old");
    held.reset();
    EXPECT_EQ(waiting.get().status, 0);
    EXPECT_EQ(stored("Zoom+work").accessToken, "new");
}

} // namespace zelto
