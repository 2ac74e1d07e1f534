#include <ZeltoHost/Storage/RestorableKeyChain.h>

#include <Support/LogCapture.h>
#include <Support/MemoryKeyChain.h>
#include <Support/TemporaryFolder.h>

#include <TrovenhalCommon/KeyChain/FileKeyChainStore.h>
#include <TrovenhalCommon/KeyChain/MemoryKeyChainStore.h>
#include <ZeltoIntegrations/Accounts/ServiceAccountCredentials.h>

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace zelto {

namespace {

const std::string key = "ServiceCredentials - Asana+me";
const std::string keptKey = "Wiped " + key;
const Data withTokens = dataOf(R"({"accessToken":"access-1","refreshToken":"refresh-1"})");
const Data newerTokens = dataOf(R"({"accessToken":"access-2","refreshToken":"refresh-2"})");
const Data wiped = dataOf(R"({"loginName":"me"})");
constexpr TimeInterval oneSecond{1};

class RestorableKeyChainTests : public testing::Test {
  protected:
    std::optional<RestoreErrorCode> refusal() {
        const auto restored = keyChain.restore(key);
        return restored ? std::nullopt : std::optional(restored.error().code);
    }

    void wipe() {
        ASSERT_TRUE(keyChain.write(key, withTokens));
        ASSERT_TRUE(keyChain.write(key, wiped));
    }

    std::vector<std::string> storedKeys() const {
        std::vector<std::string> keys;
        for (const auto& [each, value] : store->values()) {
            keys.push_back(each);
        }
        return keys;
    }

    std::size_t noteCount() const {
        std::size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder / "wiped")) {
            count += entry.path().extension() == ".wipe" ? 1U : 0U;
        }
        return count;
    }

    void eraseOld() {
        RestorableKeyChain::eraseOld(folder.path(), [this](const std::string& name) {
            asked.push_back(name);
            return isStoreThere ? store : nullptr;
        });
    }

    TemporaryFolder folder;
    ClockOverride clock{Date::fromReferenceSeconds(800'000'000)};
    std::shared_ptr<RecordingKeyChainStore> store = std::make_shared<RecordingKeyChainStore>();
    RestorableKeyChain keyChain{store, "file", folder.path()};
    std::vector<std::string> asked;
    bool isStoreThere = true;
};

} // namespace

TEST_F(RestorableKeyChainTests, RestoreWhatAWipeRemoved) {
    wipe();
    EXPECT_EQ(keyChain.read(key).value(), wiped);
    EXPECT_EQ(keyChain.wipeDate(key).value(), Date::now());
    EXPECT_TRUE(keyChain.hasKept(key));
    EXPECT_EQ(refusal(), std::nullopt);
    EXPECT_EQ(keyChain.read(key).value(), withTokens);
    EXPECT_EQ(storedKeys(), std::vector{key});
    EXPECT_EQ(noteCount(), 0U);
    EXPECT_EQ(refusal(), RestoreErrorCode::newerTokens);
}

TEST_F(RestorableKeyChainTests, RestoreInAnotherProcess) {
    wipe();
    RestorableKeyChain later(store, "file", folder.path());
    EXPECT_FALSE(later.hasKept(key));
    EXPECT_EQ(later.wipeDate(key).value(), Date::now());
    EXPECT_TRUE(later.restore(key));
    EXPECT_EQ(later.read(key).value(), withTokens);
}

TEST(RestorableKeyChain, WorksOnEveryStore) {
    const TemporaryFolder folder;
    const std::vector<std::shared_ptr<LVXKeyChainStore>> stores = {
        std::make_shared<MemoryKeyChainStore>(), std::make_shared<FileKeyChainStore>(folder / "keychain")};
    for (const auto& store : stores) {
        RestorableKeyChain keyChain(store, "any", folder.path());
        ASSERT_TRUE(keyChain.write(key, withTokens));
        ASSERT_TRUE(keyChain.write(key, wiped));
        ASSERT_TRUE(keyChain.restore(key));
        EXPECT_EQ(store->read(key).value(), withTokens);
        EXPECT_EQ(store->read(keptKey).value(), std::nullopt);
    }
}

TEST_F(RestorableKeyChainTests, KeepNothingOfARotation) {
    ASSERT_TRUE(keyChain.write(key, withTokens));
    ASSERT_TRUE(keyChain.write(key, newerTokens));
    EXPECT_EQ(storedKeys(), std::vector{key});
    EXPECT_FALSE(std::filesystem::exists(folder / "wiped"));
    EXPECT_EQ(store->takeCalls(), (std::vector{"write " + key, "write " + key}));
    ASSERT_TRUE(keyChain.erase(key));
    EXPECT_EQ(refusal(), RestoreErrorCode::nothingKept);
}

TEST_F(RestorableKeyChainTests, KeepTheTokensOfTheFirstOfTwoWipes) {
    wipe();
    clock.advance(oneSecond);
    ASSERT_TRUE(keyChain.write(key, wiped));
    EXPECT_EQ(keyChain.wipeDate(key).value(), Date::now() - oneSecond);
    EXPECT_EQ(refusal(), std::nullopt);
    EXPECT_EQ(keyChain.read(key).value(), withTokens);
}

TEST_F(RestorableKeyChainTests, ForgetWhatIsKeptWhenNewTokensCome) {
    wipe();
    ASSERT_TRUE(keyChain.write(key, newerTokens));
    EXPECT_EQ(storedKeys(), std::vector{key});
    EXPECT_EQ(noteCount(), 0U);
    EXPECT_FALSE(keyChain.hasKept(key));
    EXPECT_EQ(keyChain.wipeDate(key).value(), std::nullopt);
    EXPECT_EQ(refusal(), RestoreErrorCode::newerTokens);
    EXPECT_EQ(keyChain.read(key).value(), newerTokens);
}

