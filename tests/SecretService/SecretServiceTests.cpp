#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>
#include <TrovenhalCommon/KeyChain/SecretServiceKeyChainStore.h>

#include <gtest/gtest.h>
#include <libsecret/secret.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>

// Run by tests/SecretService/with-key-chain, which makes the session that each of the suites needs.

namespace zelto {
namespace {

// The output of a command of the session, without its line end.
std::string outputOf(const std::string& command) {
    std::string output;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    if (!pipe) {
        return output;
    }
    char buffer[4096];
    while (std::fgets(buffer, sizeof buffer, pipe)) {
        output += buffer;
    }
    EXPECT_EQ(pclose(pipe), 0) << command << ": " << output;
    while (output.ends_with('\n')) {
        output.pop_back();
    }
    return output;
}

std::string service(const std::string& call) {
    return outputOf(
        "gdbus call --session --dest org.freedesktop.secrets --object-path /org/freedesktop/secrets " + call);
}

std::string keyringProcess() {
    const auto reply = outputOf("gdbus call --session --dest org.freedesktop.DBus --object-path "
                                "/org/freedesktop/DBus --method "
                                "org.freedesktop.DBus.GetConnectionUnixProcessID org.freedesktop.secrets");
    // "(uint32 1234,)"
    const auto begin = reply.find(' ') + 1;
    return reply.substr(begin, reply.find(',') - begin);
}

SecretServiceKeyChainStore storeOf(SecretServiceOwner owner) {
    return SecretServiceKeyChainStore("zelto", std::chrono::seconds(15), std::move(owner));
}

TEST(SecretServiceAbsent, ABusWithoutTheServiceDoesNotOfferIt) {
    EXPECT_FALSE(SecretServiceKeyChainStore::isOffered());
}

TEST(SecretServiceAbsent, EveryOperationIsUnavailableAndNotEmpty) {
    SecretServiceKeyChainStore store;
    const auto read = store.read("key");
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error().kind, KeyChainErrorKind::unavailable);
    EXPECT_EQ(store.write("key", dataOf("x")).error().kind, KeyChainErrorKind::unavailable);
    EXPECT_EQ(store.erase("key").error().kind, KeyChainErrorKind::unavailable);
}

TEST(SecretServiceEmpty, WithoutADefaultCollectionEveryOperationIsUnavailable) {
    SecretServiceKeyChainStore store;
    const auto read = store.read("key");
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error().kind, KeyChainErrorKind::unavailable);
    EXPECT_NE(read.error().message.find("no default collection"), std::string::npos) << read.error().message;
    EXPECT_EQ(store.write("key", dataOf("x")).error().kind, KeyChainErrorKind::unavailable);
    EXPECT_EQ(store.erase("key").error().kind, KeyChainErrorKind::unavailable);
}

TEST(SecretService, IsOfferedAndTheDefault) {
    EXPECT_TRUE(SecretServiceKeyChainStore::isOffered());
    EXPECT_TRUE(
        std::dynamic_pointer_cast<SecretServiceKeyChainStore>(LVXKeyChainStoreFactory::defaultStore()));
}

TEST(SecretService, AnUnknownKeyIsNothing) {
    SecretServiceKeyChainStore store;
    const auto read = store.read("no such key");
    ASSERT_TRUE(read) << read.error().message;
    EXPECT_EQ(*read, std::nullopt);
    EXPECT_FALSE(store.erase("no such key").value());
}

TEST(SecretService, StoresLoadsReplacesAndRemoves) {
    SecretServiceKeyChainStore store;
    const auto written = store.write("a", dataOf("canary-value one"));
    ASSERT_TRUE(written) << written.error().message;
    EXPECT_EQ(SecretServiceKeyChainStore().read("a").value(), dataOf("canary-value one"));
    ASSERT_TRUE(store.write("a", dataOf("canary-value two")));
    EXPECT_EQ(store.read("a").value(), dataOf("canary-value two"));
    EXPECT_TRUE(store.erase("a").value());
    EXPECT_EQ(store.read("a").value(), std::nullopt);
    EXPECT_FALSE(store.erase("a").value());
}

