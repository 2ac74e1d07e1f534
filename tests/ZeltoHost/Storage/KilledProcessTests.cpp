#include "StorageTestSupport.h"

#include <Support/TracedProcess.h>

#include <Platform/FileDescriptor.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <random>
#include <set>

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utime.h>

// No storage may be open when a process is forked: SQLite does not survive a fork.
namespace zelto {

namespace {

// Reports what processes have done, in messages small enough to be atomic.
struct Done {
    int process = 0;
    int count = 0;
};

class DonePipe {
  public:
    DonePipe() {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) {
            throw std::runtime_error("no pipe");
        }
        reading_ = FileDescriptor(ends[0]);
        writing_ = FileDescriptor(ends[1]);
    }

    void report(Done done) const {
        while (::write(writing_.number(), &done, sizeof done) != sizeof done) {
            pollfd room{writing_.number(), POLLOUT, 0};
            ::poll(&room, 1, -1);
        }
    }

    // Waits for the next message, with a deadline.
    Done wait() const {
        pollfd there{reading_.number(), POLLIN, 0};
        if (::poll(&there, 1, 120'000) != 1) {
            throw std::runtime_error("the writers stand still");
        }
        return next().value();
    }

    std::optional<Done> next() const {
        Done done;
        return ::read(reading_.number(), &done, sizeof done) == sizeof done ? std::optional(done)
                                                                            : std::nullopt;
    }

  private:
    FileDescriptor reading_;
    FileDescriptor writing_;
};

template <class F> pid_t forked(F&& body) {
    const auto pid = ::fork();
    if (pid == 0) {
        ::_exit(body());
    }
    return pid;
}

int statusOf(pid_t pid) {
    int status = 0;
    ::waitpid(pid, &status, 0);
    return status;
}

bool endedWell(pid_t pid) {
    const int status = statusOf(pid);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string nameOf(int process, int count) {
    return std::to_string(process) + "." + std::to_string(count);
}

// Saves one account of its own after the other and reports each; 0 if all succeeded.
int writeAccounts(const std::filesystem::path& folder, int process, int count, const DonePipe* pipe) {
    const auto storage = SQLiteAccountStorage::open(folder);
    if (!storage) {
        return 1;
    }
    for (int each = 0; each < count; ++each) {
        auto made = account(ServiceType::Bear, nameOf(process, each));
        made.additionalInfo["cached_x"] = std::string(500, 'x');
        if (!(*storage)->trySave(made)) {
            return 2;
        }
        if (pipe != nullptr) {
            pipe->report({process, each});
        }
    }
    return 0;
}

std::set<std::string> storedNames(const std::filesystem::path& folder) {
    std::set<std::string> names;
    const auto storage = opened(folder);
    for (const auto& each : storage->loadConfigurations()) {
        names.insert(each.userName().value());
    }
    EXPECT_EQ(storage->lastError(), std::nullopt);
    return names;
}

void expectSound(const std::filesystem::path& folder) {
    EXPECT_EQ(textOf(folder / "accounts.sqlite", "PRAGMA integrity_check"), "ok");
}

} // namespace

TEST(KilledProcess, EightProcessesThatWriteAtOnceLoseNothing) {
    constexpr int processes = 8;
    constexpr int accounts = 200;
    const TemporaryFolder folder; // without even the file
    std::vector<pid_t> writers;
    for (int process = 0; process < processes; ++process) {
        writers.push_back(
            forked([&, process] { return writeAccounts(folder.path(), process, accounts, nullptr); }));
    }
    for (const auto writer : writers) {
        EXPECT_TRUE(endedWell(writer));
    }
    EXPECT_EQ(storedNames(folder.path()).size(), processes * accounts);
    expectSound(folder.path());
}

TEST(KilledProcess, TwoHundredKillsLoseNothingThatWasStored) {
    constexpr int writersAtOnce = 4;
    constexpr int kills = 200;
    const auto seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::minstd_rand random(seed);
    const TemporaryFolder folder;
    const DonePipe pipe;
    std::set<std::string> stored;
    std::vector<pid_t> writers;
    int started = 0;
    const auto start = [&] {
        const int process = started++;
        return forked([&, process] { return writeAccounts(folder.path(), process, 1'000'000, &pipe); });
    };
    for (int each = 0; each < writersAtOnce; ++each) {
        writers.push_back(start());
    }
    for (int kill = 0; kill < kills; ++kill) {
        for (auto writes = random() % 10; writes > 0; --writes) {
            const auto done = pipe.wait();
            stored.insert(nameOf(done.process, done.count));
        }
        // Not always directly after a write.
        const auto moment = std::chrono::steady_clock::now() + std::chrono::microseconds(random() % 2000);
        while (std::chrono::steady_clock::now() < moment) {
        }
        auto& victim = writers[random() % writers.size()];
        ::kill(victim, SIGKILL);
        EXPECT_TRUE(WIFSIGNALED(statusOf(victim))) << "a writer ended by itself";
        victim = start();
    }
    for (const auto writer : writers) {
        ::kill(writer, SIGKILL);
        statusOf(writer);
    }
    while (const auto done = pipe.next()) {
        stored.insert(nameOf(done->process, done->count));
    }
    expectSound(folder.path());
    const auto found = storedNames(folder.path());
    for (const auto& name : stored) {
        EXPECT_TRUE(found.contains(name)) << name;
    }
    EXPECT_LE(found.size(), stored.size() + static_cast<std::size_t>(started))
        << "at most one each is not reported";
}

namespace {

// The states that a storage goes through, from one step to the next.
using State = std::vector<std::string>;

const std::array<State, 6> states{
    State{},
    State{"Bear+a"},
    State{"Bear+a", "Bear+b"},
    State{"Bear+a", "Bear+b"}, // one is replaced
    State{"Bear+a", "Bear+b"}, // the one used last is set
    State{"Bear+b"},
};

// Performs and reports the steps; the first one opens the storage.
int takeSteps(const std::filesystem::path& folder, const DonePipe& pipe) {
    const auto opening = SQLiteAccountStorage::open(folder);
    if (!opening) {
        return 1;
    }
    auto& storage = **opening;
    int step = 0;
    const auto reported = [&](const Result<void, StorageError>& result) {
        pipe.report({0, ++step});
        return result.has_value();
    };
    const auto bear = account(ServiceType::Bear, "a");
    auto changed = bear;
    changed.displayName = "changed";
    const bool allWorked = reported(storage.trySave(bear)) &&
                           reported(storage.trySave(account(ServiceType::Bear, "b"))) &&
                           reported(storage.trySave(changed)) &&
                           reported(storage.trySetLastUsedConfiguration(ServiceType::Bear, bear)) &&
                           reported(storage.tryRemove(bear));
    return allWorked ? 0 : 1;
}

// Kills the steps at their n-th call that changes files; false if they ended by themselves before.
bool killedAtCall(const std::filesystem::path& folder, const DonePipe& pipe, int calls) {
    int seen = 0;
    const auto result = runTraced([&] { return takeSteps(folder, pipe); },
                                  [&](const TracedCall& call) {
                                      return call.changesFiles() && ++seen == calls ? TracedDecision::kill()
                                                                                    : TracedDecision::goOn();
                                  });
    EXPECT_EQ(result.value_or(0), 0);
    return !result;
}

void age(const std::filesystem::path& folder) {
    const utimbuf longAgo{0, 0};
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.is_directory()) {
            ::utime(entry.path().c_str(), &longAgo);
        }
    }
}

} // namespace