TEST_F(RestorableKeyChainTests, EraseWhatIsKeptWithTheRecord) {
    wipe();
    EXPECT_TRUE(keyChain.erase(key).value());
    EXPECT_TRUE(store->values().empty());
    EXPECT_EQ(noteCount(), 0U);
    EXPECT_EQ(refusal(), RestoreErrorCode::nothingKept);
}

TEST_F(RestorableKeyChainTests, ReportThatWhatIsKeptCannotBeErased) {
    wipe();
    ASSERT_TRUE(store->erase(key));
    store->setLocked(true);
    EXPECT_FALSE(keyChain.erase(key));
    store->setLocked(false);
    EXPECT_EQ(noteCount(), 1U);
    EXPECT_FALSE(keyChain.erase(key).value());
    EXPECT_EQ(noteCount(), 0U);
}

TEST_F(RestorableKeyChainTests, RestoreForSevenDays) {
    wipe();
    clock.advance(RestorableKeyChain::keptFor);
    EXPECT_TRUE(keyChain.wipeDate(key).value());
    eraseOld();
    EXPECT_EQ(asked, std::vector<std::string>());
    clock.advance(oneSecond);
    EXPECT_EQ(keyChain.wipeDate(key).value(), std::nullopt);
    EXPECT_EQ(refusal(), RestoreErrorCode::tooOld);
    EXPECT_EQ(keyChain.read(key).value(), wiped);
    EXPECT_EQ(storedKeys(), std::vector{key});
    EXPECT_EQ(refusal(), RestoreErrorCode::nothingKept);
}

TEST_F(RestorableKeyChainTests, KeepNothingLongerForAClockThatWasSetBack) {
    wipe();
    clock.advance(-RestorableKeyChain::keptFor - oneSecond);
    EXPECT_EQ(refusal(), RestoreErrorCode::tooOld);
    EXPECT_EQ(storedKeys(), std::vector{key});
}

TEST_F(RestorableKeyChainTests, EraseWhatIsTooOldInTheStoreThatHoldsIt) {
    eraseOld();
    EXPECT_EQ(asked, std::vector<std::string>());
    wipe();
    clock.advance(RestorableKeyChain::keptFor + oneSecond);
    isStoreThere = false;
    eraseOld();
    EXPECT_EQ(noteCount(), 1U);
    isStoreThere = true;
    store->setLocked(true);
    eraseOld();
    EXPECT_EQ(noteCount(), 1U);
    store->setLocked(false);
    eraseOld();
    EXPECT_EQ(asked, (std::vector<std::string>(3, "file")));
    EXPECT_EQ(storedKeys(), std::vector{key});
    EXPECT_EQ(noteCount(), 0U);
}

TEST_F(RestorableKeyChainTests, KeepTheSameKeyOfTwoStoresApart) {
    const auto otherStore = std::make_shared<RecordingKeyChainStore>();
    RestorableKeyChain other(otherStore, "secret-service", folder.path());
    wipe();
    ASSERT_TRUE(other.write(key, newerTokens));
    EXPECT_EQ(noteCount(), 1U);
    EXPECT_EQ(refusal(), std::nullopt);
}

TEST_F(RestorableKeyChainTests, LeaveTheKeysOfFlowsAndOfOthersAlone) {
    for (const auto& each : {ServiceAccountCredentials::flowKey(key), std::string("Zelto probe - 1")}) {
        ASSERT_TRUE(keyChain.write(each, withTokens));
        ASSERT_TRUE(keyChain.write(each, wiped));
        ASSERT_TRUE(keyChain.erase(each));
    }
    EXPECT_TRUE(store->values().empty());
    EXPECT_FALSE(std::filesystem::exists(folder / "wiped"));
}

TEST_F(RestorableKeyChainTests, WipeWhereNothingCanBeNoted) {
    ASSERT_TRUE(keyChain.write(key, withTokens));
    folder.write("wiped", "in the way of the notes");
    ASSERT_TRUE(keyChain.write(key, wiped));
    EXPECT_EQ(store->values(), (std::map<std::string, Data>{{key, wiped}}));
    EXPECT_EQ(refusal(), RestoreErrorCode::nothingKept);
}

TEST_F(RestorableKeyChainTests, NotTakeAKeyChainThatCannotBeReadForAnEmptyOne) {
    wipe();
    store->setLocked(true);
    EXPECT_EQ(refusal(), RestoreErrorCode::keyChain);
    EXPECT_EQ(keyChain.restore(key).error().message, "The key chain is locked.");
    EXPECT_FALSE(keyChain.wipeDate(key));
    store->setLocked(false);
    EXPECT_EQ(refusal(), std::nullopt);
}

TEST_F(RestorableKeyChainTests, WriteNoTokenIntoANoteOrTheLog) {
    const LogCapture log;
    wipe();
    EXPECT_EQ(refusal(), std::nullopt);
    wipe();
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.path())) {
        if (entry.is_regular_file()) {
            EXPECT_EQ(TemporaryFolder::read(entry.path()).find("access-1"), std::string::npos);
        }

        struct stat status {};

        ASSERT_EQ(::stat(entry.path().c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 077U, 0U) << entry.path();
    }
    EXPECT_FALSE(log.contains("access-1"));
}

} // namespace zelto
