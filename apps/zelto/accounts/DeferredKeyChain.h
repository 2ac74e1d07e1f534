#pragma once

#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

namespace zelto::cli {

// The key chain that the user chose, or else the session's where it has one and a file where not. It is
// looked for at the first use: most calls need no secret, and asking the session takes time.
class DeferredKeyChain final : public LVXKeyChainStore {
  public:
    // Takes $ZELTO_KEYCHAIN_PASSPHRASE out of the environment, so that no program that is started sees it.
    DeferredKeyChain(std::optional<std::string> kind, std::filesystem::path file);

    Result<std::optional<Data>, KeyChainError> read(const std::string& key) override {
        return store().read(key);
    }

    Result<void, KeyChainError> write(const std::string& key, const Data& value) override {
        return store().write(key, value);
    }

    Result<bool, KeyChainError> erase(const std::string& key) override { return store().erase(key); }

  private:
    LVXKeyChainStore& store();

    const std::optional<std::string> kind_;
    const std::filesystem::path file_;
    const std::optional<std::string> passphrase_;
    std::once_flag chosen_;
    std::shared_ptr<LVXKeyChainStore> store_;
};

} // namespace zelto::cli