TEST(SecretService, KeepsAnyBytes) {
    SecretServiceKeyChainStore store;
    Data all(256);
    for (std::size_t index = 0; index < all.size(); ++index) {
        all[index] = static_cast<std::uint8_t>(index);
    }
    for (const auto& value : {all, Data(), Data{0}, Data(5, 0xFF)}) {
        ASSERT_TRUE(store.write("bytes", value));
        EXPECT_EQ(store.read("bytes").value(), value);
    }
}

TEST(SecretService, KeepsAMegabyte) {
    SecretServiceKeyChainStore store;
    Data large(1 << 20);
    for (std::size_t index = 0; index < large.size(); ++index) {
        large[index] = static_cast<std::uint8_t>(index * 7919 >> 5);
    }
    const auto written = store.write("large", large);
    ASSERT_TRUE(written) << written.error().message;
    EXPECT_EQ(store.read("large").value(), large);
    EXPECT_TRUE(store.erase("large").value());
}

TEST(SecretService, TakesKeysOfAnyScript) {
    SecretServiceKeyChainStore store;
    const std::string key = "ServiceCredentials - Asana+Алиса 🔑 \"'%";
    ASSERT_TRUE(store.write(key, dataOf("x")));
    EXPECT_EQ(store.read(key).value(), dataOf("x"));
    EXPECT_EQ(store.read("ServiceCredentials - Asana+Алис").value(), std::nullopt);
}

TEST(SecretService, RefusesAKeyThatIsNoText) {
    SecretServiceKeyChainStore store;
    for (const std::string& key : {std::string("\xff"), std::string("a\0b", 3)}) {
        EXPECT_EQ(store.write(key, dataOf("x")).error().kind, KeyChainErrorKind::ioError);
        EXPECT_EQ(store.read(key).error().kind, KeyChainErrorKind::ioError);
    }
}

TEST(SecretService, ApplicationsDoNotSeeEachOthersKeys) {
    SecretServiceKeyChainStore one("one");
    SecretServiceKeyChainStore two("two");
    ASSERT_TRUE(one.write("shared name", dataOf("1")));
    EXPECT_EQ(two.read("shared name").value(), std::nullopt);
    EXPECT_FALSE(two.erase("shared name").value());
    EXPECT_EQ(one.read("shared name").value(), dataOf("1"));
}

TEST(SecretService, OwnersDoNotSeeEachOthersItems) {
    auto one = storeOf({"one"});
    auto other = storeOf({"other", true});
    ASSERT_TRUE(one.write("owned", dataOf("1")));
    EXPECT_EQ(other.read("owned").value(), std::nullopt);
    EXPECT_FALSE(other.erase("owned").value());
    ASSERT_TRUE(other.write("owned", dataOf("2")));
    EXPECT_EQ(one.read("owned").value(), dataOf("1"));
    ASSERT_TRUE(one.write("owned", dataOf("3")));
    EXPECT_EQ(other.read("owned").value(), dataOf("2"));
    EXPECT_TRUE(one.erase("owned").value());
    EXPECT_EQ(one.read("owned").value(), std::nullopt);
    EXPECT_EQ(other.read("owned").value(), dataOf("2"));
}

TEST(SecretService, AStoreWithoutAnOwnerLeavesTheItemsOfOwnersAlone) {
    SecretServiceKeyChainStore nobodys;
    auto owned = storeOf({"one"});
    ASSERT_TRUE(owned.write("both", dataOf("owned")));
    EXPECT_EQ(nobodys.read("both").value(), std::nullopt);
    EXPECT_FALSE(nobodys.erase("both").value());
    for (const auto* value : {"first", "second"}) {
        ASSERT_TRUE(nobodys.write("both", dataOf(value)));
        EXPECT_EQ(nobodys.read("both").value(), dataOf(value));
        EXPECT_EQ(owned.read("both").value(), dataOf("owned"));
    }
    EXPECT_TRUE(nobodys.erase("both").value());
    EXPECT_EQ(nobodys.read("both").value(), std::nullopt);
    EXPECT_EQ(owned.read("both").value(), dataOf("owned"));
}

