#include <TrovenhalCommon/KeyChain/FileKeyChainStore.h>

#include <TrovenhalCommon/KeyChain/KeyChainFormatInternal.h>
#include <TrovenhalCommon/KeyChain/PrivateFileInternal.h>

#include <sodium.h>

#include <mutex>

namespace zelto {

namespace {

using Path = std::filesystem::path;
using KeySource = KeyChainHeader::KeySource;

constexpr std::uint64_t fileLimit = std::uint64_t{256} << 20;
constexpr std::uint64_t keyFileLimit = 4096;

Path with(Path name, const char* extension) {
    name += extension;
    return name;
}

auto damaged(const Path& where, const std::string& reason) {
    return failure(
        KeyChainError{KeyChainErrorKind::damaged,
                      "The key chain '" + where.native() + "' " + reason +
                          " Put a backup in its place, or move it away and connect the accounts anew."});
}

auto wrongPassphrase(const Path& where, const char* reason) {
    return failure(KeyChainError{KeyChainErrorKind::wrongPassphrase,
                                 "The key chain '" + where.native() + "' " + reason});
}

KeyChainHeader newHeader(bool hasPassphrase, PassphraseCost cost) {
    KeyChainHeader header;
    if (hasPassphrase) {
        const bool isModerate = cost == PassphraseCost::moderate;
        header.keySource = KeySource::passphrase;
        header.passes = isModerate ? crypto_pwhash_OPSLIMIT_MODERATE : crypto_pwhash_OPSLIMIT_INTERACTIVE;
        header.memory = isModerate ? crypto_pwhash_MEMLIMIT_MODERATE : crypto_pwhash_MEMLIMIT_INTERACTIVE;
        randombytes_buf(header.salt.data(), header.salt.size());
    }
    return header;
}

} // namespace

class FileKeyChainStore::File {
  public:
    File(Path where, std::optional<std::string> passphrase, PassphraseCost cost)
        : path_(std::move(where)), cost_(cost) {
        startSodium();
        if (passphrase) {
            passphrase_.emplace(std::string_view(*passphrase));
            wipe(*passphrase);
        }
    }

    const Path& where() const { return path_; }

    // `nullopt` if there is no file yet.
    Result<std::optional<KeyChainValues>, KeyChainError> load() {
        const auto bytes = readPrivateFile(path_, fileLimit);
        if (!bytes) {
            return failure(bytes.error());
        }
        if (!*bytes) {
            return std::nullopt;
        }
        const std::lock_guard guard(keyLock_);
        return open(**bytes);
    }

    // Reads, changes and writes the values under the lock between processes; writes only if `change` returns
    // true.
    template <class F> Result<bool, KeyChainError> update(F change) {
        if (const auto ready = preparePrivateDirectory(path_.parent_path()); !ready) {
            return failure(ready.error());
        }
        const auto lock = lockFile(with(path_, ".lock"));
        if (!lock) {
            return failure(lock.error());
        }
        auto values = load();
        if (!values) {
            return failure(values.error());
        }
        const bool isNew = !values->has_value();
        if (isNew) {
            values->emplace();
        }
        return change((*values)->byKey) ? save(**values, isNew) : Result<bool, KeyChainError>(false);
    }

  private:
    Result<std::optional<KeyChainValues>, KeyChainError> open(const Data& bytes) {
        const auto header = KeyChainHeader::read(bytes);
        if (!header) {
            return damaged(path_, "is damaged.");
        }
        if (const auto ready = useKeyOf(*header); !ready) {
            return failure(ready.error());
        }
        auto values = openKeyChain(bytes, key_);
        if (!values) {
            return damaged(path_, "is damaged.");
        }
        return values;
    }

    Result<bool, KeyChainError> save(const KeyChainValues& values, bool isNew) {
        const std::lock_guard guard(keyLock_);
        if (isNew) {
            const auto header = newHeader(passphrase_.has_value(), cost_);
            if (const auto ready = makeKeyOf(header); !ready) {
                return failure(ready.error());
            }
        }
        const auto written = replacePrivateFile(path_, sealKeyChain(values, header_, key_));
        return written ? Result<bool, KeyChainError>(true) : failure(written.error());
    }

