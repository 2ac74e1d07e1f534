#include <ZeltoHost/Storage/AccountRefreshLock.h>

#include <ZeltoHost/Storage/DataDirectory.h>
#include <ZeltoHost/Storage/FileLockInternal.h>

#include <Platform/Operations/OperationQueue.h>

#include <system_error>
#include <utility>

#include <sys/file.h>

namespace zelto {

namespace {

using Clock = std::chrono::steady_clock;

// The system notifies nobody when a file's lock is free. Another process's refresh takes longer than this.
constexpr std::chrono::milliseconds interval{20};

Result<FileDescriptor, StorageError> lockFileOf(const std::filesystem::path& dataDirectory,
                                                const std::string& key) {
    if (auto prepared = prepareDataDirectory(dataDirectory); !prepared) {
        return failure(prepared.error());
    }
    return openLockFile(lockPath(dataDirectory, "refresh of " + key));
}

std::shared_ptr<void> heldBy(FileDescriptor file) {
    return std::make_shared<FileDescriptor>(std::move(file));
}

} // namespace

AccountRefreshLock::AccountRefreshLock(std::filesystem::path dataDirectory, std::chrono::milliseconds timeout)
    : dataDirectory_(std::move(dataDirectory)), timeout_(timeout) {}

AccountRefreshLock::~AccountRefreshLock() {
    watch_.request_stop();
    if (watch_.joinable()) {
        watch_.join();
    }
    for (auto& each : waiting_) {
        each.taken(nullptr);
    }
}

void AccountRefreshLock::take(const std::string& serviceCredentialsKey,
                              Callback<std::shared_ptr<void>> taken) {
    auto file = lockFileOf(dataDirectory_, serviceCredentialsKey);
    if (!file) {
        return taken(nullptr);
    }
    if (lockFile(*file, LOCK_EX | LOCK_NB)) {
        return taken(heldBy(*std::move(file)));
    }
    Waiting waiting{*std::move(file), std::move(taken), Clock::now() + timeout_};
    if (!wait(waiting)) {
        waiting.taken(nullptr);
    }
}

// False where the system has no thread for it.
bool AccountRefreshLock::wait(Waiting& waiting) {
    const std::lock_guard guard(lock_);
    if (!watch_.joinable()) {
        try {
            watch_ = std::jthread([this](const std::stop_token& stop) { watch(stop); });
        } catch (const std::system_error&) {
            return false;
        }
    }
    waiting_.push_back(std::move(waiting));
    changed_.notify_all();
    return true;
}

void AccountRefreshLock::watch(const std::stop_token& stop) {
    std::unique_lock guard(lock_);
    while (changed_.wait(guard, stop, [this] { return !waiting_.empty(); })) {
        std::erase_if(waiting_, isSettled);
        changed_.wait_for(guard, stop, interval, [] { return false; });
        if (stop.stop_requested()) {
            return;
        }
    }
}

// The refresh goes on in the pool: it reads the key chain, and others wait here.
bool AccountRefreshLock::isSettled(Waiting& waiting) {
    const bool isLocked = lockFile(waiting.file, LOCK_EX | LOCK_NB);
    if (!isLocked && Clock::now() < waiting.deadline) {
        return false;
    }
    auto held = isLocked ? heldBy(std::move(waiting.file)) : nullptr;
    OperationQueue().addOperation(
        [held = std::move(held), taken = std::move(waiting.taken)]() mutable { taken(std::move(held)); });
    return true;
}

} // namespace zelto
