#include "StorageTestSupport.h"

#include <Support/TracedProcess.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cerrno>

#include <utime.h>

// No storage may be open when a process is forked: SQLite does not survive a fork.
namespace zelto {

namespace {

using State = std::vector<std::string>;
using Decide = std::function<TracedDecision(const TracedCall&)>;

// What is stored after so many steps.
const std::array<State, 4> states{
    State{},
    State{"Bear+a"},
    State{"Bear+a", "Bear+b"},
    State{"Bear+b"},
};

constexpr int failed = 100;

// Names no file that is made for a moment only.
bool isSaidOf(const StorageError& error, StorageErrorCode code) {
    return error.code == code && !error.message().contains("zelto-new");
}

// Takes the steps in a new folder or one that is there, until one fails; gives how many succeeded, or
// `failed` if the reason is not the expected one.
int takeSteps(const std::filesystem::path& folder, std::optional<StorageErrorCode> expected) {
    const auto opening = SQLiteAccountStorage::open(folder);
    if (!opening) {
        return expected && !isSaidOf(opening.error(), *expected) ? failed : 0;
    }
    auto& storage = **opening;
    int done = 0;
    const auto isDone = [&](const Result<void, StorageError>& result) {
        done += result ? 1 : 0;
        if (!result && expected && !isSaidOf(result.error(), *expected)) {
            done = failed;
        }
        return result.has_value();
    };
    const bool allDone = isDone(storage.trySave(account(ServiceType::Bear, "a"))) &&
                         isDone(storage.trySave(account(ServiceType::Bear, "b"))) &&
                         isDone(storage.tryRemove(account(ServiceType::Bear, "a")));
    (void)allDone;
    return done;
}

void age(const std::filesystem::path& folder) {
    const utimbuf longAgo{0, 0};
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.is_directory()) {
            ::utime(entry.path().c_str(), &longAgo);
        }
    }
}

// Once the disk works again, the storage has what it had before or behind the step that failed, and goes on.
void expectRecovered(const std::filesystem::path& folder, std::size_t done) {
    age(folder);
    const auto found = identifiers(*opened(folder));
    EXPECT_TRUE(found == states[done] || found == states[std::min(done + 1, states.size() - 1)])
        << done << " steps done, " << found.size() << " accounts found";
    EXPECT_EQ(textOf(folder / "accounts.sqlite", "PRAGMA integrity_check"), "ok");
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        EXPECT_TRUE(entry.path().filename().string().starts_with("accounts.sqlite")) << entry.path();
    }
    EXPECT_TRUE(opened(folder)->trySave(account(ServiceType::Bear, "c")));
}

// Takes the steps once for each call that `fails` tells of, which gets the number of that round.
void expectRecoveryFromEach(
    const std::function<TracedDecision(const TracedCall&, int& seen, int round)>& fails, int minimumRounds,
    std::optional<StorageErrorCode> expected = {}) {
    int round = 1;
    for (bool isReached = true; isReached && !testing::Test::HasFailure(); ++round) {
        SCOPED_TRACE("call " + std::to_string(round));
        const TemporaryFolder outside;
        const auto folder = outside / "data";
        int seen = 0;
        const auto done = runTraced([&] { return takeSteps(folder, expected); },
                                    [&](const TracedCall& call) { return fails(call, seen, round); });
        isReached = seen >= round;
        ASSERT_TRUE(done);
        ASSERT_NE(*done, failed) << "another reason";
        expectRecovered(*done == 0 ? (std::filesystem::create_directories(folder), folder) : folder,
                        static_cast<std::size_t>(*done));
    }
    EXPECT_GT(round, minimumRounds) << "fewer calls than a storage can do with: was it traced?";
}

// A folder in which a closed storage holds two accounts.
struct ClosedStorage {
    ClosedStorage() {
        opened(folder)->save(account(ServiceType::Bear, "a"));
        opened(folder)->save(account(ServiceType::Bear, "b"));
    }

    TemporaryFolder folder;
};

// How many accounts a process lists.
int listed(const std::filesystem::path& folder, const Decide& decide) {
    const auto list = [&] {
        const auto storage = SQLiteAccountStorage::openForReading(folder);
        const auto accounts = storage ? (*storage)->tryLoadConfigurations() : failure(storage.error());
        return accounts ? static_cast<int>(accounts->size()) : failed;
    };
    return runTraced(list, decide).value_or(-1);
}