    // Derives or reads the key of an existing file.
    Result<void, KeyChainError> useKeyOf(const KeyChainHeader& header) {
        const bool needsPassphrase = header.keySource == KeySource::passphrase;
        if (needsPassphrase != passphrase_.has_value()) {
            return wrongPassphrase(path_, needsPassphrase
                                              ? "needs its passphrase, and none was given."
                                              : "was made without a passphrase; open it without one.");
        }
        if (key_.size() == 0 || header.salt != header_.salt || !header.isOfKey(key_)) {
            auto key = needsPassphrase ? derivedKey(header) : storedKey();
            if (!key) {
                return failure(key.error());
            }
            if (!header.isOfKey(*key)) {
                return needsPassphrase
                           ? Result<void, KeyChainError>(wrongPassphrase(path_, "has another passphrase."))
                           : damaged(path_,
                                     "and its key file '" + keyPath().native() + "' do not belong together.");
            }
            key_ = std::move(*key);
        }
        header_ = header;
        return {};
    }

    // Makes the key of a new file.
    Result<void, KeyChainError> makeKeyOf(const KeyChainHeader& header) {
        auto key = passphrase_ ? derivedKey(header) : storedOrNewKey();
        if (!key) {
            return failure(key.error());
        }
        key_ = std::move(*key);
        header_ = header;
        return {};
    }

    Result<SecretBytes, KeyChainError> derivedKey(const KeyChainHeader& header) const {
        if (passphrase_->size() == 0) {
            return wrongPassphrase(path_, "cannot have an empty passphrase.");
        }
        auto key = keyOfPassphrase(*passphrase_, header);
        if (!key) {
            return failure(
                KeyChainError{KeyChainErrorKind::ioError,
                              "There is not enough memory to open the key chain '" + path_.native() + "'."});
        }
        return std::move(*key);
    }

    // `nullopt` if there is no key file.
    Result<std::optional<SecretBytes>, KeyChainError> readKeyFile() const {
        auto bytes = readPrivateFile(keyPath(), keyFileLimit);
        if (!bytes) {
            return failure(bytes.error());
        }
        if (!*bytes) {
            return std::nullopt;
        }
        auto key = openKeyFile(**bytes);
        wipe(**bytes);
        if (!key) {
            return damaged(path_, "cannot be opened: its key file '" + keyPath().native() + "' is damaged.");
        }
        return key;
    }

    Result<SecretBytes, KeyChainError> storedKey() const {
        auto key = readKeyFile();
        if (!key) {
            return failure(key.error());
        }
        if (!*key) {
            return damaged(path_, "cannot be opened: its key file '" + keyPath().native() + "' is missing.");
        }
        return std::move(**key);
    }

    // A key file without a key chain remains after a crash, or after a key chain was moved away.
    Result<SecretBytes, KeyChainError> storedOrNewKey() const {
        auto stored = readKeyFile();
        if (!stored) {
            return failure(stored.error());
        }
        if (*stored) {
            return std::move(**stored);
        }
        SecretBytes key(keyChainKeySize);
        randombytes_buf(key.data(), key.size());
        const auto sealed = sealKeyFile(key);
        const auto written = replacePrivateFile(keyPath(), {sealed.data(), sealed.size()});
        if (!written) {
            return failure(written.error());
        }
        return key;
    }

    Path keyPath() const { return with(path_, ".key"); }

    const Path path_;
    const PassphraseCost cost_;
    std::optional<SecretBytes> passphrase_;

    std::mutex keyLock_;
    KeyChainHeader header_; // of the file when it was last read
    SecretBytes key_;       // the key for it; empty before the first use
};

FileKeyChainStore::FileKeyChainStore(std::filesystem::path path, std::optional<std::string> passphrase,
                                     PassphraseCost cost)
    : file_(std::make_unique<File>(std::move(path), std::move(passphrase), cost)) {}

FileKeyChainStore::~FileKeyChainStore() = default;

const std::filesystem::path& FileKeyChainStore::path() const {
    return file_->where();
}

Result<std::optional<Data>, KeyChainError> FileKeyChainStore::read(const std::string& key) {
    auto values = file_->load();
    if (!values) {
        return failure(values.error());
    }
    if (!*values) {
        return std::nullopt;
    }
    const auto& all = (*values)->byKey;
    const auto found = all.find(key);
    return found == all.end() ? std::nullopt : std::optional<Data>(found->second);
}

Result<void, KeyChainError> FileKeyChainStore::write(const std::string& key, const Data& value) {
    const auto written = file_->update([&](auto& values) {
        wipe(values[key]);
        values[key] = value;
        return true;
    });
    return written ? Result<void, KeyChainError>() : failure(written.error());
}

Result<bool, KeyChainError> FileKeyChainStore::erase(const std::string& key) {
    const auto before = file_->load();
    if (!before) {
        return failure(before.error());
    }
    if (!*before || !(*before)->byKey.contains(key)) {
        return false;
    }
    return file_->update([&](auto& values) {
        const auto found = values.find(key);
        if (found == values.end()) {
            return false;
        }
        wipe(found->second);
        values.erase(found);
        return true;
    });
}

} // namespace zelto
