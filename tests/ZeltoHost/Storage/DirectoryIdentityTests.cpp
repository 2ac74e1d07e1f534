#include "StorageTestSupport.h"

#include <Support/Folders.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

namespace fs = std::filesystem;

DirectoryIdentity identityOf(const fs::path& directory) {
    return opened(directory)->tryDirectoryIdentity().value();
}

void copyDirectory(const fs::path& from, const fs::path& to) {
    fs::create_directory(to);
    fs::permissions(to, fs::perms::owner_all);
    fs::copy(from, to, fs::copy_options::recursive);
}

} // namespace

TEST(DirectoryIdentity, StaysTheSame) {
    const TemporaryFolder folder;
    const auto identity = identityOf(folder / "a");
    EXPECT_EQ(identity.text.size(), 32U);
    EXPECT_FALSE(identity.hadAccounts);
    EXPECT_EQ(identityOf(folder / "a"), identity);
    EXPECT_EQ(identityOf(folder / "a/"), identity);
}

TEST(DirectoryIdentity, IsAnotherInEachDirectory) {
    const TemporaryFolder folder;
    EXPECT_NE(identityOf(folder / "a").text, identityOf(folder / "b").text);
}

TEST(DirectoryIdentity, MovesWithItsDirectory) {
    const TemporaryFolder folder;
    const auto identity = identityOf(folder / "a");
    fs::rename(folder / "a", folder / "b");
    EXPECT_EQ(identityOf(folder / "b"), identity);
    // A new directory at the old place is another one.
    EXPECT_NE(identityOf(folder / "a").text, identity.text);
    EXPECT_EQ(identityOf(folder / "b"), identity);
}

TEST(DirectoryIdentity, OfACopyIsItsOwnWhileTheOriginalIsThere) {
    const TemporaryFolder folder;
    const auto identity = identityOf(folder / "a");
    copyDirectory(folder / "a", folder / "b");
    const auto ofCopy = identityOf(folder / "b");
    EXPECT_NE(ofCopy.text, identity.text);
    EXPECT_FALSE(ofCopy.hadAccounts);
    EXPECT_EQ(identityOf(folder / "b"), ofCopy);
    EXPECT_EQ(identityOf(folder / "a"), identity);
}

TEST(DirectoryIdentity, OfACopyIsTheOriginalsOnceThatIsGone) {
    const TemporaryFolder folder;
    const auto identity = identityOf(folder / "a");
    copyDirectory(folder / "a", folder / "b");
    fs::remove_all(folder / "a");
    EXPECT_EQ(identityOf(folder / "b"), identity);
}

TEST(DirectoryIdentity, IsTheSameByALinkToTheDirectory) {
    const TemporaryFolder folder;
    const auto identity = identityOf(folder / "a");
    fs::create_directory_symlink(folder / "a", folder / "link");
    EXPECT_EQ(identityOf(folder / "link"), identity);
    EXPECT_EQ(identityOf(folder / "a"), identity);
}

TEST(DirectoryIdentity, SaysWhetherAccountsWereThereBefore) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "old");
    fs::copy_file(sourceFolder() / "tests/ZeltoHost/Storage/fixtures/accounts-1.sqlite",
                  folder / "old/accounts.sqlite");
    EXPECT_TRUE(identityOf(folder / "old").hadAccounts);
    opened(folder / "new")->save(account(ServiceType::Bear, "a"));
    EXPECT_FALSE(identityOf(folder / "new").hadAccounts);
}

} // namespace zelto
