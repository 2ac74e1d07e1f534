#include <Platform/FileManager.h>
#include <Platform/FileNames.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <unistd.h>

namespace zelto {

namespace {

using std::filesystem::path;

constexpr auto directoryOfSystem = "/tmp";

struct State {
    std::mutex mutex;
    path directory;
    pid_t owner = 0;
    bool removedAtExit = false;
};

// Never destroyed: other objects that go at exit may still ask for a path.
State& state() {
    static auto* const shared = new State;
    return *shared;
}

Result<path, FileError> freshDirectory(const path& parent, const char* nameTemplate) {
    auto name = (parent / nameTemplate).native();
    if (mkdtemp(name.data()) == nullptr) {
        return failure(FileError::fromSystem(errno, parent));
    }
    return path(name);
}

Result<path, FileError> freshDirectoryOfSystem() {
    constexpr auto nameTemplate = "zelto-XXXXXX";
    if (const char* told = std::getenv("TMPDIR"); told != nullptr && path(told).is_absolute()) {
        if (auto directory = freshDirectory(told, nameTemplate)) {
            return directory;
        }
    }
    return freshDirectory(directoryOfSystem, nameTemplate);
}

// Other threads may go on writing into it meanwhile.
void removeWithAll(const path& directory) {
    constexpr int mostAttempts = 10;
    std::error_code error;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
        std::filesystem::remove_all(directory, error);
        if (!error) {
            return;
        }
    }
}

void removeAtExit() {
    auto& current = state();
    const std::lock_guard lock(current.mutex);
    current.removedAtExit = false; // the one that is made from now on, by another that goes at exit
    if (current.owner == getpid() && !current.directory.empty()) {
        removeWithAll(current.directory);
        current.directory.clear();
    }
}

bool isOurs(const State& current) {
    std::error_code ignored;
    return current.owner == getpid() && std::filesystem::is_directory(current.directory, ignored);
}

std::string temporaryName(std::string_view told, std::size_t longest) {
    if (told.empty() || told == ".") {
        return "_";
    }
    if (told == "..") {
        return "__";
    }
    std::string name(told);
    std::ranges::replace(name, '/', '_');
    std::ranges::replace(name, '\0', '_');
    return fileNameCutTo(name, longest);
}

std::size_t longestNameIn(const path& directory) {
    const auto longest = pathconf(directory.c_str(), _PC_NAME_MAX);
    return longest > 0 ? static_cast<std::size_t>(longest) : 255;
}

} // namespace

Result<path, FileError> FileManager::temporaryDirectory() {
    auto& current = state();
    const std::lock_guard lock(current.mutex);
    if (isOurs(current)) {
        return current.directory;
    }
    if (!current.removedAtExit) {
        current.removedAtExit = std::atexit(removeAtExit) == 0;
        if (!current.removedAtExit) {
            return failure(FileError::fromSystem(ECANCELED, directoryOfSystem));
        }
    }
    auto made = freshDirectoryOfSystem();
    if (made) {
        current.directory = *made;
        current.owner = getpid();
    }
    return made;
}

Result<path, FileError> FileManager::temporaryPath(std::string_view name) {
    const auto directory = temporaryDirectory();
    if (!directory) {
        return directory;
    }
    auto folder = freshDirectory(*directory, "XXXXXX");
    if (!folder) {
        return folder;
    }
    return *folder / temporaryName(name, longestNameIn(*folder));
}

} // namespace zelto
