#include <ZeltoHost/Storage/ConnectingFlow.h>

#include <ZeltoHost/Storage/DataDirectory.h>
#include <ZeltoHost/Storage/FileLockInternal.h>

#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>

#include <Platform/UUID.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <map>
#include <set>
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

// What the notes say.
struct Notes {
    std::map<path, std::string> left; // the keys of flows that no process runs any more
    std::set<std::string> held;       // the keys of those under way
};

Notes readNotes(const path& folder) {
    Notes notes;
    for (const auto& note : notesIn(folder)) {
        const FileDescriptor file(::open(note.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW));
        if (!file) {
            continue;
        }
        if (lockFile(file, LOCK_EX | LOCK_NB)) {
            notes.left.emplace(note, contentOf(file));
        } else {
            notes.held.insert(contentOf(file));
        }
    }
    return notes;
}

bool isAccountKey(const std::string& key) {
    return key.starts_with(ServiceAccountCredentials::forIdentifier("").serviceCredentialsKey);
}

bool removeSecrets(const std::string& key) {
    return LVXKeyChainStoreFactory::keyChainStore()->erase(key).has_value();
}

// Whether nothing is left that the key stands for. A damaged note may name anything: nothing is removed that
// belongs to an account or is no key of ours.
bool removeLeftover(const std::string& key, const std::vector<ServiceAccountConfiguration>& accounts,
                    const std::set<std::string>& heldKeys, SQLiteAccountStorage& storage) {
    const auto isOfKey = [&](const ServiceAccountConfiguration& account) {
        return account.credentials && account.credentials->serviceCredentialsKey == key;
    };
    const auto account = std::ranges::find_if(accounts, isOfKey);
    if (ServiceAccountCredentials::isFlowKey(key)) {
        const bool isRemoved = account == accounts.end() || storage.tryRemove(*account);
        return removeSecrets(key) && isRemoved;
    }
    if (account != accounts.end() || !isAccountKey(key)) {
        return true;
    }
    // Another flow may be about to save the account.
    return !heldKeys.contains(key) && removeSecrets(key);
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

void ConnectingFlow::removeLeftovers(const path& dataDirectory, SQLiteAccountStorage& storage) {
    const auto folder = folderOf(dataDirectory);
    if (notesIn(folder).empty()) {
        return;
    }
    const auto lock = lockNotes(folder);
    if (!lock) {
        return;
    }
    // Before the accounts: a flow that ends in between has saved its own.
    const auto notes = readNotes(folder);
    const auto accounts = storage.tryLoadAllConfigurations();
    if (!accounts) {
        return;
    }
    for (const auto& [note, key] : notes.left) {
        if (removeLeftover(key, *accounts, notes.held, storage)) {
            ::unlink(note.c_str());
        }
    }
}

} // namespace zelto
