#pragma once

#include <TrovenhalCommon/KeyChain/LVXKeyChainStore.h>

#include <memory>

namespace zelto {

// The process's current key chain. Any thread.
struct LVXKeyChainStoreFactory {
    LVXKeyChainStoreFactory() = delete;

    // The host's store; without one the default store, which is chosen at the first call and kept. Never
    // null.
    static std::shared_ptr<LVXKeyChainStore> keyChainStore();

    // Null restores the default. A store that is in use lives on with its users.
    static void setStore(std::shared_ptr<LVXKeyChainStore> store);

    // A new store that suits this session: the Secret Service if there is one, even if it is locked or
    // broken, else the encrypted file "zelto/keychain" in the user's data directory ($XDG_DATA_HOME).
    static std::shared_ptr<LVXKeyChainStore> defaultStore();
};

} // namespace zelto
