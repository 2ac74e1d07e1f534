#pragma once

#include <TrovenhalCommon/KeyChain/LVXKeyChainStore.h>

#include <filesystem>
#include <memory>

namespace zelto {

// How long it takes to derive a key from a passphrase, for us and for anyone who guesses. Fixed when the file
// is created.
enum class PassphraseCost {
    interactive, // about 0.1 s and 64 MiB
    moderate,    // about 0.5 s and 256 MiB
};

// A key chain in one encrypted file of mode 0600. With a passphrase, the key is derived from it (Argon2id),
// once per store object. Without one, a random key is kept next to the file, in "<path>.key" of mode 0600:
// that protects a copy of the file, but not the account of its user.
//
// The file is created by the first write, its directory with mode 0700 if necessary. Any number of processes
// may use it at once: a write holds the lock of "<path>.lock" and replaces the whole file, so that a crash
// leaves the state before or after it. Values are read from the file each time. Files of another user, or
// that others may read or write, are refused.
class FileKeyChainStore final : public LVXKeyChainStore {
  public:
    explicit FileKeyChainStore(std::filesystem::path path,
                               std::optional<std::string> passphrase = std::nullopt,
                               PassphraseCost cost = PassphraseCost::moderate);
    ~FileKeyChainStore() override;

    const std::filesystem::path& path() const;

    Result<std::optional<Data>, KeyChainError> read(const std::string& key) override;
    Result<void, KeyChainError> write(const std::string& key, const Data& value) override;
    Result<bool, KeyChainError> erase(const std::string& key) override;

  private:
    class File;
    std::unique_ptr<File> file_;
};

} // namespace zelto
