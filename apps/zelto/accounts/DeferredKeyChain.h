#pragma once

#include "accounts/KeyChainKind.h"

#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>
#include <ZeltoHost/Storage/RestorableKeyChain.h>

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
    DeferredKeyChain(std::optional<KeyChainKind> kind, std::filesystem::path dataDirectory);

    // The one in force; null where there is another one, as in a dry run.
    static std::shared_ptr<DeferredKeyChain> installed();

    Result<std::optional<Data>, KeyChainError> read(const std::string& key) override {
        return opened().store->read(key);
    }

    Result<void, KeyChainError> write(const std::string& key, const Data& value) override {
        return opened().store->write(key, value);
    }

    Result<bool, KeyChainError> erase(const std::string& key) override { return opened().store->erase(key); }

    // These open it too.
    KeyChainKind kind() { return opened().kind; }

    RestorableKeyChain& restorable() { return *opened().store; }

    // A key chain of that kind for the same data directory, whichever is in force.
    std::shared_ptr<LVXKeyChainStore> storeOf(KeyChainKind kind) const;
    std::shared_ptr<RestorableKeyChain> restorableOf(KeyChainKind kind) const;

  private:
    struct Opened {
        KeyChainKind kind = KeyChainKind::memory;
        std::shared_ptr<RestorableKeyChain> store;
    };

    Opened& opened();

    const std::optional<KeyChainKind> kind_;
    const std::filesystem::path dataDirectory_;
    const std::optional<std::string> passphrase_;
    std::once_flag chosen_;
    Opened opened_;
};

} // namespace zelto::cli
