#include <ZeltoHost/Storage/DataDirectory.h>

#include "StorageTestSupport.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace zelto {

namespace {

class UmaskOverride {
  public:
    explicit UmaskOverride(mode_t mask) : before_(::umask(mask)) {}

    ~UmaskOverride() { ::umask(before_); }

  private:
    mode_t before_;
};

unsigned modeOf(const std::filesystem::path& path) {
    struct stat status {};

    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : ~0U;
}

std::filesystem::path folderWithMode(const TemporaryFolder& parent, const char* name, mode_t mode) {
    const auto folder = parent / name;
    std::filesystem::create_directory(folder);
    ::chmod(folder.c_str(), mode);
    return folder;
}

} // namespace

TEST(DataDirectory, ItAndItsMissingParentsAreMadeForTheUserAloneWhateverTheUmask) {
    for (const mode_t mask : {mode_t(0), mode_t(022), mode_t(0777)}) {
        const TemporaryFolder folder;
        const UmaskOverride override_(mask);
        ASSERT_EQ(refusal(folder / "a/b/c/"), std::nullopt);
        for (const auto* path : {"a", "a/b", "a/b/c"}) {
            EXPECT_EQ(modeOf(folder / path), 0700U) << path << " " << mask;
        }
    }
}

TEST(DataDirectory, FilesAreForTheUserAloneWhateverTheUmask) {
    for (const mode_t mask : {mode_t(0), mode_t(022), mode_t(0777)}) {
        const TemporaryFolder folder;
        const UmaskOverride override_(mask);
        const auto storage = opened(folder);
        storage->save(account(ServiceType::Bear, "a"));
        int files = 0;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
            EXPECT_EQ(modeOf(entry.path()), 0600U) << entry.path() << " " << mask;
            ++files;
        }
        EXPECT_EQ(files, 3); // the database, its log and its index
    }
}

TEST(DataDirectory, ARelativePathWorks) {
    const TemporaryFolder folder;
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    EXPECT_TRUE(prepareDataDirectory("data"));
    EXPECT_TRUE(prepareDataDirectory("./data/../other"));
    EXPECT_TRUE(prepareDataDirectory("."));
    std::filesystem::current_path(before);
    EXPECT_EQ(modeOf(folder / "data"), 0700U);
    EXPECT_EQ(modeOf(folder / "other"), 0700U);
}

TEST(DataDirectory, APathLeadsWhereTheSystemTakesIt) {
    const TemporaryFolder folder;
    std::filesystem::create_directories(folder / "far/away");
    std::filesystem::create_directory_symlink(folder / "far/away", folder / "link");
    opened(folder / "link/../data")->save(account(ServiceType::Bear, "a"));
    EXPECT_TRUE(std::filesystem::exists(folder / "far/data/accounts.sqlite"));
    EXPECT_EQ(modeOf(folder / "far/data"), 0700U);
    EXPECT_FALSE(std::filesystem::exists(folder / "data"));
}

TEST(DataDirectory, AnEmptyOneThatOthersMayEnterIsClosedToThem) {
    const TemporaryFolder folder;
    const auto data = folderWithMode(folder, "data", 0777);
    EXPECT_TRUE(prepareDataDirectory(data));
    EXPECT_EQ(modeOf(data), 0700U);
}

TEST(DataDirectory, OneWithAccountsThatOthersMayEnterIsClosedToThemWithItsFile) {
    const TemporaryFolder folder;
    const auto data = folderWithMode(folder, "data", 0700);
    opened(data)->save(account(ServiceType::Bear, "a"));
    ::chmod(data.c_str(), 0755);
    ::chmod((data / "accounts.sqlite").c_str(), 0644);
    EXPECT_EQ(identifiers(*opened(data)), std::vector<std::string>{"Bear+a"});
    EXPECT_EQ(modeOf(data), 0700U);
    EXPECT_EQ(modeOf(data / "accounts.sqlite"), 0600U);
}

TEST(DataDirectory, OneWithOtherFilesThatOthersMayEnterIsRefusedAndLeftAsItIs) {
    const TemporaryFolder folder;
    for (const mode_t mode : {mode_t(0755), mode_t(0710), mode_t(01777)}) {
        const auto data = folderWithMode(folder, "data", mode);
        folder.write("data/letter", "");
        const auto prepared = prepareDataDirectory(data);
        ASSERT_FALSE(prepared) << mode;
        EXPECT_EQ(prepared.error(), (StorageError{StorageErrorCode::openToOthers, data, {}}));
        EXPECT_EQ(modeOf(data), mode);
    }
    ::chmod((folder / "data").c_str(), 0700);
    EXPECT_TRUE(prepareDataDirectory(folder / "data"));
}

TEST(DataDirectory, OneOfAnotherUserIsRefused) {
    const TemporaryFolder folder;
    std::filesystem::path foreign = "/"; // owned by root
    if (::geteuid() == 0) {
        foreign = folderWithMode(folder, "data", 0777);
        ASSERT_EQ(::chown(foreign.c_str(), 65534, 65534), 0);
    }
    const auto storage = SQLiteAccountStorage::open(foreign);
    ASSERT_FALSE(storage);
    EXPECT_EQ(storage.error(), (StorageError{StorageErrorCode::foreignOwner, foreign, {}}));
    EXPECT_EQ(storage.error().message(),
              "'" + foreign.string() + "' belongs to another user; choose a directory of your own");
}

TEST(DataDirectory, AFileOfAnotherUserIsRefused) {
    const TemporaryFolder folder;
    if (::geteuid() == 0) {
        (void)opened(folder);
        ASSERT_EQ(::chown((folder / "accounts.sqlite").c_str(), 65534, 65534), 0);
    } else {
        std::filesystem::create_symlink("/etc/passwd", folder / "accounts.sqlite");
    }
    EXPECT_EQ(refusal(folder.path()), StorageErrorCode::foreignOwner);
}

TEST(DataDirectory, WhatIsNoDirectoryIsRefused) {
    const TemporaryFolder folder;
    const auto file = folder.write("file", "");
    for (const auto& path : {file, file / "data"}) {
        const auto prepared = prepareDataDirectory(path);
        ASSERT_FALSE(prepared) << path;
        EXPECT_EQ(prepared.error().code, StorageErrorCode::cannotAccess);
        EXPECT_NE(prepared.error().message().find("Not a directory"), std::string::npos)
            << prepared.error().message();
    }
    EXPECT_EQ(refusal("/proc/self/zelto"), StorageErrorCode::cannotAccess);
}

} // namespace zelto
