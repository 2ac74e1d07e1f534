#include "accounts/DeferredKeyChain.h"

#include "accounts/SecretInputs.h"

#include <TrovenhalCommon/KeyChain/FileKeyChainStore.h>
#include <TrovenhalCommon/KeyChain/MemoryKeyChainStore.h>
#include <TrovenhalCommon/KeyChain/SecretServiceKeyChainStore.h>

namespace zelto::cli {

namespace {

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
        return std::make_shared<SecretServiceKeyChainStore>();
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
