#include "StorageTestSupport.h"

#include <gtest/gtest.h>

namespace zelto {

TEST(AccountMarks, AreNoneAtFirst) {
    const TemporaryFolder folder;
    const auto storage = opened(folder);
    const auto asana = account(ServiceType::Asana, "me");
    EXPECT_EQ(storage->tryMarks(asana).value(), AccountMarks());
    storage->save(asana);
    EXPECT_EQ(storage->tryMarks(asana).value(), AccountMarks());
}

TEST(AccountMarks, StayWhenTheRecordIsReplacedAndGoWithTheAccount) {
    const TemporaryFolder folder;
    auto asana = account(ServiceType::Asana, "me");
    const AccountMarks marks{.isOfSandbox = true, .keyChain = "file"};
    {
        const auto storage = opened(folder);
        storage->save(asana);
        ASSERT_TRUE(storage->trySetMarks(asana, marks));
    }
    const auto storage = opened(folder);
    asana.displayName = "Asana at work";
    storage->save(asana);
    EXPECT_EQ(storage->tryMarks(asana).value(), marks);
    EXPECT_EQ(storage->load("Asana+me"), asana);
    storage->remove(asana);
    EXPECT_EQ(storage->tryMarks(asana).value(), AccountMarks());
    storage->save(asana);
    EXPECT_EQ(storage->tryMarks(asana).value(), AccountMarks());
}

TEST(AccountMarks, AreOfOneAccountAlone) {
    const TemporaryFolder folder;
    const auto storage = opened(folder);
    const auto one = account(ServiceType::Asana, "one");
    const auto other = account(ServiceType::Asana, "other");
    storage->save(one);
    storage->save(other);
    ASSERT_TRUE(storage->trySetMarks(one, {.isOfSandbox = true, .keyChain = "file"}));
    ASSERT_TRUE(storage->trySetMarks(other, {.isOfSandbox = false, .keyChain = "secret-service"}));
    EXPECT_EQ(storage->tryMarks(one).value(), (AccountMarks{true, "file"}));
    EXPECT_EQ(storage->tryMarks(other).value(), (AccountMarks{false, "secret-service"}));
    ASSERT_TRUE(storage->trySetMarks(one, {}));
    EXPECT_EQ(storage->tryMarks(one).value(), AccountMarks());
}

TEST(AccountMarks, OfTheSandboxComeWithTheFirstSavingAlone) {
    const TemporaryFolder folder;
    const auto storage = opened(folder);
    const auto real = account(ServiceType::Asana, "real");
    const auto sandboxed = account(ServiceType::Asana, "sandboxed");
    storage->save(real);
    storage->setMarksNewOfSandbox(true);
    storage->save(real);
    storage->save(sandboxed);
    storage->setMarksNewOfSandbox(false);
    storage->save(sandboxed);
    EXPECT_FALSE(storage->tryMarks(real).value().isOfSandbox);
    EXPECT_TRUE(storage->tryMarks(sandboxed).value().isOfSandbox);
}

TEST(AccountMarks, AreNoPartOfTheRecord) {
    const TemporaryFolder folder;
    const auto asana = account(ServiceType::Asana, "me");
    {
        const auto storage = opened(folder);
        storage->setMarksNewOfSandbox(true);
        storage->save(asana);
        EXPECT_EQ(storage->load("Asana+me"), asana);
    }
    const auto record = textOf(folder / "accounts.sqlite", "SELECT record FROM accounts");
    EXPECT_EQ(record.find("andbox"), std::string::npos) << record;
}

} // namespace zelto
