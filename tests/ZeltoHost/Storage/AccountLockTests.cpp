#include <ZeltoHost/Storage/AccountLock.h>

#include <Support/Event.h>
#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <future>

#include <sys/stat.h>

namespace zelto {

namespace {

constexpr auto identifier = "Zoom+work";
constexpr auto mustNotWait = [] { ADD_FAILURE() << "nobody has the lock"; };

} // namespace

TEST(AccountLock, IsFreeAgainOnceItsHolderHasEnded) {
    const TemporaryFolder folder;
    const auto directory = std::filesystem::path(folder / "data");
    ASSERT_TRUE(AccountLock::take(directory, identifier, mustNotWait));
    ASSERT_TRUE(AccountLock::take(directory, identifier, mustNotWait));
}

TEST(AccountLock, OfOneAccountHoldsUpNoOther) {
    const TemporaryFolder folder;
    const auto directory = std::filesystem::path(folder / "data");
    const auto first = AccountLock::take(directory, "Zoom+work", mustNotWait);
    const auto second = AccountLock::take(directory, "Zoom+home", mustNotWait);
    const auto third = AccountLock::take(directory, "Zoom/../+work", mustNotWait);
    EXPECT_TRUE(first && second && third);
}

TEST(AccountLock, IsWaitedForAndThatIsTold) {
    const TemporaryFolder folder;
    const auto directory = std::filesystem::path(folder / "data");
    auto first = std::make_optional(AccountLock::take(directory, identifier, mustNotWait));
    Event waits;
    auto second = std::async(std::launch::async, [&] {
        return AccountLock::take(directory, identifier, [&] { waits.set(); }).has_value();
    });
    waits.wait();
    EXPECT_EQ(second.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    first.reset();
    EXPECT_TRUE(second.get());
}

TEST(AccountLock, LiesInAFileForTheUserAloneThatNamesNobody) {
    const TemporaryFolder folder;
    const auto directory = std::filesystem::path(folder / "data");
    const auto lock = AccountLock::take(directory, "Zoom+someone@example.org", mustNotWait);
    ASSERT_TRUE(lock);
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(directory / "locks")) {
        struct stat status {};

        ASSERT_EQ(::stat(entry.path().c_str(), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, 0600U);
        EXPECT_EQ(entry.path().string().find("someone"), std::string::npos);
        EXPECT_EQ(status.st_size, 0);
        ++count;
    }
    EXPECT_EQ(count, 1U);
}

TEST(AccountLock, TellsOfADirectoryThatIsNone) {
    const auto lock = AccountLock::take("/proc/none", identifier, mustNotWait);
    ASSERT_FALSE(lock);
    EXPECT_EQ(lock.error().code, StorageErrorCode::cannotAccess);
}

} // namespace zelto
