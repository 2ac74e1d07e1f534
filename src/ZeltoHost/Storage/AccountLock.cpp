#include <ZeltoHost/Storage/AccountLock.h>

#include <ZeltoHost/Storage/DataDirectory.h>

#include <Platform/Base64.h>
#include <Platform/Crypto/Digest.h>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace zelto {

namespace {

using std::filesystem::path;

path lockPath(const path& dataDirectory, const std::string& accountIdentifier) {
    return dataDirectory / "locks" / (base64URLEncoded(viewOf(sha256(accountIdentifier))) + ".lock");
}

Result<FileDescriptor, StorageError> openLockFile(const path& file) {
    constexpr mode_t directoryMode = 0700;
    constexpr mode_t fileMode = 0600;
    const auto directory = file.parent_path();
    if (::mkdir(directory.c_str(), directoryMode) != 0 && errno != EEXIST) {
        return failure(StorageError::fromSystem(errno, directory));
    }
    FileDescriptor opened(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, fileMode));
    if (!opened) {
        return failure(StorageError::fromSystem(errno, file));
    }
    return opened;
}

bool lock(const FileDescriptor& file, int how) {
    int result = 0;
    do {
        result = ::flock(file.number(), how);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

} // namespace

bool AccountLock::isNeededFor(ServiceType service) {
    using enum ServiceType;
    constexpr ServiceType refreshing[] = {Asana,  OneNote,   GoogleDrive, Dropbox,       Hubspot,
                                          Notion, G2Meeting, ZoomMeeting, MicrosoftTeams};
    return std::ranges::find(refreshing, service) != std::end(refreshing);
}

Result<AccountLock, StorageError> AccountLock::take(const path& dataDirectory,
                                                    const std::string& accountIdentifier,
                                                    const std::function<void()>& onWait) {
    if (auto prepared = prepareDataDirectory(dataDirectory); !prepared) {
        return failure(prepared.error());
    }
    const auto path = lockPath(dataDirectory, accountIdentifier);
    auto file = openLockFile(path);
    if (!file) {
        return failure(file.error());
    }
    if (lock(*file, LOCK_EX | LOCK_NB)) {
        return AccountLock(*std::move(file));
    }
    if (errno == EWOULDBLOCK) {
        onWait();
        if (lock(*file, LOCK_EX)) {
            return AccountLock(*std::move(file));
        }
    }
    return failure(StorageError::fromSystem(errno, path));
}

} // namespace zelto