TEST(KilledProcess, AtWhicheverChangingCallTheStateIsTheOneBeforeOrBehindTheStep) {
    int calls = 1;
    for (bool killed = true; killed; ++calls) {
        SCOPED_TRACE("system call " + std::to_string(calls));
        const TemporaryFolder folder;
        const DonePipe pipe;
        killed = killedAtCall(folder.path(), pipe, calls);
        std::size_t done = 0;
        while (const auto step = pipe.next()) {
            done = static_cast<std::size_t>(step->count);
        }
        age(folder.path());
        const auto found = identifiers(*opened(folder));
        EXPECT_TRUE(found == states[done] || found == states[std::min(done + 1, states.size() - 1)])
            << done << " steps done, " << found.size() << " accounts found";
        for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
            EXPECT_TRUE(entry.path().filename().string().starts_with("accounts.sqlite")) << entry.path();
        }
        expectSound(folder.path());
        if (testing::Test::HasFailure()) {
            break;
        }
    }
    RecordProperty("calls", calls);
    EXPECT_GT(calls, 50) << "fewer system calls than a storage can do with: was it traced?";
}

TEST(KilledProcess, AFullDiskIsReportedAndLosesNothing) {
    const TemporaryFolder folder;
    ASSERT_EQ(statusOf(forked([&] { return writeAccounts(folder.path(), 0, 10, nullptr); })), 0);
    // Files may not grow any more, as with a quota.
    const auto writer = forked([&] {
        std::signal(SIGXFSZ, SIG_IGN);
        const auto storage = SQLiteAccountStorage::open(folder.path());
        const rlimit small{64 * 1024, 64 * 1024};
        ::setrlimit(RLIMIT_FSIZE, &small);
        auto large = account(ServiceType::Agenda, "large");
        large.additionalInfo["cached_x"] = std::string(1'000'000, 'x');
        return storage && !(*storage)->trySave(large) && (*storage)->lastError() ? 0 : 1;
    });
    EXPECT_TRUE(endedWell(writer));
    EXPECT_EQ(storedNames(folder.path()).size(), 10);
    expectSound(folder.path());
}

} // namespace zelto
