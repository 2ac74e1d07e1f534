#include <zelto/ZeltoProgram.h>

#include <export/ServiceTable.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <sys/stat.h>

namespace zelto {

namespace {

const auto mail = ZeltoProgram::sample("plain-note.eml");

// The account that an export to the target takes; "" if there was an error.
std::string usedAccount(const ZeltoProgram& zelto, const std::string& target) {
    return zelto.run({"export", mail, "--to", target, "--opener", "-", "--json"}).text("identifier");
}

} // namespace

TEST(Accounts, AreListedInTheOrderOfTheirConnection) {
    const ZeltoProgram zelto;
    EXPECT_EQ(zelto.run({"accounts"}).output, "No account is connected yet. Try: zelto connect bear\n");
    EXPECT_EQ(zelto.run({"connect", "things", "--name", "work"}).output, "Connected Things+work.\n");
    EXPECT_EQ(zelto.run({"connect", "2Do"}).output, "Connected 2Do.\n");
    EXPECT_EQ(zelto.run({"connect", "agenda"}).output, "Connected Agenda.\n");
    EXPECT_EQ(zelto.run({"accounts"}).output, "Things+work\n2Do\nAgenda\n");
    EXPECT_EQ(zelto.run({"accounts", "remove", "2Do"}).output, "Removed 2Do.\n");
    EXPECT_EQ(zelto.run({"accounts"}).output, "Things+work\nAgenda\n");
}

TEST(Accounts, ListMakesNoDirectory) {
    const ZeltoProgram zelto;
    EXPECT_EQ(zelto.run({"accounts"}).status, 0);
    EXPECT_FALSE(std::filesystem::exists(zelto.home / "data"));
}

TEST(Accounts, AnApplicationGetsOneAtItsFirstExport) {
    const ZeltoProgram zelto;
    EXPECT_EQ(usedAccount(zelto, "bear"), "Bear");
    EXPECT_EQ(zelto.run({"accounts"}).output, "Bear  (last used)\n");
}

TEST(Accounts, TheOnlyOneOfAServiceIsTaken) {
    const ZeltoProgram zelto;
    ASSERT_EQ(zelto.run({"connect", "bear", "--name", "work"}).status, 0);
    EXPECT_EQ(usedAccount(zelto, "bear"), "Bear+work");
}

TEST(Accounts, SeveralOfOneServiceAreAmbiguousUntilOneWasUsed) {
    const ZeltoProgram zelto;
    ASSERT_EQ(zelto.run({"connect", "bear", "--name", "home"}).status, 0);
    ASSERT_EQ(zelto.run({"connect", "bear", "--name", "work"}).status, 0);
    EXPECT_EQ(zelto.run({"export", mail, "--to", "bear", "--json"}).text("error"), "ambiguousAccount");
    EXPECT_EQ(zelto.run({"config", mail, "--to", "bear", "--json"}).text("error"), "ambiguousAccount");
    EXPECT_EQ(usedAccount(zelto, "Bear+work"), "Bear+work");
    EXPECT_EQ(usedAccount(zelto, "bear"), "Bear+work");
    EXPECT_EQ(usedAccount(zelto, "Bear+home"), "Bear+home");
    EXPECT_EQ(usedAccount(zelto, "bear"), "Bear+home");
    EXPECT_EQ(zelto.run({"accounts"}).output, "Bear+home  (last used)\nBear+work\n");
    ASSERT_EQ(zelto.run({"accounts", "remove", "Bear+home"}).status, 0);
    EXPECT_EQ(usedAccount(zelto, "bear"), "Bear+work");
}

TEST(Accounts, OfAFailedExportAreNotTheLastUsedOnes) {
    const ZeltoProgram zelto;
    EXPECT_EQ(zelto.run({"export", mail, "--to", "bear", "--opener", "false"}).status, 1);
    EXPECT_EQ(zelto.run({"accounts"}).output, "Bear\n");
}

TEST(Accounts, AreRemovedByTheirServiceWhereItHasOneAlone) {
    const ZeltoProgram zelto;
    ASSERT_EQ(zelto.run({"connect", "bear", "--name", "home"}).status, 0);
    ASSERT_EQ(zelto.run({"connect", "bear", "--name", "work"}).status, 0);
    const auto ambiguous = zelto.run({"accounts", "remove", "bear", "--json"});
    EXPECT_EQ(ambiguous.status, 1);
    EXPECT_EQ(ambiguous.text("error"), "ambiguousAccount");
    EXPECT_EQ(ambiguous.text("message"), "Bear has several accounts: Bear+home, Bear+work.");
    // The one used last is no choice of the user's.
    EXPECT_EQ(usedAccount(zelto, "Bear+work"), "Bear+work");
    EXPECT_EQ(zelto.run({"accounts", "remove", "bear"}).status, 1);
    EXPECT_EQ(zelto.run({"accounts", "remove", "Bear+home"}).output, "Removed Bear+home.\n");
    EXPECT_EQ(zelto.run({"accounts", "remove", "bear"}).output, "Removed Bear+work.\n");
    const auto none = zelto.run({"accounts", "remove", "bear", "--json"});
    EXPECT_EQ(none.text("error"), "unknownAccount");
    EXPECT_EQ(none.text("message"), "No account of Bear is connected.");
}

TEST(Accounts, LieInADirectoryForTheUserAlone) {
    const ZeltoProgram zelto;
    ASSERT_EQ(zelto.runShell("umask 0; zelto connect bear").status, 0);

    struct stat directory {};

    struct stat file {};

    ASSERT_EQ(::stat(zelto.dataDirectory().c_str(), &directory), 0);
    ASSERT_EQ(::stat((zelto.dataDirectory() / "accounts.sqlite").c_str(), &file), 0);
    EXPECT_EQ(directory.st_mode & 07777, 0700U);
    EXPECT_EQ(file.st_mode & 07777, 0600U);
}

TEST(Accounts, AreThoseOfTheNamedDirectory) {
    const ZeltoProgram zelto;
    const auto other = (zelto.home / "other").string();
    ASSERT_EQ(zelto.run({"--data-dir", other, "connect", "bear"}).status, 0);
    EXPECT_EQ(zelto.run({"accounts", "--data-dir", other}).output, "Bear\n");
    EXPECT_FALSE(std::filesystem::exists(zelto.dataDirectory()));
}

TEST(Services, AreAllListedWithWhatIsReady) {
    const ZeltoProgram zelto;
    const auto document = zelto.run({"services", "--json"}).json();
    const auto& services = *document.find("services")->asArray();
    ASSERT_EQ(services.size(), 31U);
    std::vector<std::string> ready;
    for (const auto& service : services) {
        if (service.find("canExport")->asBool() == true) {
            ready.push_back(*service.find("service")->asString());
        }
    }
    std::vector<std::string> expected;
    for (const auto type : cli::exportableServices()) {
        expected.emplace_back(nameOf(type));
    }
    std::ranges::sort(ready);
    std::ranges::sort(expected);
    EXPECT_EQ(ready, expected);
}

} // namespace zelto
