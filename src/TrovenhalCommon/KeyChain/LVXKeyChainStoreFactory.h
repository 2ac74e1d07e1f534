#pragma once

#include <TrovenhalCommon/KeyChain/LVXKeyChainStore.h>

#include <memory>

namespace zelto {

// The key chain in force. Any thread.
struct LVXKeyChainStoreFactory {
    LVXKeyChainStoreFactory() = delete;

    // The host's store; without one the default, which is chosen at the first call and stays: the Secret
    // Service where the session offers it (a locked one too), else an encrypted file in the user's data
    // directory. Never nothing.
    static std::shared_ptr<LVXKeyChainStore> keyChainStore();

    // Nothing goes back to the default. Stores in use live on with whoever holds them.
    static void setStore(std::shared_ptr<LVXKeyChainStore> store);
};

} // namespace zelto
