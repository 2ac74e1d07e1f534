#include <TrovenhalCommon/KeyChain/FileKeyChainStore.h>

#include <Platform/FileManager.h>

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace zelto {
namespace {

namespace fs = std::filesystem;

constexpr auto cheap = PassphraseCost::interactive;

Data fileBytes(const fs::path& path) {
    return FileManager::readFile(path).value();
}

void setBytes(const fs::path& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

unsigned modeOf(const fs::path& path) {
    struct stat status {};

    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

class FileKeyChain : public testing::Test {
  protected:
    void SetUp() override { path_ = FileManager::temporaryPath("keychain").value(); }

    FileKeyChainStore store() const { return FileKeyChainStore(path_); }

    static std::optional<KeyChainErrorKind> kindOf(const Result<std::optional<Data>, KeyChainError>& result) {
        return result ? std::nullopt : std::optional(result.error().kind);
    }

    fs::path path_;
};

TEST_F(FileKeyChain, WhatWasWrittenIsReadByAnotherStore) {
    ASSERT_TRUE(store().write("a", dataOf("one")));
    ASSERT_TRUE(store().write("b", dataOf("two")));
    EXPECT_EQ(store().read("a").value(), dataOf("one"));
    EXPECT_EQ(store().read("b").value(), dataOf("two"));
}

TEST_F(FileKeyChain, AnUnknownKeyIsNulloptAndNoError) {
    EXPECT_EQ(store().read("a").value(), std::nullopt);
    EXPECT_FALSE(store().erase("a").value());
    ASSERT_TRUE(store().write("a", dataOf("one")));
    EXPECT_EQ(store().read("b").value(), std::nullopt);
    EXPECT_FALSE(store().erase("b").value());
}

TEST_F(FileKeyChain, ReadingMakesNoFile) {
    EXPECT_EQ(store().read("a").value(), std::nullopt);
    EXPECT_TRUE(fs::is_empty(path_.parent_path()));
    EXPECT_EQ(FileKeyChainStore(path_ / "no" / "such").read("a").value(), std::nullopt);
}

TEST_F(FileKeyChain, AValueIsReplaced) {
    ASSERT_TRUE(store().write("a", dataOf("one")));
    ASSERT_TRUE(store().write("a", dataOf("")));
    EXPECT_EQ(store().read("a").value(), Data());
}

TEST_F(FileKeyChain, AnErasedKeyIsGone) {
    ASSERT_TRUE(store().write("a", dataOf("one")));
    ASSERT_TRUE(store().write("b", dataOf("two")));
    EXPECT_TRUE(store().erase("a").value());
    EXPECT_EQ(store().read("a").value(), std::nullopt);
    EXPECT_EQ(store().read("b").value(), dataOf("two"));
}

TEST_F(FileKeyChain, TakesAnyKeyAndAnyBytes) {
    Data large(1 << 20);
    for (std::size_t index = 0; index < large.size(); ++index) {
        large[index] = static_cast<std::uint8_t>(index * 7919 >> 3);
    }
    for (const std::string& key : {std::string("ключ 🔑"), std::string(), std::string(5000, 'k')}) {
        ASSERT_TRUE(store().write(key, large));
        EXPECT_EQ(store().read(key).value(), large);
    }
}

TEST_F(FileKeyChain, TheThreeSimpleOperationsGiveNoReasons) {
    auto chain = store();
    EXPECT_EQ(chain.data("a"), std::nullopt);
    EXPECT_TRUE(chain.set(dataOf("x"), "a"));
    EXPECT_EQ(chain.data("a"), dataOf("x"));
    EXPECT_TRUE(chain.remove("a"));
    EXPECT_FALSE(chain.remove("a"));
}

TEST_F(FileKeyChain, NeitherKeysNorValuesCanBeReadInTheFile) {
    ASSERT_TRUE(store().write("canary-key", dataOf("canary-value")));
    for (const auto& entry : fs::directory_iterator(path_.parent_path())) {
        const auto bytes = fileBytes(entry.path());
        EXPECT_EQ(viewOf(bytes).find("canary"), std::string_view::npos) << entry.path();
    }
}

TEST_F(FileKeyChain, FilesAndDirectoryAreTheUsersAloneWhateverTheUmask) {
    const auto nested = path_ / "deeper" / "keychain";
    for (const mode_t mask : {mode_t{0}, mode_t{0277}}) {
        fs::remove_all(path_);
        const auto before = umask(0);
        fs::create_directories(path_.parent_path());
        umask(mask & 0077);
        ASSERT_TRUE(FileKeyChainStore(nested).write("a", dataOf("one")));
        umask(before);
        EXPECT_EQ(modeOf(path_ / "deeper"), 0700u);
        for (const auto& entry : fs::directory_iterator(path_ / "deeper")) {
            EXPECT_EQ(modeOf(entry.path()), 0600u) << entry.path();
        }
    }
}

TEST_F(FileKeyChain, AFileThatOthersMayReadIsRefused) {
    ASSERT_TRUE(store().write("a", dataOf("one")));
    for (const auto& file : {path_, fs::path(path_.native() + ".key")}) {
        chmod(file.c_str(), 0640);
        const auto result = store().read("a");
        EXPECT_EQ(kindOf(result), KeyChainErrorKind::denied);
        EXPECT_NE(result.error().message.find(file.native()), std::string::npos) << result.error().message;
        EXPECT_FALSE(store().write("b", dataOf("two")));
        chmod(file.c_str(), 0600);
    }
    EXPECT_TRUE(store().read("a"));
}

TEST_F(FileKeyChain, AFileOfAnotherUserIsRefused) {
    // Only root can give a file to another user; others use a file of the system, which belongs to root.
    fs::path foreign = "/etc/passwd";
    if (geteuid() == 0) {
        foreign = path_;
        ASSERT_TRUE(store().write("a", dataOf("one")));
        ASSERT_EQ(chown(foreign.c_str(), 12345, 12345), 0);
    }
    FileKeyChainStore keyChain(foreign);
    EXPECT_EQ(kindOf(keyChain.read("a")), KeyChainErrorKind::denied);
    if (geteuid() == 0) {
        ASSERT_EQ(chown(foreign.c_str(), 0, 0), 0);
        ASSERT_EQ(chown(foreign.parent_path().c_str(), 12345, 12345), 0);
    }
    const auto written = keyChain.write("a", dataOf("two"));
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().kind, KeyChainErrorKind::denied);
}

TEST_F(FileKeyChain, ADirectoryInWhichOthersMayWriteIsRefused) {
    chmod(path_.parent_path().c_str(), 0770);
    const auto written = store().write("a", dataOf("one"));
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().kind, KeyChainErrorKind::denied);
}

TEST_F(FileKeyChain, ASymbolicLinkIsNotFollowed) {
    const auto other = FileManager::temporaryPath("other").value();
    ASSERT_TRUE(FileKeyChainStore(other).write("a", dataOf("one")));
    fs::create_symlink(other, path_);
    EXPECT_EQ(kindOf(store().read("a")), KeyChainErrorKind::denied);
}

TEST_F(FileKeyChain, APipeInItsPlaceHoldsNobody) {
    ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
    EXPECT_EQ(kindOf(store().read("a")), KeyChainErrorKind::denied);
}

TEST_F(FileKeyChain, AChangedBitAnywhereIsDamageThatNamesTheFile) {
    ASSERT_TRUE(store().write("a", dataOf("one")));
    for (const auto& file : {path_, fs::path(path_.native() + ".key")}) {
        const auto good = std::string(viewOf(fileBytes(file)));
        for (std::size_t index = 0; index < good.size(); ++index) {
            for (const int bit : {0, 3, 7}) {
                auto bad = good;
                bad[index] = static_cast<char>(bad[index] ^ 1 << bit);
                setBytes(file, bad);
                const auto result = store().read("a");
                ASSERT_EQ(kindOf(result), KeyChainErrorKind::damaged) << file << " byte " << index;
                ASSERT_NE(result.error().message.find(file.native()), std::string::npos);
            }
        }
        setBytes(file, good);
    }
    EXPECT_EQ(store().read("a").value(), dataOf("one"));
}

TEST_F(FileKeyChain, AFileCutAtAnyLengthIsDamageThatNamesTheFile) {
    ASSERT_TRUE(store().write("a", dataOf("one")));
    for (const auto& file : {path_, fs::path(path_.native() + ".key")}) {
        const auto good = std::string(viewOf(fileBytes(file)));
        for (std::size_t length = 0; length < good.size(); ++length) {
            setBytes(file, std::string_view(good).substr(0, length));
            const auto result = store().read("a");
            ASSERT_EQ(kindOf(result), KeyChainErrorKind::damaged) << file << " length " << length;
            ASSERT_NE(result.error().message.find(file.native()), std::string::npos);
        }
        setBytes(file, good + "x");
        EXPECT_EQ(kindOf(store().read("a")), KeyChainErrorKind::damaged);
        setBytes(file, good);
    }
}

TEST_F(FileKeyChain, ADamagedFileIsNeitherOverwrittenNorErased) {
    ASSERT_TRUE(store().write("a", dataOf("one")));
    auto bytes = std::string(viewOf(fileBytes(path_)));
    bytes.back() = static_cast<char>(bytes.back() ^ 1);
    setBytes(path_, bytes);
    const auto written = store().write("b", dataOf("two"));
    ASSERT_FALSE(written);
    EXPECT_EQ(written.error().kind, KeyChainErrorKind::damaged);
    EXPECT_EQ(store().erase("a").error().kind, KeyChainErrorKind::damaged);
    EXPECT_EQ(viewOf(fileBytes(path_)), bytes);
}

TEST_F(FileKeyChain, AMissingKeyFileIsDamageAndNoNewOneIsMade) {
    ASSERT_TRUE(store().write("a", dataOf("one")));
    const fs::path keyFile(path_.native() + ".key");
    fs::remove(keyFile);
    const auto result = store().read("a");
    EXPECT_EQ(kindOf(result), KeyChainErrorKind::damaged);
    EXPECT_NE(result.error().message.find(keyFile.native()), std::string::npos);
    EXPECT_FALSE(store().write("a", dataOf("two")));
    EXPECT_FALSE(fs::exists(keyFile));
}

TEST_F(FileKeyChain, TheKeyFileOfAnotherKeyChainIsDistinguished) {
    ASSERT_TRUE(store().write("a", dataOf("one")));
    const auto other = FileManager::temporaryPath("keychain").value();
    ASSERT_TRUE(FileKeyChainStore(other).write("a", dataOf("two")));
    fs::copy_file(other.native() + ".key", path_.native() + ".key", fs::copy_options::overwrite_existing);
    const auto result = store().read("a");
    EXPECT_EQ(kindOf(result), KeyChainErrorKind::damaged);
    EXPECT_NE(result.error().message.find("do not belong together"), std::string::npos);
}

TEST_F(FileKeyChain, AKeyFileAloneIsUsedForANewKeyChain) {
    ASSERT_TRUE(store().write("a", dataOf("one")));
    const auto key = fileBytes(path_.native() + ".key");
    fs::remove(path_);
    ASSERT_TRUE(store().write("b", dataOf("two")));
    EXPECT_EQ(fileBytes(path_.native() + ".key"), key);
    EXPECT_EQ(store().read("b").value(), dataOf("two"));
}

TEST_F(FileKeyChain, APassphraseOpensWhatItWasMadeWith) {
    ASSERT_TRUE(FileKeyChainStore(path_, "correct horse", cheap).write("a", dataOf("one")));
    EXPECT_EQ(FileKeyChainStore(path_, "correct horse").read("a").value(), dataOf("one"));
    EXPECT_FALSE(fs::exists(path_.native() + ".key"));
    ASSERT_TRUE(FileKeyChainStore(path_, "correct horse").write("b", dataOf("two")));
    EXPECT_EQ(FileKeyChainStore(path_, "correct horse").read("a").value(), dataOf("one"));
}

TEST_F(FileKeyChain, AWrongMissingOrEmptyPassphraseIsReportedAsSuch) {
    ASSERT_TRUE(FileKeyChainStore(path_, "correct horse", cheap).write("a", dataOf("one")));
    const auto before = fileBytes(path_);
    for (const std::optional<std::string>& passphrase :
         {std::optional<std::string>("Correct horse"), std::optional<std::string>(),
          std::optional<std::string>("")}) {
        FileKeyChainStore wrong(path_, passphrase, cheap);
        const auto result = wrong.read("a");
        EXPECT_EQ(kindOf(result), KeyChainErrorKind::wrongPassphrase);
        EXPECT_NE(result.error().message.find(path_.native()), std::string::npos);
        EXPECT_EQ(wrong.write("a", dataOf("x")).error().kind, KeyChainErrorKind::wrongPassphrase);
        EXPECT_EQ(wrong.erase("a").error().kind, KeyChainErrorKind::wrongPassphrase);
    }
    EXPECT_EQ(fileBytes(path_), before);
}

TEST_F(FileKeyChain, APassphraseForAFileWithoutOneIsReportedAsSuch) {
    ASSERT_TRUE(store().write("a", dataOf("one")));
    EXPECT_EQ(kindOf(FileKeyChainStore(path_, "superfluous", cheap).read("a")),
              KeyChainErrorKind::wrongPassphrase);
}

TEST_F(FileKeyChain, AChangedBitUnderAPassphraseIsDamageAndNoWrongPassphrase) {
    ASSERT_TRUE(FileKeyChainStore(path_, "correct horse", cheap).write("a", dataOf("one")));
    const auto good = std::string(viewOf(fileBytes(path_)));
    FileKeyChainStore chain(path_, "correct horse", cheap);
    for (std::size_t index = 0; index < good.size(); ++index) {
        auto bad = good;
        bad[index] = static_cast<char>(bad[index] ^ 1);
        setBytes(path_, bad);
        ASSERT_EQ(kindOf(chain.read("a")), KeyChainErrorKind::damaged) << index;
    }
    for (std::size_t length = 0; length < good.size(); ++length) {
        setBytes(path_, std::string_view(good).substr(0, length));
        ASSERT_EQ(kindOf(chain.read("a")), KeyChainErrorKind::damaged) << length;
    }
}

TEST_F(FileKeyChain, AStoreSeesThatTheFileWasMadeAnew) {
    FileKeyChainStore chain(path_, "correct horse", cheap);
    ASSERT_TRUE(chain.write("a", dataOf("one")));
    fs::remove(path_);
    EXPECT_EQ(chain.read("a").value(), std::nullopt);
    ASSERT_TRUE(FileKeyChainStore(path_, "correct horse", cheap).write("a", dataOf("two")));
    EXPECT_EQ(chain.read("a").value(), dataOf("two"));
}

TEST_F(FileKeyChain, ThreadsOfOneStoreLoseNothing) {
    auto chain = store();
    {
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&, thread] {
                for (int round = 0; round < 20; ++round) {
                    const auto key = std::to_string(thread) + "/" + std::to_string(round);
                    EXPECT_TRUE(chain.write(key, dataOf(key)));
                    EXPECT_EQ(chain.read(key).value(), dataOf(key));
                }
            });
        }
    }
    for (int thread = 0; thread < 4; ++thread) {
        for (int round = 0; round < 20; ++round) {
            const auto key = std::to_string(thread) + "/" + std::to_string(round);
            EXPECT_EQ(chain.read(key).value(), dataOf(key));
        }
    }
}