TEST(SecretService, ItemsOfNobodyAreFoundByTheOwnerThatTakesThem) {
    SecretServiceKeyChainStore nobodys;
    auto upgraded = storeOf({"upgraded", true});
    auto fresh = storeOf({"fresh"});
    ASSERT_TRUE(nobodys.write("old", dataOf("old")));
    EXPECT_EQ(upgraded.read("old").value(), dataOf("old"));
    EXPECT_EQ(fresh.read("old").value(), std::nullopt);
    EXPECT_FALSE(fresh.erase("old").value());
    ASSERT_TRUE(upgraded.write("old", dataOf("new")));
    EXPECT_EQ(upgraded.read("old").value(), dataOf("new"));
    EXPECT_EQ(nobodys.read("old").value(), dataOf("old"));
    EXPECT_TRUE(upgraded.erase("old").value());
    EXPECT_EQ(upgraded.read("old").value(), std::nullopt);
    EXPECT_EQ(nobodys.read("old").value(), std::nullopt);
}

TEST(SecretService, AValueOfAnotherProgramUnderOurNameIsDamageAndNotNothing) {
    static const SecretSchema plain = {.name = "org.zelto.Integrations",
                                       .flags = SECRET_SCHEMA_NONE,
                                       .attributes = {{"application", SECRET_SCHEMA_ATTRIBUTE_STRING},
                                                      {"key", SECRET_SCHEMA_ATTRIBUTE_STRING}}};
    ASSERT_TRUE(secret_password_store_sync(&plain, SECRET_COLLECTION_DEFAULT, "x", "not base64!", nullptr,
                                           nullptr, "application", "zelto", "key", "foreign", nullptr));
    const auto read = SecretServiceKeyChainStore().read("foreign");
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error().kind, KeyChainErrorKind::damaged);
}

TEST(SecretService, SixteenThreadsMayUseOneStore) {
    SecretServiceKeyChainStore store;
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 16; ++thread) {
        threads.emplace_back([&store, thread] {
            const auto key = "thread " + std::to_string(thread);
            for (int round = 0; round < 5; ++round) {
                const auto value = dataOf(key + std::to_string(round));
                EXPECT_TRUE(store.write(key, value));
                EXPECT_EQ(store.read(key).value(), value);
            }
        });
    }
}

TEST(SecretServiceLocked, ALockedCollectionIsLockedAndNotEmpty) {
    SecretServiceKeyChainStore store;
    ASSERT_TRUE(store.write("a", dataOf("one")));
    service("--method org.freedesktop.Secret.Service.Lock \"['/org/freedesktop/secrets/aliases/default']\"");
    for (const std::string key : {"a", "no such key"}) {
        const auto read = store.read(key);
        ASSERT_FALSE(read) << "a locked key chain looks empty";
        EXPECT_EQ(read.error().kind, KeyChainErrorKind::locked);
        EXPECT_EQ(store.write(key, dataOf("two")).error().kind, KeyChainErrorKind::locked);
        EXPECT_EQ(store.erase(key).error().kind, KeyChainErrorKind::locked);
    }
    EXPECT_TRUE(
        std::dynamic_pointer_cast<SecretServiceKeyChainStore>(LVXKeyChainStoreFactory::defaultStore()))
        << "a locked key chain must not be replaced by a file";
}

// Later than the test above, in the same session.
TEST(SecretServiceLocked, AServiceThatDoesNotReplyIsUnavailableInTime) {
    const auto process = keyringProcess();
    ASSERT_EQ(kill(std::stoi(process), SIGSTOP), 0);
    SecretServiceKeyChainStore store("zelto", std::chrono::milliseconds(300));
    const auto begin = std::chrono::steady_clock::now();
    const auto read = store.read("a");
    const auto taken = std::chrono::steady_clock::now() - begin;
    kill(std::stoi(process), SIGCONT);
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error().kind, KeyChainErrorKind::unavailable);
    EXPECT_LT(taken, std::chrono::seconds(10));
}

TEST(SecretServiceLocked, AServiceThatDiedIsUnavailable) {
    ASSERT_EQ(kill(std::stoi(keyringProcess()), SIGKILL), 0);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    auto kind = KeyChainErrorKind::locked;
    while (kind != KeyChainErrorKind::unavailable && std::chrono::steady_clock::now() < deadline) {
        const auto read = SecretServiceKeyChainStore().read("a");
        ASSERT_FALSE(read);
        kind = read.error().kind;
    }
    EXPECT_EQ(kind, KeyChainErrorKind::unavailable);
}

} // namespace
} // namespace zelto
