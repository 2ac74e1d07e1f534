#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>

#include <TrovenhalCommon/KeyChain/FileKeyChainStore.h>
#include <TrovenhalCommon/KeyChain/SecretServiceKeyChainStore.h>

#include <Platform/FileManager.h>

#include <mutex>

namespace zelto {

namespace {

struct CurrentStore {
    std::mutex lock;
    std::shared_ptr<LVXKeyChainStore> chosen;   // by the host
    std::shared_ptr<LVXKeyChainStore> default_; // created when needed
};

CurrentStore& current() {
    static auto& store = *new CurrentStore;
    return store;
}

} // namespace

std::shared_ptr<LVXKeyChainStore> LVXKeyChainStoreFactory::keyChainStore() {
    auto& store = current();
    const std::lock_guard guard(store.lock);
    if (store.chosen) {
        return store.chosen;
    }
    if (!store.default_) {
        store.default_ = defaultStore();
    }
    return store.default_;
}

std::shared_ptr<LVXKeyChainStore> LVXKeyChainStoreFactory::defaultStore() {
    if (SecretServiceKeyChainStore::isOffered()) {
        return std::make_shared<SecretServiceKeyChainStore>();
    }
    return std::make_shared<FileKeyChainStore>(FileManager::userDataDirectory() / "zelto" / "keychain");
}

void LVXKeyChainStoreFactory::setStore(std::shared_ptr<LVXKeyChainStore> store) {
    auto& held = current();
    const std::lock_guard guard(held.lock);
    held.chosen.swap(store);
}

} // namespace zelto
