#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>

#include <TrovenhalCommon/KeyChain/MemoryKeyChainStore.h>

#include <mutex>

namespace zelto {

namespace {

struct CurrentStore {
    std::mutex lock;
    std::shared_ptr<LVXKeyChainStore> chosen;   // by the host
    std::shared_ptr<LVXKeyChainStore> default_; // once needed
};

CurrentStore& current() {
    static CurrentStore store;
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
        store.default_ = std::make_shared<MemoryKeyChainStore>();
    }
    return store.default_;
}

void LVXKeyChainStoreFactory::setStore(std::shared_ptr<LVXKeyChainStore> store) {
    auto& current_ = current();
    const std::lock_guard guard(current_.lock);
    current_.chosen.swap(store);
}

} // namespace zelto
