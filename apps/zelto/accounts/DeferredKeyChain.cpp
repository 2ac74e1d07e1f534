#include "accounts/DeferredKeyChain.h"

#include "accounts/SecretInputs.h"

#include <TrovenhalCommon/KeyChain/FileKeyChainStore.h>
#include <TrovenhalCommon/KeyChain/MemoryKeyChainStore.h>
#include <TrovenhalCommon/KeyChain/SecretServiceKeyChainStore.h>
#include <ZeltoHost/Storage/SQLiteAccountStorage.h>

#include <chrono>

namespace zelto::cli {

namespace {

constexpr const char* applicationName = "zelto";
constexpr std::chrono::seconds secretServiceTimeLimit{15};

// In place of a key chain that cannot be had.
class FailingKeyChain final : public LVXKeyChainStore {
  public:
    explicit FailingKeyChain(KeyChainError error) : error_(std::move(error)) {}

    Result<std::optional<Data>, KeyChainError> read(const std::string&) override { return failure(error_); }

    Result<void, KeyChainError> write(const std::string&, const Data&) override { return failure(error_); }

    Result<bool, KeyChainError> erase(const std::string&) override { return failure(error_); }

  private:
    const KeyChainError error_;
};

// One desktop has one such key chain, whatever the number of data directories.
std::shared_ptr<LVXKeyChainStore> secretServiceOf(const std::filesystem::path& dataDirectory) {
    const auto storage = SQLiteAccountStorage::openForReading(dataDirectory);
    const auto identity = storage ? (*storage)->tryDirectoryIdentity() : failure(storage.error());
    if (!identity) {
        return std::make_shared<FailingKeyChain>(
            KeyChainError{KeyChainErrorKind::ioError, identity.error().message()});
    }
    std::optional<SecretServiceOwner> owner;
    if (!identity->text.empty()) {
        owner = {identity->text, identity->hadAccounts};
    }
    return std::make_shared<SecretServiceKeyChainStore>(applicationName, secretServiceTimeLimit, owner);
}

KeyChainKind kindOfSession() {
    return SecretServiceKeyChainStore::isOffered() ? KeyChainKind::secretService : KeyChainKind::file;
}

} // namespace

DeferredKeyChain::DeferredKeyChain(std::optional<KeyChainKind> kind, std::filesystem::path dataDirectory)
    : kind_(kind), dataDirectory_(std::move(dataDirectory)),
      passphrase_(takeVariable("ZELTO_KEYCHAIN_PASSPHRASE")) {}

std::shared_ptr<DeferredKeyChain> DeferredKeyChain::installed() {
    return std::dynamic_pointer_cast<DeferredKeyChain>(LVXKeyChainStoreFactory::keyChainStore());
}

std::shared_ptr<LVXKeyChainStore> DeferredKeyChain::storeOf(KeyChainKind kind) const {
    switch (kind) {
    case KeyChainKind::secretService:
        return secretServiceOf(dataDirectory_);
    case KeyChainKind::file:
        return std::make_shared<FileKeyChainStore>(dataDirectory_ / "keychain", passphrase_);
    case KeyChainKind::memory:
        return std::make_shared<MemoryKeyChainStore>();
    }
    return nullptr;
}

std::shared_ptr<RestorableKeyChain> DeferredKeyChain::restorableOf(KeyChainKind kind) const {
    return std::make_shared<RestorableKeyChain>(storeOf(kind), nameOfKind(kind), dataDirectory_);
}

DeferredKeyChain::Opened& DeferredKeyChain::opened() {
    std::call_once(chosen_, [this] {
        opened_.kind = kind_ ? *kind_ : kindOfSession();
        opened_.store = restorableOf(opened_.kind);
    });
    return opened_;
}

} // namespace zelto::cli
