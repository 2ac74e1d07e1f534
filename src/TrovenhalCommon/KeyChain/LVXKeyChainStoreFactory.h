#pragma once

#include <TrovenhalCommon/KeyChain/LVXKeyChainStore.h>

#include <memory>

namespace zelto {

// The key chain in force. Any thread.
struct LVXKeyChainStoreFactory {
    LVXKeyChainStoreFactory() = delete;

    // The host's store; without one the default, which is chosen at the first call and stays. Never nothing.
    static std::shared_ptr<LVXKeyChainStore> keyChainStore();

    // Nothing goes back to the default. Stores in use live on with whoever holds them.
    static void setStore(std::shared_ptr<LVXKeyChainStore> store);

    // A new store of the kind that suits this session: the Secret Service where one is offered, a locked or
    // broken one too, else the encrypted file "zelto/keychain" in the user's data directory ($XDG_DATA_HOME).
    static std::shared_ptr<LVXKeyChainStore> defaultStore();
};

} // namespace zelto
