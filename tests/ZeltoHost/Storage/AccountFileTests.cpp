#include "StorageTestSupport.h"

#include <Support/Folders.h>

#include <ZeltoHost/Storage/AccountFileInternal.h>
#include <ZeltoHost/Storage/AccountRecordsInternal.h>
#include <ZeltoHost/Storage/AccountSchemaInternal.h>
#include <ZeltoHost/Storage/DirectoryIdentityInternal.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

#include <utime.h>

namespace zelto {

namespace {

constexpr auto fileName = "accounts.sqlite";

// A closed storage with three accounts, in a single file.
std::string filledFile() {
    const TemporaryFolder folder;
    {
        const auto storage = opened(folder);
        for (const auto* name : {"a", "b", "c"}) {
            auto each = account(ServiceType::Bear, name);
            each.additionalInfo["cached_x"] = std::string(3000, 'x');
            storage->save(each);
        }
        storage->setLastUsedConfiguration(ServiceType::Bear, account(ServiceType::Bear, "a"));
    }
    return TemporaryFolder::read(folder / fileName);
}

// Damage must be reported by a refusal to open, or by an error next to the list; never just by a shorter
// list.
testing::AssertionResult isWholeOrReported(const std::string& content) {
    const TemporaryFolder folder;
    folder.write(fileName, content);
    const auto storage = SQLiteAccountStorage::open(folder.path());
    if (!storage) {
        const bool namesFile = storage.error().path == folder / fileName;
        return namesFile ? testing::AssertionSuccess()
                         : testing::AssertionFailure() << storage.error().message();
    }
    const auto accounts = (*storage)->tryLoadConfigurations();
    if (!accounts || (*storage)->lastError() || accounts->size() == 3) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << accounts->size() << " accounts without an error";
}

std::vector<std::string> filesIn(const std::filesystem::path& directory) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    return names;
}

void makeOld(const std::filesystem::path& path) {
    const utimbuf longAgo{0, 0};
    ::utime(path.c_str(), &longAgo);
}

void copyFileOfVersion1(const TemporaryFolder& folder) {
    std::filesystem::copy_file(sourceFolder() / "tests/ZeltoHost/Storage/fixtures/accounts-1.sqlite",
                               folder / fileName);
}

std::unique_ptr<SQLiteConnection> emptyDatabase(const TemporaryFolder& folder) {
    return *SQLiteConnection::open(folder.write("database", ""));
}

} // namespace

TEST(AccountFile, AClosedStorageIsOneFile) {
    const TemporaryFolder folder;
    opened(folder)->save(account(ServiceType::Bear, "a"));
    EXPECT_EQ(filesIn(folder.path()), std::vector<std::string>{fileName});
}

TEST(AccountFile, ItKeepsALogAndIsMarkedAsOurs) {
    const TemporaryFolder folder;
    (void)opened(folder);
    EXPECT_EQ(textOf(folder / fileName, "PRAGMA journal_mode"), "wal");
    EXPECT_EQ(textOf(folder / fileName, "PRAGMA application_id"), std::to_string(accountApplicationId));
    EXPECT_EQ(textOf(folder / fileName, "PRAGMA user_version"), "3");
}

TEST(AccountFile, AnEmptyFileIsDamage) {
    const TemporaryFolder folder;
    folder.write(fileName, "");
    const auto storage = SQLiteAccountStorage::open(folder.path());
    ASSERT_FALSE(storage);
    EXPECT_EQ(storage.error().code, StorageErrorCode::damaged);
    EXPECT_EQ(storage.error().message(), "'" + (folder / fileName).string() +
                                             "' is damaged or no account storage; put back a copy of it, or "
                                             "move it away to start anew (it is empty)");
}

