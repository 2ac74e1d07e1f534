#include <ZeltoHost/Storage/SQLiteAccountStorage.h>

#include "StorageTestSupport.h"

#include <Support/LogCapture.h>
#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace zelto {

namespace {

ServiceAccountConfiguration fullAccount() {
    auto made = account(ServiceType::Trello, "alice@example.com");
    made.displayName = "Alice \"A\" Ö 😀\n";
    made.credentials = ServiceAccountCredentials::forIdentifier(made.identifier());
    made.credentials->accessToken = "canary-token";
    made.credentials->password = "canary-password";
    made.enabled = false;
    made.additionalInfo = {{"cached_lastExportInfo", R"({"board":{"id":"1"},"list":null})"},
                           {"", ""},
                           {"key \u0001 \\", std::string(100'000, 'x')}};
    return made;
}

// A record as it is in JSON: the secrets stay in the key chain.
ServiceAccountConfiguration withoutSecrets(ServiceAccountConfiguration account) {
    account.credentials->accessToken.reset();
    account.credentials->password.reset();
    return account;
}

} // namespace

TEST(SQLiteAccountStorage, ARecordComesBackWhole) {
    const TemporaryFolder folder;
    const auto saved = fullAccount();
    opened(folder)->save(saved);
    const auto storage = opened(folder);
    EXPECT_EQ(storage->load(saved.identifier()), withoutSecrets(saved));
    EXPECT_EQ(storage->loadConfigurations(), std::vector{withoutSecrets(saved)});
    EXPECT_EQ(storage->lastError(), std::nullopt);
}

TEST(SQLiteAccountStorage, NoSecretReachesTheFile) {
    const TemporaryFolder folder;
    const auto storage = opened(folder);
    storage->save(fullAccount());
    storage->setLastUsedConfiguration(ServiceType::Trello, fullAccount());
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
        EXPECT_EQ(TemporaryFolder::read(entry.path()).find("canary"), std::string::npos) << entry.path();
        ++files;
    }
    EXPECT_GE(files, 2);
}

TEST(SQLiteAccountStorage, AnUnknownIdentifierGivesNullopt) {
    const TemporaryFolder folder;
    const auto storage = opened(folder);
    storage->save(account(ServiceType::Bear, "a"));
    for (const std::string identifier : {"Bear", "Bear+", "bear+a", "Bear+A", "Bear+a ", "", "' OR 1=1 --"}) {
        EXPECT_EQ(storage->load(identifier), std::nullopt) << identifier;
    }
    EXPECT_EQ(storage->lastError(), std::nullopt);
}

TEST(SQLiteAccountStorage, AccountsComeInTheOrderOfFirstSaving) {
    const TemporaryFolder folder;
    const auto storage = opened(folder);
    for (const auto* name : {"m", "z", "a"}) {
        storage->save(account(ServiceType::Bear, name));
        storage->save(account(ServiceType::Agenda, name));
    }
    EXPECT_EQ(identifiers(*storage),
              (std::vector<std::string>{"Bear+m", "Agenda+m", "Bear+z", "Agenda+z", "Bear+a", "Agenda+a"}));
}

TEST(SQLiteAccountStorage, ReplacingKeepsThePlaceAndRemovingGivesItUp) {
    const TemporaryFolder folder;
    const auto storage = opened(folder);
    for (const auto* name : {"a", "b", "c"}) {
        storage->save(account(ServiceType::Bear, name));
    }
    auto changed = account(ServiceType::Bear, "a");
    changed.displayName = "changed";
    storage->save(changed);
    EXPECT_EQ(identifiers(*storage), (std::vector<std::string>{"Bear+a", "Bear+b", "Bear+c"}));
    EXPECT_EQ(storage->load("Bear+a"), changed);
    storage->remove(changed);
    EXPECT_EQ(storage->load("Bear+a"), std::nullopt);
    storage->save(changed);
    EXPECT_EQ(identifiers(*storage), (std::vector<std::string>{"Bear+b", "Bear+c", "Bear+a"}));
}

TEST(SQLiteAccountStorage, AnAbsentAndAnEmptyUserNameAreTwoAccounts) {
    const TemporaryFolder folder;
    const auto storage = opened(folder);
    storage->save(account(ServiceType::Bear, std::nullopt));
    storage->save(account(ServiceType::Bear, ""));
    EXPECT_EQ(identifiers(*storage), (std::vector<std::string>{"Bear", "Bear+"}));
    storage->remove(account(ServiceType::Bear, ""));
    EXPECT_EQ(identifiers(*storage), std::vector<std::string>{"Bear"});
}

TEST(SQLiteAccountStorage, UserNamesAreComparedExactly) {
    const TemporaryFolder folder;
    const auto storage = opened(folder);
    const std::vector<std::string> names{"a",
                                         "A",
                                         " a",
                                         "a ",
                                         "a+",
                                         "é",
                                         "e\u0301",
                                         "'; DROP TABLE accounts; --",
                                         "%",
                                         std::string("a\0b", 3),
                                         std::string("a\0c", 3)};
    for (const auto& name : names) {
        storage->save(account(ServiceType::Bear, name));
    }
    const auto all = storage->loadConfigurations();
    ASSERT_EQ(all.size(), names.size());
    for (std::size_t index = 0; index < names.size(); ++index) {
        EXPECT_EQ(all[index].userName(), names[index]);
        EXPECT_EQ(storage->load("Bear+" + names[index])->userName(), names[index]);
    }
}

TEST(SQLiteAccountStorage, EveryServiceTypeIsKept) {
    const TemporaryFolder folder;
    const auto storage = opened(folder);
    for (const auto& type : casesOf<ServiceType>()) {
        storage->save(account(type.value, "alice"));
        storage->setLastUsedConfiguration(type.value, account(type.value, "alice"));
    }
    const auto all = opened(folder)->loadConfigurations();
    ASSERT_EQ(all.size(), 31);
    for (std::size_t index = 0; index < all.size(); ++index) {
        const auto type = casesOf<ServiceType>()[index].value;
        EXPECT_EQ(all[index], account(type, "alice"));
        EXPECT_EQ(storage->lastUsedConfiguration(type), account(type, "alice"));
    }
}

// Its identifier is different at each call.
TEST(SQLiteAccountStorage, ACalendarAccountIsReplacedAndRemovedByItsUserName) {
    const TemporaryFolder folder;
    const auto storage = opened(folder);
    auto calendar = account(ServiceType::Calendar, "alice");
    storage->save(calendar);
    storage->save(account(ServiceType::Calendar, "bob"));
    calendar.displayName = "changed";
    storage->save(calendar);
    storage->setLastUsedConfiguration(ServiceType::Calendar, calendar);
    EXPECT_EQ(storage->loadConfigurations(), (std::vector{calendar, account(ServiceType::Calendar, "bob")}));
    EXPECT_EQ(storage->lastUsedConfiguration(ServiceType::Calendar), calendar);
    EXPECT_EQ(storage->load(calendar.identifier()), std::nullopt);
    storage->remove(calendar);
    EXPECT_EQ(storage->loadConfigurations(), std::vector{account(ServiceType::Calendar, "bob")});
    EXPECT_EQ(storage->lastUsedConfiguration(ServiceType::Calendar), std::nullopt);
}

TEST(SQLiteAccountStorage, TheAccountUsedLastIsRememberedForEachType) {
    const TemporaryFolder folder;
    {
        const auto storage = opened(folder);
        for (const auto type : {ServiceType::Bear, ServiceType::Agenda}) {
            storage->save(account(type, "a"));
            storage->save(account(type, "b"));
        }
        storage->setLastUsedConfiguration(ServiceType::Bear, account(ServiceType::Bear, "a"));
        storage->setLastUsedConfiguration(ServiceType::Bear, account(ServiceType::Bear, "b"));
        storage->setLastUsedConfiguration(ServiceType::Agenda, account(ServiceType::Agenda, "a"));
    }
    const auto storage = opened(folder);
    EXPECT_EQ(storage->lastUsedConfiguration(ServiceType::Bear), account(ServiceType::Bear, "b"));
    EXPECT_EQ(storage->lastUsedConfiguration(ServiceType::Agenda), account(ServiceType::Agenda, "a"));
    EXPECT_EQ(storage->lastUsedConfiguration(ServiceType::Things), std::nullopt);
    storage->setLastUsedConfiguration(ServiceType::Bear, std::nullopt);
    EXPECT_EQ(storage->lastUsedConfiguration(ServiceType::Bear), std::nullopt);
    EXPECT_EQ(storage->lastError(), std::nullopt);
}

TEST(SQLiteAccountStorage, TheAccountUsedLastIsGivenAsItIsStoredNow) {
    const TemporaryFolder folder;
    const auto storage = opened(folder);
    auto bear = account(ServiceType::Bear, "a");
    storage->setLastUsedConfiguration(ServiceType::Bear, bear);
    EXPECT_EQ(storage->lastUsedConfiguration(ServiceType::Bear), bear) << "not stored yet";
    bear.additionalInfo["cached_x"] = "1";
    storage->save(bear);
    EXPECT_EQ(storage->lastUsedConfiguration(ServiceType::Bear), bear);
    storage->remove(bear);
    EXPECT_EQ(storage->lastUsedConfiguration(ServiceType::Bear), std::nullopt);
}

TEST(SQLiteAccountStorage, RemovingWhatIsNotThereIsNoError) {
    const TemporaryFolder folder;
    const auto storage = opened(folder);
    storage->save(account(ServiceType::Bear, "a"));
    EXPECT_TRUE(storage->tryRemove(account(ServiceType::Bear, "b")));
    EXPECT_EQ(identifiers(*storage), std::vector<std::string>{"Bear+a"});
}

TEST(SQLiteAccountStorage, WhatOneHasStoredAnotherSees) {
    const TemporaryFolder folder;
    const auto one = opened(folder);
    const auto other = opened(folder);
    one->save(account(ServiceType::Bear, "a"));
    EXPECT_EQ(identifiers(*other), std::vector<std::string>{"Bear+a"});
    other->remove(account(ServiceType::Bear, "a"));
    EXPECT_EQ(identifiers(*one), std::vector<std::string>{});
}

TEST(SQLiteAccountStorage, ARecordThatCannotBeReadStaysAndIsReported) {
    const TemporaryFolder folder;
    const auto storage = opened(folder);
    storage->save(account(ServiceType::Bear, "a"));
    storage->save(account(ServiceType::Bear, "b"));
    const std::string unknown = R"({"serviceType":9999,"enabled":true,"additionalInfo":{"secret":"canary"}})";
    sql(folder / "accounts.sqlite",
        "UPDATE accounts SET record = '" + unknown + "' WHERE identifier = 'Bear+a'");
    LogCapture log;
    EXPECT_EQ(identifiers(*storage), std::vector<std::string>{"Bear+b"});
    ASSERT_TRUE(storage->lastError());
    EXPECT_EQ(storage->lastError()->code, StorageErrorCode::recordDamaged);
    EXPECT_EQ(log.messages(), std::vector{storage->lastError()->message()});
    EXPECT_EQ(storage->lastError()->message().find("canary"), std::string::npos);
    const auto loaded = storage->tryLoad("Bear+a");
    ASSERT_FALSE(loaded);
    EXPECT_EQ(loaded.error().code, StorageErrorCode::recordDamaged);
    EXPECT_EQ(textOf(folder / "accounts.sqlite", "SELECT record FROM accounts WHERE identifier = 'Bear+a'"),
              unknown);
}

TEST(SQLiteAccountStorage, AnAccountThatHasNoJSONIsAnErrorAndIsLogged) {
    const TemporaryFolder folder;
    const auto storage = opened(folder);
    LogCapture log;
    storage->save(account(ServiceType::Bear, "a\xFF"));
    ASSERT_TRUE(storage->lastError());
    EXPECT_EQ(storage->lastError()->code, StorageErrorCode::notEncodable);
    EXPECT_EQ(log.messages(LogLevel::error), std::vector{storage->lastError()->message()});
    EXPECT_EQ(identifiers(*storage), std::vector<std::string>{});
    EXPECT_TRUE(storage->lastError()) << "a later success does not hide it";
}

TEST(SQLiteAccountStorage, ARemovedFileIsReportedAndNotWritten) {
    const TemporaryFolder folder;
    const auto storage = opened(folder);
    for (const auto* suffix : {"", "-wal", "-shm"}) {
        std::filesystem::remove(folder / ("accounts.sqlite" + std::string(suffix)));
    }
    const auto saved = storage->trySave(account(ServiceType::Bear, "a"));
    ASSERT_FALSE(saved);
    EXPECT_EQ(saved.error().code, StorageErrorCode::moved);
    EXPECT_FALSE(storage->tryLoadConfigurations());
    EXPECT_EQ(identifiers(*opened(folder)), std::vector<std::string>{});
}

TEST(SQLiteAccountStorage, ThreadsMayCallAtOnce) {
    const TemporaryFolder folder;
    const auto storage = opened(folder);
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 8; ++thread) {
            threads.emplace_back([&storage, thread] {
                for (int round = 0; round < 25; ++round) {
                    const auto own =
                        account(ServiceType::Bear, std::to_string(thread) + "." + std::to_string(round));
                    storage->save(own);
                    storage->setLastUsedConfiguration(ServiceType::Bear, own);
                    EXPECT_EQ(storage->load(own.identifier()), own);
                    (void)storage->lastUsedConfiguration(ServiceType::Bear);
                    if (round % 2 == 1) {
                        storage->remove(own);
                    }
                }
            });
        }
    }
    EXPECT_EQ(storage->loadConfigurations().size(), 8 * 13);
    EXPECT_EQ(storage->lastError(), std::nullopt);
}

} // namespace zelto
