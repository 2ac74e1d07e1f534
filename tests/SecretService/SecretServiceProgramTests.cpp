#include <zelto/ZeltoProgram.h>

#include <TrovenhalCommon/KeyChain/SecretServiceKeyChainStore.h>
#include <ZeltoHost/Storage/SQLiteAccountStorage.h>
#include <ZeltoSandbox/SandboxServer.h>

#include <Support/Folders.h>

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <utility>

// Run by tests/SecretService/with-key-chain as SecretServiceTests.cpp is.

namespace zelto {

namespace {

const std::string zoomKey = "ServiceCredentials - Zoom+work";

class SecretServiceProgram : public testing::Test {
  protected:
    SecretServiceProgram() { zelto.variables[bus] = std::getenv(bus); }

    void connectZoom(const std::filesystem::path& directory, const std::string& token) const {
        const auto outcome =
            zelto.run({"connect", "zoom", "--name", "work", "--token", token, "--data-dir", directory});
        ASSERT_EQ(outcome.status, 0) << outcome.errorOutput;
    }

    // The record as the directory finds it.
    static std::string recordIn(const std::filesystem::path& directory, const std::string& key = zoomKey) {
        const auto identity = SQLiteAccountStorage::open(directory).value()->tryDirectoryIdentity().value();
        SecretServiceKeyChainStore store("zelto", std::chrono::seconds(15),
                                         SecretServiceOwner{identity.text, identity.hadAccounts});
        const auto record = store.read(key).value();
        return record ? std::string(viewOf(*record)) : "";
    }

    static bool holds(const std::string& record, const std::string& token) {
        return record.find("\"" + token + "\"") != std::string::npos;
    }

    static constexpr const char* bus = "DBUS_SESSION_BUS_ADDRESS";
    ZeltoProgram zelto;
};

} // namespace

TEST_F(SecretServiceProgram, KeepsTheAccountsOfTwoDataDirectoriesApart) {
    const auto one = zelto.home / "one";
    const auto other = zelto.home / "other";
    connectZoom(one, "first");
    connectZoom(other, "second");
    EXPECT_TRUE(holds(recordIn(one), "first"));
    EXPECT_TRUE(holds(recordIn(other), "second"));
    ASSERT_EQ(zelto.run({"reconnect", "Zoom+work", "--token", "third", "--data-dir", one}).status, 0);
    EXPECT_TRUE(holds(recordIn(one), "third"));
    EXPECT_TRUE(holds(recordIn(other), "second"));
    ASSERT_EQ(zelto.run({"accounts", "remove", "Zoom+work", "--data-dir", other}).status, 0);
    EXPECT_EQ(recordIn(other), "");
    EXPECT_TRUE(holds(recordIn(one), "third"));
}

TEST_F(SecretServiceProgram, LeavesTheItemsOfEarlierVersionsToTheDirectoriesThatHadThem) {
    SecretServiceKeyChainStore earlier;
    ASSERT_TRUE(earlier.write(zoomKey, dataOf(R"({"accessToken":"earlier"})")));
    const auto fresh = zelto.home / "fresh";
    connectZoom(fresh, "new");
    ASSERT_EQ(zelto.run({"accounts", "remove", "Zoom+work", "--data-dir", fresh}).status, 0);
    EXPECT_EQ(recordIn(fresh), "");
    EXPECT_EQ(earlier.read(zoomKey).value(), dataOf(R"({"accessToken":"earlier"})"));
    EXPECT_TRUE(earlier.erase(zoomKey).value());
}

TEST_F(SecretServiceProgram, FindsTheItemsOfEarlierVersionsInADirectoryThatHadThem) {
    const std::string account = "Trello+alice@example.com";
    const auto key = "ServiceCredentials - " + account;
    const auto directory = zelto.home / "upgraded";
    std::filesystem::create_directory(directory);
    std::filesystem::copy_file(sourceFolder() / "tests/ZeltoHost/Storage/fixtures/accounts-1.sqlite",
                               directory / "accounts.sqlite");
    SecretServiceKeyChainStore earlier;
    ASSERT_TRUE(earlier.write(key, dataOf(R"({"accessToken":"earlier"})")));
    EXPECT_TRUE(holds(recordIn(directory, key), "earlier"));
    const auto removed = zelto.run({"accounts", "remove", account, "--data-dir", directory});
    EXPECT_EQ(removed.status, 0) << removed.errorOutput;
    EXPECT_EQ(removed.errorOutput, "");
    EXPECT_EQ(earlier.read(key).value(), std::nullopt);
}

TEST_F(SecretServiceProgram, NamesTheDesktopsKeyChainWhereItIsNotUsed) {
    const auto sandbox = std::move(*SandboxServer::start());
    zelto.variables["ZELTO_SANDBOX"] = sandbox->url().absoluteString();
    const std::string account = "Trello+robin@sandbox.example";
    ASSERT_EQ(zelto.run({"connect", "trello", "--follow"}).status, 0);
    const ZeltoProgram::Arguments exporting{
        "export", ZeltoProgram::sample("plain-note.eml"), "--to", account, "--as", "backLink", "--json"};
    EXPECT_EQ(zelto.run(exporting).text("result"), "success");
    const auto address = std::exchange(zelto.variables[bus], "unix:path=/nonexistent/bus");
    const auto refused = zelto.run(exporting);
    EXPECT_EQ(refused.text("error"), "noSecrets");
    EXPECT_EQ(refused.text("message"),
              "The tokens of the account " + account +
                  " are in the desktop's key chain (Secret Service), and this command uses the encrypted "
                  "file of the data directory. Start it if it is not there, and pass --keychain "
                  "secret-service.");
    zelto.variables[bus] = address;
    EXPECT_EQ(zelto.run(exporting).text("result"), "success");
    // A new sign-in elsewhere takes the account along.
    ASSERT_EQ(zelto.run({"reconnect", account, "--follow", "--keychain", "file"}).status, 0);
    const auto moved = zelto.run(exporting);
    EXPECT_EQ(moved.text("message"), "The tokens of the account " + account +
                                         " are in the encrypted file of the data directory, and this command "
                                         "uses the desktop's key chain (Secret Service). Pass --keychain "
                                         "file.");
}

TEST_F(SecretServiceProgram, RestoresTokensThatWereWiped) {
    const auto sandbox = std::move(*SandboxServer::start());
    zelto.variables["ZELTO_SANDBOX"] = sandbox->url().absoluteString();
    const std::string account = "Asana+robin@sandbox.example";
    ASSERT_EQ(zelto.run({"connect", "asana", "--follow"}).status, 0);
    sandbox->expireTokens("Asana");
    sandbox->addFault({.host = "app.asana.com", .path = "/-/oauth_token", .status = 503});
    const ZeltoProgram::Arguments refresh{"targets", account, "--refresh"};
    EXPECT_EQ(zelto.run(refresh).status, 1);
    EXPECT_EQ(zelto.run(refresh).status, 1);
    EXPECT_EQ(zelto.run({"accounts", "restore", account}).status, 0);
    EXPECT_EQ(zelto.run(refresh).status, 0);
}

} // namespace zelto