TracedDecision onFullDisk(const TracedCall& call) {
    return call.needsSpace() ? TracedDecision::fail(ENOSPC) : TracedDecision::goOn();
}

TracedDecision onReadOnlyDisk(const TracedCall& call) {
    return call.changesFiles() || call.opensForWriting() ? TracedDecision::fail(EROFS)
                                                         : TracedDecision::goOn();
}

class FailingDisk : public testing::Test {
  protected:
    void SetUp() override {
        if (!canFailCalls) {
            GTEST_SKIP() << "system calls can be made to fail on x86-64 alone";
        }
    }
};

} // namespace

TEST_F(FailingDisk, ThatIsFullFromAnyCallOnLeavesNoDamage) {
    expectRecoveryFromEach(
        [](const TracedCall& call, int& seen, int round) {
            return call.needsSpace() && ++seen >= round ? TracedDecision::fail(ENOSPC)
                                                        : TracedDecision::goOn();
        },
        40, StorageErrorCode::noSpace);
}

TEST_F(FailingDisk, ThatFailsOnceAtAnyChangingCallLeavesNoDamage) {
    expectRecoveryFromEach(
        [](const TracedCall& call, int& seen, int round) {
            return call.changesFiles() && ++seen == round ? TracedDecision::fail(EIO)
                                                          : TracedDecision::goOn();
        },
        50);
}

TEST_F(FailingDisk, ThatFailsToReadFromAnyCallOnLeavesNoDamage) {
    expectRecoveryFromEach(
        [](const TracedCall& call, int& seen, int round) {
            return call.readsFiles() && ++seen >= round ? TracedDecision::fail(EIO) : TracedDecision::goOn();
        },
        40);
}

TEST_F(FailingDisk, ThatIsFullLetsAccountsBeListed) {
    const ClosedStorage closed;
    EXPECT_EQ(listed(closed.folder.path(), onFullDisk), 2);
    EXPECT_EQ(identifiers(*opened(closed.folder)), (State{"Bear+a", "Bear+b"}));
}

TEST_F(FailingDisk, ThatCannotBeWrittenToLetsAccountsBeListed) {
    const ClosedStorage closed;
    EXPECT_EQ(listed(closed.folder.path(), onReadOnlyDisk), 2);
}

TEST_F(FailingDisk, ListsWhatAKilledProcessHasStoredInItsLog) {
    const ClosedStorage closed;
    const auto store = [&] {
        const auto storage = SQLiteAccountStorage::open(closed.folder.path());
        const bool isStored = storage && (*storage)->trySave(account(ServiceType::Bear, "c"));
        ::_exit(isStored ? 0 : 1);
        return 1;
    };
    ASSERT_EQ(runTraced(store, [](const auto&) { return TracedDecision::goOn(); }), 0);
    EXPECT_EQ(listed(closed.folder.path(), onReadOnlyDisk), 3);
    EXPECT_EQ(listed(closed.folder.path(), onFullDisk), 3);
}

TEST_F(FailingDisk, TakesNoAccountOfAStorageThatOnlyReads) {
    const ClosedStorage closed;
    const auto save = [&] {
        const auto storage = SQLiteAccountStorage::openForReading(closed.folder.path());
        const auto saved = (*storage)->trySave(account(ServiceType::Bear, "c"));
        return saved ? 0 : static_cast<int>(saved.error().code);
    };
    EXPECT_EQ(runTraced(save, onReadOnlyDisk), static_cast<int>(StorageErrorCode::readOnly));
}

TEST_F(FailingDisk, ThatCannotBeWrittenToIsSaidOfAStorageThatWouldWrite) {
    const ClosedStorage closed;
    const auto open = [&] {
        const auto storage = SQLiteAccountStorage::open(closed.folder.path());
        return storage ? 0 : static_cast<int>(storage.error().code);
    };
    EXPECT_EQ(runTraced(open, onReadOnlyDisk), static_cast<int>(StorageErrorCode::readOnly));
}

} // namespace zelto