TEST(AccountFile, WhatIsNoDatabaseIsDamageAndStaysAsItIs) {
    for (const auto& content : {std::string("not a database"), std::string(100'000, 'x'),
                                std::string(4096, '\0'), std::string("SQLite format 3\0", 16)}) {
        const TemporaryFolder folder;
        const auto file = folder.write(fileName, content);
        EXPECT_EQ(refusal(folder.path()), StorageErrorCode::damaged);
        EXPECT_EQ(TemporaryFolder::read(file), content);
    }
}

TEST(AccountFile, AnotherProgramsDatabaseIsRefused) {
    const TemporaryFolder folder;
    const auto file = folder.write(fileName, "");
    sql(file, "CREATE TABLE accounts (a)");
    EXPECT_EQ(refusal(folder.path()), StorageErrorCode::damaged);
}

TEST(AccountFile, AFolderInItsPlaceIsDamage) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / fileName);
    EXPECT_EQ(refusal(folder.path()), StorageErrorCode::damaged);
}

TEST(AccountFile, AMissingTableIsDamage) {
    for (const auto* table : {"accounts", "last_used", "directory"}) {
        const TemporaryFolder folder;
        (void)opened(folder);
        sql(folder / fileName, "DROP TABLE " + std::string(table));
        EXPECT_EQ(refusal(folder.path()), StorageErrorCode::damaged);
    }
}

TEST(AccountFile, ACutFileIsReported) {
    const auto whole = filledFile();
    for (std::size_t length = 0; length < whole.size(); length += 509) {
        EXPECT_TRUE(isWholeOrReported(whole.substr(0, length))) << length;
    }
}

TEST(AccountFile, AChangedByteNeverLosesAccountsSilently) {
    const auto whole = filledFile();
    std::minstd_rand random(1);
    // Every byte of the file's header, and a sample of the others.
    for (std::size_t at = 0; at < whole.size(); at += at < 200 ? 1 : 1 + random() % 100) {
        auto changed = whole;
        changed[at] = static_cast<char>(changed[at] ^ static_cast<char>(1U << random() % 8U));
        EXPECT_TRUE(isWholeOrReported(changed)) << at;
    }
}

TEST(AccountFile, AMissingFileBesideItsLogIsDamage) {
    const TemporaryFolder folder;
    folder.write("accounts.sqlite-wal", "x");
    EXPECT_EQ(refusal(folder.path()), StorageErrorCode::damaged);
    EXPECT_EQ(filesIn(folder.path()), std::vector<std::string>{"accounts.sqlite-wal"});
}

TEST(AccountFile, ANewerVersionIsRefusedAndStaysAsItIs) {
    const TemporaryFolder folder;
    opened(folder)->save(account(ServiceType::Bear, "a"));
    sql(folder / fileName, "PRAGMA user_version = 7");
    const auto before = TemporaryFolder::read(folder / fileName);
    const auto storage = SQLiteAccountStorage::open(folder.path());
    ASSERT_FALSE(storage);
    EXPECT_EQ(storage.error().code, StorageErrorCode::newerVersion);
    EXPECT_EQ(storage.error().message(),
              "'" + (folder / fileName).string() +
                  "' was written by a newer version of this program; use that version or another directory "
                  "(format 7, known up to 3)");
    EXPECT_EQ(TemporaryFolder::read(folder / fileName), before);
}

TEST(AccountFile, AFileOfVersion1Opens) {
    const TemporaryFolder folder;
    copyFileOfVersion1(folder);
    const auto storage = opened(folder);
    auto trello = account(ServiceType::Trello, "alice@example.com");
    trello.displayName = "Alice Ö";
    trello.credentials = ServiceAccountCredentials::forIdentifier("Trello+alice@example.com");
    trello.additionalInfo = {{"cached_lastExportInfo", R"({"board":"1"})"}, {"key", "value"}};
    auto bear = account(ServiceType::Bear, std::nullopt);
    bear.enabled = false;
    EXPECT_EQ(storage->loadConfigurations(), (std::vector{trello, bear}));
    EXPECT_EQ(storage->lastUsedConfiguration(ServiceType::Trello), trello);
    EXPECT_EQ(storage->lastUsedConfiguration(ServiceType::Bear), std::nullopt);
    EXPECT_EQ(storage->tryMarks(trello).value(), AccountMarks());
    EXPECT_EQ(storage->lastError(), std::nullopt);
}

