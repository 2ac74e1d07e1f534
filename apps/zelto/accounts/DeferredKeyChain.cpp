#include "accounts/DeferredKeyChain.h"

#include "accounts/SecretInputs.h"

#include <TrovenhalCommon/KeyChain/FileKeyChainStore.h>
#include <TrovenhalCommon/KeyChain/MemoryKeyChainStore.h>
#include <TrovenhalCommon/KeyChain/SecretServiceKeyChainStore.h>

namespace zelto::cli {

namespace {

std::shared_ptr<LVXKeyChainStore> makeStore(const std::optional<std::string>& kind,
                                            const std::filesystem::path& file,
                                            const std::optional<std::string>& passphrase) {
    if (kind == "memory") {
        return std::make_shared<MemoryKeyChainStore>();
    }
    const bool ofSession = kind ? kind == "secret-service" : SecretServiceKeyChainStore::isOffered();
    if (ofSession) {
        return std::make_shared<SecretServiceKeyChainStore>();
    }
    return std::make_shared<FileKeyChainStore>(file, passphrase);
}

} // namespace

DeferredKeyChain::DeferredKeyChain(std::optional<std::string> kind, std::filesystem::path file)
    : kind_(std::move(kind)), file_(std::move(file)), passphrase_(takeVariable("ZELTO_KEYCHAIN_PASSPHRASE")) {
}

LVXKeyChainStore& DeferredKeyChain::store() {
    std::call_once(chosen_, [this] { store_ = makeStore(kind_, file_, passphrase_); });
    return *store_;
}

} // namespace zelto::cli
