#include <ZeltoHost/Storage/DataDirectory.h>

#include <ZeltoHost/Storage/AccountFileInternal.h>

#include <Platform/FileManager.h>

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zelto {

namespace {

constexpr mode_t privateMode = 0700;

// A umask may have removed the owner's own rights too, so the mode is set again.
Result<void, StorageError> makePrivate(const std::filesystem::path& directory) {
    if (::mkdir(directory.c_str(), privateMode) != 0) {
        if (errno == EEXIST) {
            return {};
        }
        return failure(StorageError::fromSystem(errno, directory));
    }
    if (::chmod(directory.c_str(), privateMode) != 0) {
        return failure(StorageError::fromSystem(errno, directory));
    }
    return {};
}

Result<void, StorageError> makeMissing(const std::filesystem::path& directory) {
    std::error_code error;
    if (directory.empty() || std::filesystem::exists(directory, error)) {
        return {};
    }
    if (error) {
        return failure(StorageError::fromSystem(error.value(), directory));
    }
    if (auto parents = makeMissing(directory.parent_path()); !parents) {
        return parents;
    }
    return makePrivate(directory);
}

bool isOursToClose(const std::filesystem::path& directory) {
    std::error_code error;
    return std::filesystem::exists(directory / accountFileName, error) ||
           (std::filesystem::is_empty(directory, error) && !error);
}

} // namespace

Result<void, StorageError> prepareDataDirectory(const std::filesystem::path& directory) {
    std::error_code error;
    const auto absolute = std::filesystem::absolute(directory, error);
    // The last component of "a/b/" is empty.
    const auto path = absolute.has_filename() ? absolute : absolute.parent_path();
    if (auto made = makeMissing(path); !made) {
        return made;
    }
    const FileDescriptor opened(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));

    struct stat status {};

    // A wrong owner is reported rather than that the directory cannot be opened.
    if ((opened ? ::fstat(opened.number(), &status) : ::stat(path.c_str(), &status)) != 0) {
        return failure(StorageError::fromSystem(errno, path));
    }
    if (S_ISDIR(status.st_mode) && status.st_uid != ::geteuid()) {
        return failure(StorageError{StorageErrorCode::foreignOwner, path, {}});
    }
    if (!opened) {
        return failure(StorageError::fromSystem(S_ISDIR(status.st_mode) ? EACCES : ENOTDIR, path));
    }
    if ((status.st_mode & ~mode_t(S_IFMT)) == privateMode) {
        return {};
    }
    if ((status.st_mode & (S_IRWXG | S_IRWXO | S_ISVTX)) != 0 && !isOursToClose(path)) {
        return failure(StorageError{StorageErrorCode::openToOthers, path, {}});
    }
    if (::fchmod(opened.number(), privateMode) != 0) {
        return failure(StorageError::fromSystem(errno, path));
    }
    return {};
}

} // namespace zelto