// Runs `work` in a process of its own; its result is the exit status.
template <class F> pid_t inChild(F work) {
    const pid_t child = fork();
    if (child == 0) {
        _exit(work());
    }
    return child;
}

int statusOf(pid_t child) {
    int status = -1;
    waitpid(child, &status, 0);
    return status;
}

TEST_F(FileKeyChain, EightProcessesThatWriteAtOnceLoseNothing) {
    constexpr int processes = 8;
    constexpr int rounds = 25;
    std::vector<pid_t> children;
    for (int process = 0; process < processes; ++process) {
        children.push_back(inChild([&] {
            for (int round = 0; round < rounds; ++round) {
                const auto key = std::to_string(process) + "/" + std::to_string(round);
                if (!store().write(key, dataOf("value " + key))) {
                    return 1;
                }
            }
            return 0;
        }));
    }
    for (const auto child : children) {
        EXPECT_EQ(statusOf(child), 0);
    }
    auto chain = store();
    for (int process = 0; process < processes; ++process) {
        for (int round = 0; round < rounds; ++round) {
            const auto key = std::to_string(process) + "/" + std::to_string(round);
            ASSERT_EQ(chain.read(key).value(), dataOf("value " + key)) << key;
        }
    }
}

TEST_F(FileKeyChain, AKillAtAnyMomentLeavesTheStateBeforeOrAfter) {
    ASSERT_TRUE(store().write("constant", dataOf("stays")));
    ASSERT_TRUE(store().write("counter", dataOf("0")));
    int last = 0;
    for (int round = 0; round < 100; ++round) {
        const pid_t child = inChild([&]() -> int {
            auto chain = store();
            for (int next = last + 1;; ++next) {
                if (!chain.write("counter", dataOf(std::to_string(next)))) {
                    return 1;
                }
            }
        });
        // At a different moment of its work in each round.
        std::this_thread::sleep_for(std::chrono::microseconds(200 + 137 * round));
        kill(child, SIGKILL);
        const auto status = statusOf(child);
        ASSERT_TRUE(WIFSIGNALED(status)) << "a write failed";
        ASSERT_EQ(store().read("constant").value(), dataOf("stays"));
        const auto counter = store().read("counter").value();
        ASSERT_TRUE(counter);
        const int now = std::stoi(std::string(viewOf(*counter)));
        ASSERT_GE(now, last);
        last = now;
    }
    ASSERT_TRUE(store().write("counter", dataOf("end")));
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(path_.parent_path())) {
        names.insert(entry.path().filename());
    }
    EXPECT_EQ(names, (std::set<std::string>{"keychain", "keychain.key", "keychain.lock"}));
}

