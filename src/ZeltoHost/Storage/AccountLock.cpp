#include <ZeltoHost/Storage/AccountLock.h>

#include <ZeltoHost/Storage/DataDirectory.h>
#include <ZeltoHost/Storage/FileLockInternal.h>

#include <cerrno>

#include <sys/file.h>

namespace zelto {

using std::filesystem::path;

Result<AccountLock, StorageError> AccountLock::take(const path& dataDirectory,
                                                    const std::string& accountIdentifier,
                                                    const std::function<void()>& onWait) {
    if (auto prepared = prepareDataDirectory(dataDirectory); !prepared) {
        return failure(prepared.error());
    }
    const auto filePath = lockPath(dataDirectory, accountIdentifier);
    auto file = openLockFile(filePath);
    if (!file) {
        return failure(file.error());
    }
    if (lockFile(*file, LOCK_EX | LOCK_NB)) {
        return AccountLock(*std::move(file));
    }
    if (errno == EWOULDBLOCK) {
        onWait();
        if (lockFile(*file, LOCK_EX)) {
            return AccountLock(*std::move(file));
        }
    }
    return failure(StorageError::fromSystem(errno, filePath));
}

} // namespace zelto
