#include <ZeltoHost/Storage/FileLockInternal.h>

#include <Platform/Base64.h>
#include <Platform/Crypto/Digest.h>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace zelto {

Result<FileDescriptor, StorageError> openLockFile(const std::filesystem::path& file, int additionalFlags) {
    constexpr mode_t directoryMode = 0700;
    constexpr mode_t fileMode = 0600;
    const auto directory = file.parent_path();
    if (::mkdir(directory.c_str(), directoryMode) != 0 && errno != EEXIST) {
        return failure(StorageError::fromSystem(errno, directory));
    }
    FileDescriptor opened(
        ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | additionalFlags, fileMode));
    if (!opened) {
        return failure(StorageError::fromSystem(errno, file));
    }
    return opened;
}

bool lockFile(const FileDescriptor& file, int how) {
    int result = 0;
    do {
        result = ::flock(file.number(), how);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

std::filesystem::path lockPath(const std::filesystem::path& dataDirectory, std::string_view text) {
    return dataDirectory / "locks" / (base64URLEncoded(viewOf(sha256(text))) + ".lock");
}

} // namespace zelto
