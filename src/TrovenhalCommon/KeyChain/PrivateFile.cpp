#include <TrovenhalCommon/KeyChain/PrivateFileInternal.h>

#include <Platform/FileManager.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zelto {

namespace {

using std::filesystem::path;

KeyChainError errorOf(const FileError& error) {
    const bool isDenied =
        error.code == FileErrorCode::noPermission || error.code == FileErrorCode::symbolicLink;
    return {isDenied ? KeyChainErrorKind::denied : KeyChainErrorKind::ioError,
            "The key chain cannot be used: " + error.message()};
}

auto systemFailure(const path& where) {
    return failure(errorOf(FileError::fromSystem(errno, where)));
}

auto denial(const path& where, const char* reason) {
    return failure(KeyChainError{KeyChainErrorKind::denied,
                                 "'" + where.native() + "' is not used as a key chain: " + reason});
}

Result<void, KeyChainError> checkFile(const path& where, const struct stat& status) {
    if (!S_ISREG(status.st_mode)) {
        return denial(where, "it is no regular file.");
    }
    if (status.st_uid != geteuid()) {
        return denial(where, "it belongs to another user.");
    }
    if ((status.st_mode & 077) != 0) {
        return denial(where, "others may read or write it. Take their rights away (chmod 600).");
    }
    return {};
}

Result<FileDescriptor, FileError> openNoFollow(const path& where, int flags) {
    // O_NONBLOCK: must not block on a pipe that someone put there.
    return FileManager::openFile(where, flags | O_NOFOLLOW | O_NONBLOCK);
}

Result<void, KeyChainError> writeNewFile(const path& where, std::span<const std::uint8_t> bytes) {
    const auto file = FileManager::createFile(where, 0600);
    if (!file) {
        return failure(errorOf(file.error()));
    }
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (const auto written = FileManager::writeAll(*file, text, where); !written) {
        return failure(errorOf(written.error()));
    }
    // The umask may have removed our own permissions.
    if (fchmod(file->number(), 0600) != 0 || fsync(file->number()) != 0) {
        return systemFailure(where);
    }
    return {};
}

path directoryOf(const path& where) {
    return where.has_parent_path() ? where.parent_path() : path(".");
}

} // namespace

Result<std::optional<Data>, KeyChainError> readPrivateFile(const path& where, std::uint64_t limit) {
    const auto file = openNoFollow(where, O_RDONLY);
    if (!file && file.error().code == FileErrorCode::notFound) {
        return std::nullopt;
    }
    if (!file) {
        return failure(errorOf(file.error()));
    }

    struct stat status {};

    if (fstat(file->number(), &status) != 0) {
        return systemFailure(where);
    }
    if (const auto checked = checkFile(where, status); !checked) {
        return failure(checked.error());
    }
    auto bytes = FileManager::readAll(*file, where, limit);
    if (!bytes) {
        return failure(errorOf(bytes.error()));
    }
    return *std::move(bytes);
}

Result<void, KeyChainError> replacePrivateFile(const path& where, std::span<const std::uint8_t> bytes) {
    auto fresh = where;
    fresh += ".new";
    unlink(fresh.c_str());
    if (auto written = writeNewFile(fresh, bytes); !written) {
        unlink(fresh.c_str());
        return written;
    }
    if (rename(fresh.c_str(), where.c_str()) != 0) {
        auto error = systemFailure(where);
        unlink(fresh.c_str());
        return error;
    }
    if (const auto synced = FileManager::syncDirectory(directoryOf(where)); !synced) {
        return failure(errorOf(synced.error()));
    }
    return {};
}

Result<void, KeyChainError> preparePrivateDirectory(const path& directory) {
    const auto whole = directory.empty() ? path(".") : directory;
    path made;
    for (const auto& part : whole) {
        made /= part;
        if (!part.empty() && mkdir(made.c_str(), 0700) != 0 && errno != EEXIST) {
            return systemFailure(made);
        }
    }

    struct stat status {};

    if (stat(whole.c_str(), &status) != 0) {
        return systemFailure(whole);
    }
    if (status.st_uid != geteuid()) {
        return denial(whole, "the directory belongs to another user.");
    }
    if ((status.st_mode & 022) != 0) {
        return denial(whole, "others may write into the directory. Take their rights away (chmod 700).");
    }
    return {};
}

Result<FileDescriptor, KeyChainError> lockFile(const path& where) {
    auto file = FileManager::openFile(where, O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK, 0600);
    if (!file) {
        return failure(errorOf(file.error()));
    }
    while (flock(file->number(), LOCK_EX) != 0) {
        if (errno != EINTR) {
            return systemFailure(where);
        }
    }
    return std::move(*file);
}

} // namespace zelto
