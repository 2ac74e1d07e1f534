#include <Platform/FileManager.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zelto {

namespace {

using std::filesystem::path;

constexpr std::size_t readStep = std::size_t{1} << 20;

auto systemFailure(const path& where) {
    return failure(FileError::fromSystem(errno, where));
}

// The system would cut such a path at the NUL, and use another file.
bool holdsNul(const path& where) {
    return where.native().contains('\0');
}

// Removes the file unless it has been renamed to its final path.
class Temporary {
  public:
    explicit Temporary(path where) : path_(std::move(where)) {}

    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    ~Temporary() {
        if (!path_.empty()) {
            unlink(path_.c_str());
        }
    }

    const path& where() const { return path_; }

    void keep() { path_.clear(); }

  private:
    path path_;
};

// The known size, so that a file is read in one piece.
std::size_t expectedSize(const struct stat& status, std::uint64_t limit) {
    return static_cast<std::size_t>(
        std::min(static_cast<std::uint64_t>(std::max<off_t>(status.st_size, 0)), limit));
}

path homeDirectory() {
    if (const char* home = std::getenv("HOME"); home && *home == '/') {
        return home;
    }
    std::array<char, 4096> buffer{};
    passwd entry{};
    passwd* found = nullptr;
    const bool isKnown =
        getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found && found->pw_dir;
    return isKnown ? path(found->pw_dir) : path("/");
}

} // namespace

Result<Data, FileError> FileManager::readFile(const path& where, std::uint64_t limit) {
    const auto file = openFile(where, O_RDONLY);
    return file ? readAll(*file, where, limit) : failure(file.error());
}

Result<Data, FileError> FileManager::readAll(const FileDescriptor& file, const path& where,
                                             std::uint64_t limit) {
    struct stat status {};

    if (fstat(file.number(), &status) != 0) {
        return systemFailure(where);
    }
    if (S_ISDIR(status.st_mode)) {
        return failure(FileError::fromSystem(EISDIR, where));
    }
    if (S_ISREG(status.st_mode) && static_cast<std::uint64_t>(status.st_size) > limit) {
        return failure(FileError{FileErrorCode::tooLarge, 0, where});
    }
    Data bytes;
    std::size_t filled = 0;
    // One byte more than expected, so that the end of the file is found without growing again.
    bytes.resize(expectedSize(status, limit) + 1);
    for (;;) {
        const auto count =
            readSome(file, {reinterpret_cast<char*>(bytes.data()) + filled, bytes.size() - filled}, where);
        if (!count) {
            return failure(count.error());
        }
        filled += *count;
        if (filled > limit) {
            return failure(FileError{FileErrorCode::tooLarge, 0, where});
        }
        if (*count == 0) {
            bytes.resize(filled);
            return bytes;
        }
        if (filled == bytes.size()) {
            bytes.resize(bytes.size() + std::max(readStep, bytes.size() / 2));
        }
    }
}

Result<std::size_t, FileError> FileManager::readSome(const FileDescriptor& file, std::span<char> buffer,
                                                     const path& where) {
    for (;;) {
        const auto count = read(file.number(), buffer.data(), buffer.size());
        if (count >= 0) {
            return static_cast<std::size_t>(count);
        }
        if (errno != EINTR) {
            return systemFailure(where);
        }
    }
}

Result<void, FileError> FileManager::writeFileAtomically(const path& where, std::string_view bytes,
                                                         unsigned mode) {
    if (holdsNul(where)) {
        return failure(FileError::fromSystem(EINVAL, where));
    }
    const auto directory = where.has_parent_path() ? where.parent_path() : path(".");
    auto name = (directory / ".zelto-XXXXXX").native();
    {
        const FileDescriptor file(mkostemp(name.data(), O_CLOEXEC));
        if (!file) {
            return systemFailure(directory);
        }
        Temporary temporary(name);
        if (fchmod(file.number(), mode) != 0) {
            return systemFailure(where);
        }
        if (auto written = writeAll(file, bytes, where); !written) {
            return written;
        }
        if (fsync(file.number()) != 0 || rename(temporary.where().c_str(), where.c_str()) != 0) {
            return systemFailure(where);
        }
        temporary.keep();
    }
    return syncDirectory(directory);
}

Result<void, FileError> FileManager::writeFileAtomically(const path& where, const Data& bytes,
                                                         unsigned mode) {
    return writeFileAtomically(where, viewOf(bytes), mode);
}

Result<FileDescriptor, FileError> FileManager::openFile(const path& where, int flags, unsigned mode) {
    if (holdsNul(where)) {
        return failure(FileError::fromSystem(EINVAL, where));
    }
    for (;;) {
        FileDescriptor file(open(where.c_str(), flags | O_CLOEXEC, mode));
        if (file) {
            return file;
        }
        if (errno != EINTR) {
            return systemFailure(where);
        }
    }
}

Result<FileDescriptor, FileError> FileManager::createFile(const path& where, unsigned mode) {
    return openFile(where, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, mode);
}

Result<void, FileError> FileManager::writeAll(const FileDescriptor& file, std::string_view bytes,
                                              const path& where) {
    while (!bytes.empty()) {
        const auto count = write(file.number(), bytes.data(), bytes.size());
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return systemFailure(where);
        }
    }
    return {};
}

Result<void, FileError> FileManager::syncFile(const FileDescriptor& file, const path& where) {
    while (fsync(file.number()) != 0) {
        if (errno != EINTR) {
            return systemFailure(where);
        }
    }
    return {};
}

Result<void, FileError> FileManager::moveWithoutReplacing(const path& from, const path& to) {
    if (holdsNul(from) || holdsNul(to)) {
        return failure(FileError::fromSystem(EINVAL, to));
    }
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return {};
    }
    // Not every file system can do it in one step.
    const bool isUnsupported = errno == EINVAL || errno == ENOSYS;
    if (!isUnsupported || link(from.c_str(), to.c_str()) != 0) {
        return systemFailure(to);
    }
    unlink(from.c_str());
    return {};
}

Result<void, FileError> FileManager::syncDirectory(const path& directory) {
    const auto opened = openFile(directory, O_RDONLY | O_DIRECTORY);
    if (!opened) {
        return failure(opened.error());
    }
    // Not every file system supports this.
    if (fsync(opened->number()) != 0 && errno != EINVAL && errno != ENOTSUP) {
        return systemFailure(directory);
    }
    return {};
}

path FileManager::userDataDirectory() {
    const char* data = std::getenv("XDG_DATA_HOME");
    return data && *data == '/' ? path(data) : homeDirectory() / ".local" / "share";
}

} // namespace zelto
