#include "StorageTestSupport.h"

#include <ZeltoHost/Storage/ConnectingFlow.h>

#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>

#include <Support/MemoryKeyChain.h>

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

// A data directory, its accounts and a key chain.
class ConnectingFlowTest : public testing::Test {
  protected:
    // What a flow has in the key chain and among the accounts while it runs.
    std::string storedByFlow(const std::string& identifier) {
        auto temporary = account(ServiceType::Trello, "temp_user_name");
        temporary.credentials = ServiceAccountCredentials::forIdentifier(identifier);
        auto& key = temporary.credentials->serviceCredentialsKey;
        key = ServiceAccountCredentials::flowKey(key);
        temporary.credentials->accessToken = "token";
        ServiceCredentialsManager::store(*temporary.credentials);
        storage.save(temporary);
        return key;
    }

    // Notes the flow in a process that is killed then.
    void killFlow(const std::string& key) const {
        const auto pid = ::fork();
        if (pid == 0) {
            const auto flow = ConnectingFlow::begin(directory, key);
            ::kill(::getpid(), SIGKILL);
        }
        ::waitpid(pid, nullptr, 0);
    }

    std::size_t noteCount() const {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(directory / "flows")) {
            count += entry.path().extension() == ".flow";
        }
        return count;
    }

    const TemporaryFolder folder;
    const std::filesystem::path directory = std::filesystem::path(folder / "data");
    // The forked processes do not use it.
    const std::shared_ptr<SQLiteAccountStorage> sharedStorage = opened(folder / "accounts");
    SQLiteAccountStorage& storage = *sharedStorage;
    const MemoryKeyChain keyChain;
};

} // namespace

TEST_F(ConnectingFlowTest, ThatWasKilledLeavesNothingAfterTheNextSweep) {
    killFlow(storedByFlow("Trello+temp_user_name"));
    ASSERT_EQ(noteCount(), 1U);
    ConnectingFlow::removeLeftovers(directory, storage);
    EXPECT_EQ(keyChain.keys(), Texts{});
    EXPECT_TRUE(storage.tryLoadAllConfigurations()->empty());
    EXPECT_EQ(noteCount(), 0U);
}

TEST_F(ConnectingFlowTest, ThatRunsIsNotTouched) {
    const auto key = storedByFlow("Trello+temp_user_name");
    auto flow = ConnectingFlow::begin(directory, key);
    ASSERT_TRUE(flow);
    ConnectingFlow::removeLeftovers(directory, storage);
    EXPECT_EQ(keyChain.keys(), Texts{key});
    EXPECT_EQ(storage.tryLoadAllConfigurations()->size(), 1U);
    EXPECT_EQ(noteCount(), 1U);
    flow->reset();
    EXPECT_EQ(noteCount(), 0U);
}

TEST_F(ConnectingFlowTest, HasAnAccountThatIsNotListedButLoaded) {
    storedByFlow("Trello+temp_user_name");
    EXPECT_EQ(storage.tryLoadConfigurations(), std::vector<ServiceAccountConfiguration>());
    EXPECT_TRUE(storage.loadConfigurations().empty());
    EXPECT_TRUE(storage.load("Trello+temp_user_name"));
}

TEST_F(ConnectingFlowTest, ASweepLeavesAllAccountsAsTheyAre) {
    auto trello = account(ServiceType::Trello, "alice");
    trello.credentials = ServiceAccountCredentials::forIdentifier(trello.identifier());
    ServiceCredentialsManager::store(*trello.credentials);
    storage.save(trello);
    // Also if a damaged note names one.
    killFlow(trello.credentials->serviceCredentialsKey);
    killFlow("");
    killFlow(std::string(100'000, 'x'));
    ConnectingFlow::removeLeftovers(directory, storage);
    EXPECT_EQ(keyChain.keys(), Texts{"ServiceCredentials - Trello+alice"});
    EXPECT_EQ(storage.loadConfigurations(), std::vector{trello});
    EXPECT_EQ(noteCount(), 0U);
}

TEST_F(ConnectingFlowTest, SecretsOfANewAccountAreRemovedIfItWasNotSaved) {
    auto trello = account(ServiceType::Trello, "alice");
    trello.credentials = ServiceAccountCredentials::forIdentifier(trello.identifier());
    const auto key = trello.credentials->serviceCredentialsKey;
    ServiceCredentialsManager::store(*trello.credentials);
    killFlow(key);
    // Not while another flow may be about to save it.
    auto other = ConnectingFlow::begin(directory, key);
    ConnectingFlow::removeLeftovers(directory, storage);
    EXPECT_EQ(keyChain.keys(), Texts{key});
    EXPECT_EQ(noteCount(), 2U);
    other->reset();
    ConnectingFlow::removeLeftovers(directory, storage);
    EXPECT_EQ(keyChain.keys(), Texts{});
    EXPECT_EQ(noteCount(), 0U);
}

TEST_F(ConnectingFlowTest, SecretsThatAreNoneOfOursStayWhateverADamagedNoteNames) {
    keyChain.setText("somebody's", "secret");
    killFlow("somebody's");
    ConnectingFlow::removeLeftovers(directory, storage);
    EXPECT_EQ(keyChain.keys(), Texts{"somebody's"});
    EXPECT_EQ(noteCount(), 0U);
}

TEST_F(ConnectingFlowTest, NothingIsRemovedWhileTheAccountsCannotBeRead) {
    auto trello = account(ServiceType::Trello, "alice");
    trello.credentials = ServiceAccountCredentials::forIdentifier(trello.identifier());
    ServiceCredentialsManager::store(*trello.credentials);
    storage.save(trello);
    killFlow(trello.credentials->serviceCredentialsKey);
    sql(std::filesystem::path(folder / "accounts") / "accounts.sqlite",
        "ALTER TABLE accounts RENAME TO moved;");
    ConnectingFlow::removeLeftovers(directory, storage);
    EXPECT_EQ(keyChain.keys(), Texts{trello.credentials->serviceCredentialsKey});
    EXPECT_EQ(noteCount(), 1U);
}

TEST_F(ConnectingFlowTest, ASweepWithoutLeftoversOpensNoKeyChainAndMakesNoFile) {
    ConnectingFlow::removeLeftovers(directory, storage);
    EXPECT_EQ(keyChain.takeCalls(), Texts{});
    EXPECT_FALSE(std::filesystem::exists(directory));
}

TEST_F(ConnectingFlowTest, WhatCannotBeRemovedNowIsRemovedLater) {
    killFlow(storedByFlow("Trello+temp_user_name"));
    keyChain.setLocked(true);
    ConnectingFlow::removeLeftovers(directory, storage);
    EXPECT_EQ(noteCount(), 1U);
    keyChain.setLocked(false);
    ConnectingFlow::removeLeftovers(directory, storage);
    EXPECT_EQ(keyChain.keys(), Texts{});
    EXPECT_EQ(noteCount(), 0U);
}

TEST_F(ConnectingFlowTest, ItsNoteIsForTheUserAlone) {
    const auto flow = ConnectingFlow::begin(directory, "key");
    ASSERT_TRUE(flow);
    for (const auto& entry : std::filesystem::directory_iterator(directory / "flows")) {
        struct stat status {};

        ASSERT_EQ(::stat(entry.path().c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, 0600U);
    }
}

TEST_F(ConnectingFlowTest, ADirectoryThatIsNoneIsAnError) {
    const auto flow = ConnectingFlow::begin("/proc/none", "key");
    ASSERT_FALSE(flow);
    EXPECT_EQ(flow.error().code, StorageErrorCode::cannotAccess);
}

} // namespace zelto
