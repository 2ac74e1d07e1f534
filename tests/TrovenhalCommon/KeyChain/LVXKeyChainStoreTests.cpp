#include <Support/LogCapture.h>
#include <TrovenhalCommon/KeyChain/FileKeyChainStore.h>
#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>
#include <TrovenhalCommon/KeyChain/MemoryKeyChainStore.h>
#include <TrovenhalCommon/KeyChain/SecretServiceKeyChainStore.h>

#include <Platform/FileManager.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

namespace zelto {
namespace {

// Sets or removes a variable of the environment during a test.
class Environment {
  public:
    Environment(std::string name, const char* value) : name_(std::move(name)) {
        if (const char* before = std::getenv(name_.c_str())) {
            before_ = before;
        }
        value ? setenv(name_.c_str(), value, 1) : unsetenv(name_.c_str());
    }

    ~Environment() { before_ ? setenv(name_.c_str(), before_->c_str(), 1) : unsetenv(name_.c_str()); }

    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

  private:
    std::string name_;
    std::optional<std::string> before_;
};

class LockedStore final : public LVXKeyChainStore {
  public:
    Result<std::optional<Data>, KeyChainError> read(const std::string&) override { return failure(error()); }

    Result<void, KeyChainError> write(const std::string&, const Data&) override { return failure(error()); }

    Result<bool, KeyChainError> erase(const std::string&) override { return failure(error()); }

  private:
    static KeyChainError error() { return {KeyChainErrorKind::locked, "It is locked."}; }
};

TEST(LVXKeyChainStore, AnErrorIsNulloptOrFalseAndItsReasonIsLogged) {
    const LogCapture log;
    LockedStore store;
    EXPECT_EQ(store.data("a"), std::nullopt);
    EXPECT_FALSE(store.set(dataOf("x"), "a"));
    EXPECT_FALSE(store.remove("a"));
    EXPECT_EQ(log.messages(LogLevel::warn), std::vector<std::string>(3, "It is locked."));
}

TEST(MemoryKeyChainStore, WritesReadsReplacesAndErases) {
    MemoryKeyChainStore store;
    EXPECT_EQ(store.data("a"), std::nullopt);
    EXPECT_TRUE(store.set(dataOf("one"), "a"));
    EXPECT_TRUE(store.set(Data(), "a"));
    EXPECT_EQ(store.data("a"), Data());
    EXPECT_TRUE(store.remove("a"));
    EXPECT_FALSE(store.remove("a"));
    EXPECT_EQ(store.data("a"), std::nullopt);
}

TEST(MemoryKeyChainStore, ManyThreadsMayUseIt) {
    MemoryKeyChainStore store;
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&, thread] {
                for (int round = 0; round < 500; ++round) {
                    store.set(dataOf(std::to_string(round)), std::to_string(thread));
                }
            });
        }
    }
    EXPECT_EQ(store.data("3"), dataOf("499"));
}

TEST(LVXKeyChainStoreFactory, GivesTheHostsStoreUntilItIsTakenBack) {
    const auto mine = std::make_shared<MemoryKeyChainStore>();
    LVXKeyChainStoreFactory::setStore(mine);
    EXPECT_EQ(LVXKeyChainStoreFactory::keyChainStore(), mine);
    const auto other = std::make_shared<MemoryKeyChainStore>();
    LVXKeyChainStoreFactory::setStore(other);
    EXPECT_EQ(LVXKeyChainStoreFactory::keyChainStore(), other);
    LVXKeyChainStoreFactory::setStore(nullptr);
    EXPECT_NE(LVXKeyChainStoreFactory::keyChainStore(), nullptr);
    EXPECT_NE(LVXKeyChainStoreFactory::keyChainStore(), other);
}

TEST(LVXKeyChainStoreFactory, WithoutASecretServiceItIsAFileInTheDataDirectoryChosenOnce) {
    const auto data = FileManager::temporaryPath("data").value();
    const auto chosen = [&] {
        const Environment noBus("DBUS_SESSION_BUS_ADDRESS", nullptr);
        const Environment noRuntime("XDG_RUNTIME_DIR", nullptr);
        const Environment dataHome("XDG_DATA_HOME", data.c_str());
        return LVXKeyChainStoreFactory::defaultStore();
    }();
    const auto file = std::dynamic_pointer_cast<FileKeyChainStore>(chosen);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->path(), data / "zelto" / "keychain");
    EXPECT_EQ(LVXKeyChainStoreFactory::keyChainStore(), LVXKeyChainStoreFactory::keyChainStore());
}

TEST(LVXKeyChainStoreFactory, ARelativeDataDirectoryIsIgnored) {
    const Environment noBus("DBUS_SESSION_BUS_ADDRESS", nullptr);
    const Environment noRuntime("XDG_RUNTIME_DIR", nullptr);
    const Environment dataHome("XDG_DATA_HOME", "relative");
    const Environment home("HOME", "/home/somebody");
    const auto file = std::dynamic_pointer_cast<FileKeyChainStore>(LVXKeyChainStoreFactory::defaultStore());
    ASSERT_TRUE(file);
    EXPECT_EQ(file->path(), "/home/somebody/.local/share/zelto/keychain");
}

TEST(SecretServiceKeyChainStore, WithoutASessionBusItIsUnavailable) {
    const Environment noBus("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    EXPECT_FALSE(SecretServiceKeyChainStore::isOffered());
    SecretServiceKeyChainStore store;
    EXPECT_EQ(store.read("a").error().kind, KeyChainErrorKind::unavailable);
    EXPECT_EQ(store.write("a", dataOf("x")).error().kind, KeyChainErrorKind::unavailable);
    EXPECT_EQ(store.erase("a").error().kind, KeyChainErrorKind::unavailable);
}

} // namespace
} // namespace zelto