TEST_F(FileKeyChain, AKillAtTheVeryFirstWriteLeavesAUsableKeyChain) {
    for (int round = 0; round < 60; ++round) {
        const auto fresh = FileManager::temporaryPath("keychain").value();
        const pid_t child =
            inChild([&] { return FileKeyChainStore(fresh).write("a", dataOf("one")) ? 0 : 1; });
        std::this_thread::sleep_for(std::chrono::microseconds(31 * round));
        kill(child, SIGKILL);
        statusOf(child);
        FileKeyChainStore chain(fresh);
        const auto read = chain.read("a");
        ASSERT_TRUE(read) << read.error().message;
        ASSERT_TRUE(chain.write("a", dataOf("two")));
        ASSERT_EQ(chain.read("a").value(), dataOf("two"));
    }
}

TEST_F(FileKeyChain, AWriteThatFailsLeavesTheOldState) {
    ASSERT_TRUE(store().write("a", dataOf("one")));
    const auto child = inChild([&] {
        signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{4096, 4096};
        setrlimit(RLIMIT_FSIZE, &limit);
        const auto written = store().write("b", Data(100'000));
        return !written && written.error().kind == KeyChainErrorKind::ioError ? 0 : 1;
    });
    EXPECT_EQ(statusOf(child), 0);
    EXPECT_EQ(store().read("a").value(), dataOf("one"));
    EXPECT_EQ(store().read("b").value(), std::nullopt);
    EXPECT_FALSE(fs::exists(path_.native() + ".new"));
}

TEST_F(FileKeyChain, MessagesHoldNoSecret) {
    ASSERT_TRUE(FileKeyChainStore(path_, "canary-passphrase", cheap).write("a", dataOf("canary-value")));
    const auto wrong = FileKeyChainStore(path_, "canary-other", cheap).read("a");
    ASSERT_FALSE(wrong);
    EXPECT_EQ(wrong.error().message.find("canary"), std::string::npos);
}

} // namespace
} // namespace zelto