TEST(AccountFile, AFileOfVersion1IsReadWhereItCannotBeWrittenTo) {
    const TemporaryFolder folder;
    copyFileOfVersion1(folder);
    const auto before = TemporaryFolder::read(folder / fileName);
    const auto connection = readAccountFile(folder.path());
    ASSERT_TRUE(connection);
    const auto trello = account(ServiceType::Trello, "alice@example.com");
    EXPECT_EQ(allAccounts(*connection).value().accounts.size(), 2U);
    EXPECT_EQ(accountMarks(*connection, trello).value(), AccountMarks());
    EXPECT_EQ(directoryIdentity(*connection).value(), DirectoryIdentity());
    EXPECT_EQ(TemporaryFolder::read(folder / fileName), before);
}

TEST(AccountFile, WhatAKilledMakerLeftIsRemovedWhenItIsOld) {
    const TemporaryFolder folder;
    for (const auto* name : {".zelto-new-old", ".zelto-new-young"}) {
        std::filesystem::create_directory(folder / name);
        folder.write(std::string(name) + "/accounts.sqlite", "");
    }
    makeOld(folder / ".zelto-new-old");
    (void)opened(folder);
    EXPECT_EQ(filesIn(folder.path()), (std::vector<std::string>{".zelto-new-young", fileName}));
}

TEST(AccountFile, AnotherProcessThatHoldsItTooLongIsReported) {
    const TemporaryFolder folder;
    const auto storage = opened(folder);
    storage->save(account(ServiceType::Bear, "a"));
    const auto holder = *SQLiteConnection::open(folder / fileName);
    ASSERT_TRUE(holder->execute("BEGIN IMMEDIATE"));
    const auto saved = storage->trySave(account(ServiceType::Bear, "b"));
    ASSERT_FALSE(saved);
    EXPECT_EQ(saved.error().code, StorageErrorCode::busy);
    EXPECT_EQ(identifiers(*storage), std::vector<std::string>{"Bear+a"}) << "readers do not wait";
    ASSERT_TRUE(holder->execute("ROLLBACK"));
    EXPECT_TRUE(storage->trySave(account(ServiceType::Bear, "b")));
}

TEST(AccountSchema, MissingStepsAreTakenInOrder) {
    const TemporaryFolder folder;
    const auto database = emptyDatabase(folder);
    const std::array steps{"CREATE TABLE t (a); INSERT INTO t VALUES (1)", "UPDATE t SET a = a + 10",
                           "UPDATE t SET a = a * 2"};
    ASSERT_TRUE(migrate(*database, std::span(steps).first(1)));
    EXPECT_EQ(database->number("PRAGMA user_version"), 1);
    ASSERT_TRUE(migrate(*database, steps));
    EXPECT_EQ(database->number("PRAGMA user_version"), 3);
    EXPECT_EQ(database->number("SELECT a FROM t"), 22);
    ASSERT_TRUE(migrate(*database, steps));
    EXPECT_EQ(database->number("SELECT a FROM t"), 22);
}

TEST(AccountSchema, AStepThatFailsLeavesTheVersionBefore) {
    const TemporaryFolder folder;
    const auto database = emptyDatabase(folder);
    const std::array steps{"CREATE TABLE t (a); INSERT INTO t VALUES (1)", "UPDATE t SET a = 2",
                           "UPDATE missing SET a = 3"};
    ASSERT_TRUE(migrate(*database, std::span(steps).first(1)));
    EXPECT_FALSE(migrate(*database, steps));
    EXPECT_EQ(database->number("PRAGMA user_version"), 1);
    EXPECT_EQ(database->number("SELECT a FROM t"), 1);
    ASSERT_TRUE(migrate(*database, std::span(steps).first(2)));
    EXPECT_EQ(database->number("SELECT a FROM t"), 2);
}

TEST(AccountSchema, AnImpossibleVersionIsDamage) {
    const TemporaryFolder folder;
    const auto database = emptyDatabase(folder);
    ASSERT_TRUE(database->execute("PRAGMA user_version = -1"));
    const auto done = migrate(*database, accountSchemaSteps());
    ASSERT_FALSE(done);
    EXPECT_EQ(done.error().code, StorageErrorCode::damaged);
}

} // namespace zelto
