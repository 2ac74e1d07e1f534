#include <ZeltoHost/Storage/ConnectingFlow.h>

#include <ZeltoHost/Storage/DataDirectory.h>
#include <ZeltoHost/Storage/FileLockInternal.h>

#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>

#include <Platform/UUID.h>

#include <array>
#include <cerrno>
#include <optional>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace zelto {

namespace {

using std::filesystem::path;

constexpr auto extension = ".flow";

path folderOf(const path& dataDirectory) {
    return dataDirectory / "flows";
}

// Held while a note is made or removed: one that is not locked yet must not be taken for a leftover.
Result<FileDescriptor, StorageError> lockNotes(const path& folder) {
    const auto filePath = folder / "lock";
    auto file = openLockFile(filePath);
    if (file && !lockFile(*file, LOCK_EX)) {
        return failure(StorageError::fromSystem(errno, filePath));
    }
    return file;
}

bool writeAll(const FileDescriptor& file, const std::string& text) {
    return ::write(file.number(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

std::string contentOf(const FileDescriptor& file) {
    std::array<char, 8192> bytes{};
    const auto count = ::pread(file.number(), bytes.data(), bytes.size(), 0);
    return {bytes.data(), static_cast<std::size_t>(count > 0 ? count : 0)};
}

std::vector<path> notesIn(const path& folder) {
    std::vector<path> notes;
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        if (entry->path().extension() == extension) {
            notes.push_back(entry->path());
        }
    }
    return notes;
}

// The note of a flow that no process runs any more.
std::optional<std::string> leftKey(const path& note) {
    const FileDescriptor file(::open(note.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW));
    return file && lockFile(file, LOCK_EX | LOCK_NB) ? std::optional(contentOf(file)) : std::nullopt;
}

bool removeSecrets(const std::string& key) {
    return LVXKeyChainStoreFactory::keyChainStore()->erase(key).has_value();
}

void removeAccounts(const std::string& key, ServiceConfigurationsStorage& storage) {
    for (const auto& account : storage.loadConfigurations()) {
        if (account.credentials && account.credentials->serviceCredentialsKey == key) {
            storage.remove(account);
        }
    }
}

} // namespace

Result<std::shared_ptr<ConnectingFlow>, StorageError>
ConnectingFlow::begin(const path& dataDirectory, const std::string& serviceCredentialsKey) {
    if (auto prepared = prepareDataDirectory(dataDirectory); !prepared) {
        return failure(prepared.error());
    }
    const auto folder = folderOf(dataDirectory);
    const auto notes = lockNotes(folder);
    if (!notes) {
        return failure(notes.error());
    }
    const auto note = folder / (uuid() + extension);
    auto file = openLockFile(note, O_EXCL);
    if (!file) {
        return failure(file.error());
    }
    if (!lockFile(*file, LOCK_EX | LOCK_NB) || !writeAll(*file, serviceCredentialsKey)) {
        const auto error = errno;
        ::unlink(note.c_str());
        return failure(StorageError::fromSystem(error, note));
    }
    return std::shared_ptr<ConnectingFlow>(new ConnectingFlow(*std::move(file), note));
}

ConnectingFlow::~ConnectingFlow() {
    ::unlink(path_.c_str());
}

void ConnectingFlow::removeLeftovers(const path& dataDirectory, ServiceConfigurationsStorage& storage) {
    const auto folder = folderOf(dataDirectory);
    if (notesIn(folder).empty()) {
        return;
    }
    const auto notes = lockNotes(folder);
    if (!notes) {
        return;
    }
    for (const auto& note : notesIn(folder)) {
        const auto key = leftKey(note);
        if (!key) {
            continue;
        }
        bool isRemoved = true;
        // A damaged note may name anything, but not the key of an account.
        if (ServiceAccountCredentials::isFlowKey(*key)) {
            removeAccounts(*key, storage);
            isRemoved = removeSecrets(*key);
        }
        if (isRemoved) {
            ::unlink(note.c_str());
        }
    }
}

} // namespace zelto
