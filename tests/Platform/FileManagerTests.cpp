#include <Platform/FileManager.h>

#include "Support/FreshProcess.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <fcntl.h>
#include <fstream>
#include <set>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace zelto;
namespace fs = std::filesystem;

namespace {

fs::path freshPath(const std::string& name = "file.txt") {
    const auto path = FileManager::temporaryPath(name);
    EXPECT_TRUE(path) << path.error().message();
    return path.value_or(fs::path());
}

unsigned modeOf(const fs::path& path) {
    struct stat status {};

    EXPECT_EQ(lstat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

std::string contentOf(const fs::path& path) {
    const auto bytes = FileManager::readFile(path);
    EXPECT_TRUE(bytes) << bytes.error().message();
    return bytes ? std::string(viewOf(*bytes)) : std::string();
}

void makeFile(const fs::path& path, std::string_view content) {
    std::ofstream(path, std::ios::binary) << content;
}

std::ptrdiff_t entriesOf(const fs::path& directory) {
    return std::distance(fs::directory_iterator(directory), fs::directory_iterator());
}

} // namespace

TEST(TemporaryDirectory, BelongsToTheProcessAlone) {
    const auto directory = FileManager::temporaryDirectory();
    ASSERT_TRUE(directory);
    EXPECT_TRUE(directory->is_absolute());
    EXPECT_EQ(modeOf(*directory), 0700u);
    EXPECT_EQ(FileManager::temporaryDirectory(), directory);
}

TEST(TemporaryDirectory, IsMadeAnewIfSomeoneRemovesIt) {
    const auto before = FileManager::temporaryDirectory();
    fs::remove_all(*before);
    const auto path = freshPath();
    EXPECT_TRUE(fs::is_directory(path.parent_path()));
    EXPECT_NE(FileManager::temporaryDirectory(), before);
}

TEST(TemporaryDirectory, LiesInTMPDIRAndGoesWhenTheProcessEnds) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto parent = fs::temp_directory_path() / "zelto-file-manager-tests";
    fs::remove_all(parent);
    fs::create_directories(parent);
    EXPECT_EXIT(
        {
            setenv("TMPDIR", parent.c_str(), 1);
            const auto path = FileManager::temporaryPath("a");
            makeFile(*path, "content");
            const bool right = path->native().starts_with(parent.native() + "/") && fs::exists(*path);
            std::exit(right ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    EXPECT_TRUE(fs::is_empty(parent));
    fs::remove_all(parent);
}

TEST(TemporaryDirectory, GoesTooIfItIsMadeWhileTheProcessEnds) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto parent = fs::temp_directory_path() / "zelto-file-manager-exit-tests";
    fs::remove_all(parent);
    fs::create_directories(parent);
    EXPECT_EXIT(
        {
            setenv("TMPDIR", parent.c_str(), 1);
            std::atexit([] { makeFile(freshPath(), "made after the removal"); });
            makeFile(freshPath(), "made before");
            std::exit(0);
        },
        testing::ExitedWithCode(0), "");
    EXPECT_TRUE(fs::is_empty(parent));
    fs::remove_all(parent);
}

// The temporary directory that a child process reports, and leaves when it ends; empty if the child fails.
std::string directoryOfChild() {
    std::array<int, 2> pipeEnds{};
    if (pipe(pipeEnds.data()) != 0) {
        return {};
    }
    const auto child = fork();
    if (child == 0) {
        const auto theirs = FileManager::temporaryDirectory();
        const auto text = theirs ? theirs->native() : std::string();
        std::exit(write(pipeEnds[1], text.data(), text.size()) > 0 ? 0 : 1);
    }
    close(pipeEnds[1]);
    std::string theirs(4096, '\0');
    theirs.resize(
        static_cast<std::size_t>(std::max<ssize_t>(read(pipeEnds[0], theirs.data(), theirs.size()), 0)));
    close(pipeEnds[0]);
    int status = 0;
    return waitpid(child, &status, 0) == child && status == 0 ? theirs : std::string();
}

TEST(TemporaryDirectory, OfAKilledProcessIsRemovedByTheNextOneAndThatOfALivingOneIsNot) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto parent = fs::temp_directory_path() / "zelto-file-manager-leftover-tests";
    EXPECT_EXIT(
        {
            // Not earlier, since a later process would remove it too.
            fs::remove_all(parent);
            fs::create_directories(parent / "zelto-temporary");
            makeFile(parent / "zelto-temporary-file", "content");
            setenv("TMPDIR", parent.c_str(), 1);
            makeFile(freshPath(), "left");
            std::raise(SIGKILL);
        },
        testing::KilledBySignal(SIGKILL), "");
    EXPECT_EQ(entriesOf(parent), 3);
    EXPECT_EXIT(
        {
            setenv("TMPDIR", parent.c_str(), 1);
            const auto path = freshPath();
            makeFile(path, "content");
            const bool removesLeftover = entriesOf(parent) == 3;
            const auto child = directoryOfChild();
            const bool keepsOwn = child.starts_with(parent.native()) && contentOf(path) == "content";
            std::exit(removesLeftover && keepsOwn ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
    EXPECT_EQ(entriesOf(parent), 2);
    fs::remove_all(parent);
}

TEST(TemporaryDirectory, FallsBackToTmpIfTMPDIRIsOfNoUse) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (const auto* useless : {"/nonexistent/directory", "relative", "", "/dev/null"}) {
        EXPECT_EXIT(
            {
                setenv("TMPDIR", useless, 1);
                const auto directory = FileManager::temporaryDirectory();
                std::exit(directory && directory->native().starts_with("/tmp/zelto-") ? 0 : 1);
            },
            testing::ExitedWithCode(0), "");
    }
}

// In a process of its own, since a child that leaves by exit() looks for leaks although it lacks the other
// threads.
TEST(TemporaryDirectory, IsNotRemovedByAForkedChildWhichGetsItsOwn) {
    expectInFreshProcess([] {
        const auto path = freshPath();
        makeFile(path, "content");
        const auto ours = *FileManager::temporaryDirectory();
        const auto theirs = directoryOfChild();
        return !theirs.empty() && theirs != ours && !fs::exists(theirs) && contentOf(path) == "content" &&
               FileManager::temporaryDirectory() == ours;
    });
}

TEST(TemporaryPath, EndsWithTheGivenName) {
    for (const std::string name : {"a.pdf", "\u0436 \U0001F600.txt", "..a", "-rf", "a\nb", ".hidden", " ",
                                   "a\\b", "\xff\xfe", "CON"}) {
        const auto path = freshPath(name);
        EXPECT_EQ(path.filename(), name);
        makeFile(path, name);
        EXPECT_EQ(contentOf(path), name);
    }
}

TEST(TemporaryPath, IsInAFreshFolderEachTime) {
    std::set<fs::path> folders;
    for (int count = 0; count < 100; ++count) {
        const auto path = freshPath("same name");
        EXPECT_EQ(modeOf(path.parent_path()), 0700u);
        EXPECT_TRUE(fs::is_empty(path.parent_path()));
        EXPECT_EQ(path.parent_path().parent_path(), *FileManager::temporaryDirectory());
        folders.insert(path.parent_path());
    }
    EXPECT_EQ(folders.size(), 100u);
}

TEST(TemporaryPath, CannotBeLedOutOfItsFolder) {
    const std::vector<std::pair<std::string, std::string>> names{
        {"", "_"},
        {".", "_"},
        {"..", "__"},
        {"/", "_"},
        {"//", "__"},
        {"../../etc/passwd", ".._.._etc_passwd"},
        {"/etc/passwd", "_etc_passwd"},
        {std::string("a\0b", 3), "a_b"},
        {std::string("\0", 1), "_"},
    };
    for (const auto& [name, expected] : names) {
        EXPECT_EQ(freshPath(name).filename(), expected) << testing::PrintToString(name);
    }
}

TEST(TemporaryPath, IsCutBeforeTheExtensionIfTheNameIsTooLong) {
    std::string accents;
    for (int count = 0; count < 5000; ++count) {
        accents += "e\u0301";
    }
    for (const auto& name :
         {std::string(10'000, 'a') + ".pdf", accents + ".pdf", std::string(10'000, '/') + ".pdf"}) {
        const auto path = freshPath(name);
        const auto shown = path.filename().native();
        EXPECT_LE(shown.size(), 255u);
        EXPECT_GE(shown.size(), 250u);
        EXPECT_TRUE(shown.ends_with(".pdf"));
        makeFile(path, "content");
        EXPECT_EQ(contentOf(path), "content");
    }
    EXPECT_EQ(freshPath(accents + ".pdf").filename(), accents.substr(0, 249) + ".pdf");
}

TEST(TemporaryPath, MayBeAskedForOnManyThreads) {
    std::vector<std::thread> threads;
    std::array<fs::path, 8> paths;
    for (auto& path : paths) {
        threads.emplace_back([&path] { path = FileManager::temporaryPath("x").value_or(fs::path()); });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ((std::set<fs::path>(paths.begin(), paths.end()).size()), paths.size());
    EXPECT_TRUE(
        std::ranges::all_of(paths, [](const auto& each) { return fs::is_directory(each.parent_path()); }));
}

TEST(ReadFile, GivesTheWholeFile) {
    const auto path = freshPath();
    for (const std::size_t size : {0u, 1u, 4096u, 1'000'000u, 3'000'001u}) {
        const std::string content(size, 'x');
        makeFile(path, content);
        EXPECT_EQ(contentOf(path), content);
        EXPECT_TRUE(FileManager::readFile(path, size));
    }
}

TEST(ReadFile, ReadsWhatHasNoSizeBeforehand) {
    EXPECT_FALSE(contentOf("/proc/self/status").empty());
    const auto path = freshPath();
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    std::thread writer([&] { makeFile(path, std::string(300'000, 'y')); });
    EXPECT_EQ(contentOf(path), std::string(300'000, 'y'));
    writer.join();
    EXPECT_EQ(FileManager::readFile("/dev/zero", 5'000'000).error().code, FileErrorCode::tooLarge);
}

TEST(ReadFile, RefusesMoreThanTheLimit) {
    const auto path = freshPath();
    makeFile(path, "12345");
    EXPECT_TRUE(FileManager::readFile(path, 5));
    const auto refused = FileManager::readFile(path, 4);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().code, FileErrorCode::tooLarge);
    EXPECT_EQ(refused.error().message(), "'" + path.native() + "' is too large");
}

TEST(ReadFile, ReportsWhatIsWrong) {
    const auto path = freshPath();
    EXPECT_EQ(FileManager::readFile(path).error().code, FileErrorCode::notFound);
    EXPECT_EQ(FileManager::readFile(path).error().message(), "'" + path.native() + "' does not exist");
    EXPECT_EQ(FileManager::readFile(path.parent_path()).error().code, FileErrorCode::isDirectory);
    makeFile(path, "x");
    EXPECT_EQ(FileManager::readFile(path / "y").error().code, FileErrorCode::notDirectory);
    EXPECT_EQ(FileManager::readFile(std::string(300, 'a')).error().code, FileErrorCode::nameTooLong);
    EXPECT_EQ(FileManager::readFile("").error().code, FileErrorCode::notFound);
}

TEST(WriteFileAtomically, WritesANewFileWithItsMode) {
    const auto path = freshPath();
    const auto before = umask(0);
    EXPECT_TRUE(FileManager::writeFileAtomically(path, "content"));
    EXPECT_EQ(modeOf(path), 0600u);
    umask(077);
    EXPECT_TRUE(FileManager::writeFileAtomically(path, "other", 0644));
    umask(before);
    EXPECT_EQ(modeOf(path), 0644u);
    EXPECT_EQ(contentOf(path), "other");
    EXPECT_TRUE(FileManager::writeFileAtomically(path, dataOf("bytes")));
    EXPECT_EQ(contentOf(path), "bytes");
    EXPECT_TRUE(FileManager::writeFileAtomically(path, ""));
    EXPECT_EQ(contentOf(path), "");
    EXPECT_EQ(entriesOf(path.parent_path()), 1);
}

TEST(ReadSome, GivesAFilePieceByPieceAndNothingAtItsEnd) {
    const auto path = freshPath();
    makeFile(path, "abcde");
    const auto file = FileManager::openFile(path, O_RDONLY);
    ASSERT_TRUE(file);
    std::array<char, 3> buffer{};
    EXPECT_EQ(FileManager::readSome(*file, buffer, path), 3U);
    EXPECT_EQ(std::string_view(buffer.data(), 3), "abc");
    EXPECT_EQ(FileManager::readSome(*file, buffer, path), 2U);
    EXPECT_EQ(std::string_view(buffer.data(), 2), "de");
    EXPECT_EQ(FileManager::readSome(*file, buffer, path), 0U);
    const auto folder = FileManager::openFile(path.parent_path(), O_RDONLY);
    ASSERT_TRUE(folder);
    EXPECT_EQ(FileManager::readSome(*folder, buffer, path), failure(FileError::fromSystem(EISDIR, path)));
}

TEST(WriteFileAtomically, ReplacesASymbolicLinkAndNotWhatItPointsTo) {
    const auto target = freshPath();
    makeFile(target, "precious");
    const auto path = freshPath();
    fs::create_symlink(target, path);
    EXPECT_TRUE(FileManager::writeFileAtomically(path, "new"));
    EXPECT_FALSE(fs::is_symlink(path));
    EXPECT_EQ(contentOf(path), "new");
    EXPECT_EQ(contentOf(target), "precious");
}

TEST(WriteFileAtomically, LeavesTheOldFileUntouchedWhenItFails) {
    const auto path = freshPath();
    makeFile(path, "old");

    struct rlimit before {};

    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);

    const struct rlimit small { 100'000, before.rlim_max };

    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    const auto failed = FileManager::writeFileAtomically(path, std::string(200'000, 'x'));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    ASSERT_FALSE(failed);
    EXPECT_EQ(failed.error().code, FileErrorCode::tooLarge);
    EXPECT_EQ(failed.error().path, path);
    EXPECT_EQ(contentOf(path), "old");
    EXPECT_EQ(entriesOf(path.parent_path()), 1);
}

TEST(WriteFileAtomically, ReportsWhatIsWrong) {
    const auto path = freshPath();
    const auto missing = FileManager::writeFileAtomically(path / "no" / "file", "x");
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().code, FileErrorCode::notFound);
    fs::create_directory(path);
    const auto directory = FileManager::writeFileAtomically(path, "x");
    ASSERT_FALSE(directory);
    EXPECT_EQ(directory.error().code, FileErrorCode::isDirectory);
    EXPECT_EQ(entriesOf(path.parent_path()), 1);
    EXPECT_FALSE(FileManager::writeFileAtomically("/dev/full/x", "x"));
}

TEST(WriteFileAtomically, ShowsReadersTheOldOrTheNewButNeverAPart) {
    const auto path = freshPath();
    const std::string a(300'000, 'a');
    const std::string b(200'000, 'b');
    ASSERT_TRUE(FileManager::writeFileAtomically(path, a));
    std::thread writer([&] {
        for (int round = 0; round < 20; ++round) {
            EXPECT_TRUE(FileManager::writeFileAtomically(path, round % 2 == 0 ? b : a));
        }
    });
    for (int round = 0; round < 100; ++round) {
        const auto seen = contentOf(path);
        ASSERT_TRUE(seen == a || seen == b);
    }
    writer.join();
}

TEST(FileManager, ReportsAFullDisk) {
    const auto full = FileManager::openFile("/dev/full", O_WRONLY);
    ASSERT_TRUE(full);
    const auto failed = FileManager::writeAll(*full, "x", "/dev/full");
    ASSERT_FALSE(failed);
    EXPECT_EQ(failed.error().code, FileErrorCode::noSpace);
    EXPECT_EQ(failed.error().message(), "'/dev/full' could not be written: no space left");
}

TEST(FileManager, MakesANewFileOnlyWhereNoneIs) {
    const auto path = freshPath();
    {
        const auto file = FileManager::createFile(path);
        ASSERT_TRUE(file);
        EXPECT_TRUE(FileManager::writeAll(*file, "content", path));
        EXPECT_NE(fcntl(file->number(), F_GETFD) & FD_CLOEXEC, 0);
    }
    EXPECT_EQ(contentOf(path), "content");
    EXPECT_EQ(modeOf(path), 0600u);
    EXPECT_EQ(FileManager::createFile(path).error().code, FileErrorCode::alreadyExists);
    const auto link = freshPath("link");
    const auto target = freshPath("target");
    fs::create_symlink(target, link);
    EXPECT_EQ(FileManager::createFile(link).error().code, FileErrorCode::alreadyExists);
    EXPECT_FALSE(fs::exists(target));
}

TEST(FileManager, ReadsAllOfAnOpenFile) {
    const auto path = freshPath();
    makeFile(path, "12345");
    const auto file = FileManager::openFile(path, O_RDONLY);
    ASSERT_TRUE(file);
    EXPECT_EQ(FileManager::readAll(*file, path, 4).error().code, FileErrorCode::tooLarge);
    const auto bytes = FileManager::readAll(*file, path, 5);
    ASSERT_TRUE(bytes) << bytes.error().message();
    EXPECT_EQ(viewOf(*bytes), "12345");
}

TEST(FileManager, BringsADirectoryToTheDisk) {
    const auto path = freshPath();
    EXPECT_TRUE(FileManager::syncDirectory(path.parent_path()));
    EXPECT_TRUE(FileManager::syncDirectory("/proc")); // of a file system that does not support it
    EXPECT_EQ(FileManager::syncDirectory(path).error().code, FileErrorCode::notFound);
    makeFile(path, "x");
    EXPECT_EQ(FileManager::syncDirectory(path).error().code, FileErrorCode::notDirectory);
}

TEST(FileManager, FollowsNoLinkOnRequest) {
    const auto link = freshPath("link");
    fs::create_symlink("/etc/passwd", link);
    EXPECT_EQ(FileManager::openFile(link, O_RDONLY | O_NOFOLLOW).error().code, FileErrorCode::symbolicLink);
}

TEST(FileError, ReportsEachCaseOfTheSystem) {
    const std::vector<std::pair<int, FileErrorCode>> cases{
        {ENOENT, FileErrorCode::notFound},
        {EACCES, FileErrorCode::noPermission},
        {EPERM, FileErrorCode::noPermission},
        {ENOSPC, FileErrorCode::noSpace},
        {EDQUOT, FileErrorCode::noSpace},
        {EEXIST, FileErrorCode::alreadyExists},
        {EISDIR, FileErrorCode::isDirectory},
        {ENOTDIR, FileErrorCode::notDirectory},
        {ELOOP, FileErrorCode::symbolicLink},
        {ENAMETOOLONG, FileErrorCode::nameTooLong},
        {EROFS, FileErrorCode::readOnly},
        {EFBIG, FileErrorCode::tooLarge},
        {EMFILE, FileErrorCode::tooManyOpenFiles},
        {ENFILE, FileErrorCode::tooManyOpenFiles},
        {EIO, FileErrorCode::other},
    };
    std::set<std::string> messages;
    for (const auto& [number, code] : cases) {
        const auto error = FileError::fromSystem(number, "/a b");
        EXPECT_EQ(error.code, code) << number;
        EXPECT_EQ(error.systemNumber, number);
        EXPECT_TRUE(error.message().starts_with("'/a b' ")) << error.message();
        messages.insert(error.message());
    }
    EXPECT_EQ(messages.size(), casesOf<FileErrorCode>().size());
    EXPECT_EQ(FileError::fromSystem(EIO, "/a").message(), "'/a' could not be used: Input/output error");
}

TEST(FileDescriptor, ClosesWhatItOwnsOnce) {
    const int number = open("/dev/null", O_RDONLY);
    {
        FileDescriptor first(number);
        FileDescriptor second(std::move(first));
        EXPECT_EQ(second.number(), number);
        FileDescriptor third;
        EXPECT_FALSE(third);
        third = std::move(second);
        EXPECT_TRUE(third);
        EXPECT_NE(fcntl(number, F_GETFD), -1);
    }
    EXPECT_EQ(fcntl(number, F_GETFD), -1);
}

TEST(MoveWithoutReplacing, MovesToAFreeNameAlone) {
    const auto from = freshPath();
    makeFile(from, "new");
    const auto to = from.parent_path() / "other.txt";
    EXPECT_TRUE(FileManager::moveWithoutReplacing(from, to));
    EXPECT_EQ(contentOf(to), "new");
    EXPECT_EQ(entriesOf(from.parent_path()), 1);
}

TEST(MoveWithoutReplacing, ReplacesNeitherAFileNorAFolderNorALink) {
    const auto from = freshPath();
    makeFile(from, "new");
    const auto folder = from.parent_path();
    makeFile(folder / "file", "old");
    fs::create_directory(folder / "folder");
    fs::create_symlink("nowhere", folder / "link");
    for (const auto* name : {"file", "folder", "link"}) {
        const auto moved = FileManager::moveWithoutReplacing(from, folder / name);
        ASSERT_FALSE(moved) << name;
        EXPECT_EQ(moved.error().code, FileErrorCode::alreadyExists) << name;
        EXPECT_EQ(moved.error().path, folder / name);
    }
    EXPECT_EQ(contentOf(from), "new");
    EXPECT_EQ(contentOf(folder / "file"), "old");
    EXPECT_EQ(entriesOf(folder), 4);
}

TEST(MoveWithoutReplacing, ReportsWhatIsWrong) {
    const auto from = freshPath();
    const auto missing = FileManager::moveWithoutReplacing(from, from.parent_path() / "other");
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().code, FileErrorCode::notFound);
    makeFile(from, "new");
    EXPECT_FALSE(FileManager::moveWithoutReplacing(from, from.parent_path() / std::string("a\0b", 3)));
    EXPECT_EQ(contentOf(from), "new");
}
