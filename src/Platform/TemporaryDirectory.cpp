#include <Platform/FileManager.h>
#include <Platform/FileNames.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <mutex>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zelto {

namespace {

using std::filesystem::path;

constexpr auto directoryOfSystem = "/tmp";
constexpr std::string_view prefix = "zelto-temporary-";

// The process's own directory, locked as long as the process lives.
struct HeldDirectory {
    path where;
    FileDescriptor lock;
};

struct State {
    std::mutex mutex;
    HeldDirectory directory;
    pid_t owner = 0;
    bool removedAtExit = false;
};

// Never destroyed: other objects may still ask for a path at exit.
State& state() {
    static auto* const shared = new State;
    return *shared;
}

Result<path, FileError> freshDirectory(const path& parent, std::string_view namePrefix) {
    auto name = (parent / namePrefix).native() + "XXXXXX";
    if (mkdtemp(name.data()) == nullptr) {
        return failure(FileError::fromSystem(errno, parent));
    }
    return path(name);
}

FileDescriptor openDirectory(const path& where) {
    return FileDescriptor(::open(where.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

// Another process may remove it as a leftover before it is locked; then another one is tried.
Result<HeldDirectory, FileError> freshHeldDirectory(const path& parent) {
    constexpr int maximumAttempts = 10;
    for (int attempt = 0; attempt < maximumAttempts; ++attempt) {
        auto where = freshDirectory(parent, prefix);
        if (!where) {
            return failure(where.error());
        }
        auto lock = openDirectory(*where);
        if (!lock && errno != ENOENT) {
            const auto error = FileError::fromSystem(errno, *where);
            ::rmdir(where->c_str());
            return failure(error);
        }
        // Where files cannot be locked, no process removes leftovers either.
        const bool isTaken = lock && ::flock(lock.number(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        if (lock && !isTaken && ::access(where->c_str(), F_OK) == 0) {
            return HeldDirectory{*std::move(where), std::move(lock)};
        }
    }
    return failure(FileError::fromSystem(EBUSY, parent));
}

Result<HeldDirectory, FileError> freshDirectoryOfSystem() {
    if (const char* configured = std::getenv("TMPDIR");
        configured != nullptr && path(configured).is_absolute()) {
        if (auto directory = freshHeldDirectory(configured)) {
            return directory;
        }
    }
    return freshHeldDirectory(directoryOfSystem);
}

// Repeated, since other threads may still be writing into it.
void removeWithAll(const path& directory) {
    constexpr int maximumAttempts = 10;
    std::error_code error;
    for (int attempt = 0; attempt < maximumAttempts; ++attempt) {
        std::filesystem::remove_all(directory, error);
        if (!error) {
            return;
        }
    }
}

// A leftover of one of this user's processes that was killed.
void removeIfLeftover(const path& directory) {
    struct stat status {};

    const auto lock = openDirectory(directory);
    if (lock && ::fstat(lock.number(), &status) == 0 && status.st_uid == ::geteuid() &&
        ::flock(lock.number(), LOCK_EX | LOCK_NB) == 0) {
        removeWithAll(directory);
    }
}

void removeLeftovers(const path& parent) {
    std::error_code error;
    for (std::filesystem::directory_iterator each(parent, error), end; !error && each != end;
         each.increment(error)) {
        if (each->path().filename().native().starts_with(prefix)) {
            removeIfLeftover(each->path());
        }
    }
}

void removeAtExit() {
    auto& current = state();
    const std::lock_guard lock(current.mutex);
    current.removedAtExit =
        false; // of a directory that is created from now on, by another object that is destroyed at exit
    if (current.owner == getpid() && !current.directory.where.empty()) {
        removeWithAll(current.directory.where);
        current.directory = {};
    }
}

bool isOurs(const State& current) {
    std::error_code ignored;
    return current.owner == getpid() && std::filesystem::is_directory(current.directory.where, ignored);
}

std::string temporaryName(std::string_view wanted, std::size_t maximumLength) {
    if (wanted.empty() || wanted == ".") {
        return "_";
    }
    if (wanted == "..") {
        return "__";
    }
    std::string name(wanted);
    std::ranges::replace(name, '/', '_');
    std::ranges::replace(name, '\0', '_');
    return fileNameCutTo(name, maximumLength);
}

std::size_t maximumNameLengthIn(const path& directory) {
    const auto maximumLength = pathconf(directory.c_str(), _PC_NAME_MAX);
    return maximumLength > 0 ? static_cast<std::size_t>(maximumLength) : 255;
}

} // namespace

Result<path, FileError> FileManager::temporaryDirectory() {
    auto& current = state();
    const std::lock_guard lock(current.mutex);
    if (isOurs(current)) {
        return current.directory.where;
    }
    if (!current.removedAtExit) {
        current.removedAtExit = std::atexit(removeAtExit) == 0;
        if (!current.removedAtExit) {
            return failure(FileError::fromSystem(ECANCELED, directoryOfSystem));
        }
    }
    auto made = freshDirectoryOfSystem();
    if (!made) {
        return failure(made.error());
    }
    current.directory = *std::move(made);
    current.owner = getpid();
    removeLeftovers(current.directory.where.parent_path());
    return current.directory.where;
}

Result<path, FileError> FileManager::temporaryPath(std::string_view name) {
    const auto directory = temporaryDirectory();
    if (!directory) {
        return directory;
    }
    auto folder = freshDirectory(*directory, "");
    if (!folder) {
        return folder;
    }
    return *folder / temporaryName(name, maximumNameLengthIn(*folder));
}

} // namespace zelto
