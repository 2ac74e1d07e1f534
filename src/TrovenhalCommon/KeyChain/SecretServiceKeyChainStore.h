#pragma once

#include <TrovenhalCommon/KeyChain/LVXKeyChainStore.h>

#include <chrono>

namespace zelto {

// Whose items a store reads and writes, where several places of one application have the same keys.
struct SecretServiceOwner {
    std::string directory; // what tells the place from others; not empty
    // Items that say nothing of their place are found too, where the place has none of its own. They are
    // erased with its own, and otherwise left as they are.
    bool takesItemsOfNobody = false;
};

// The desktop's key chain, by the session bus (the Secret Service of freedesktop.org): the user's default
// collection, with one item per key that has the attributes "application" and "key", and "directory" where
// the store has an owner. Without an owner, it has the items without that attribute. Values are stored as
// Base64, which every service keeps unchanged.
//
// The user is never asked for anything: a locked collection is the error `locked`, and no response within the
// time limit is `unavailable`, as is a session without a service, or without a default collection.
class SecretServiceKeyChainStore final : public LVXKeyChainStore {
  public:
    explicit SecretServiceKeyChainStore(std::string application = "zelto",
                                        std::chrono::milliseconds timeLimit = std::chrono::seconds(15),
                                        std::optional<SecretServiceOwner> owner = std::nullopt);

    // Whether the session's bus has such a service or can start it; it may still be locked or broken.
    static bool isOffered();

    Result<std::optional<Data>, KeyChainError> read(const std::string& key) override;
    Result<void, KeyChainError> write(const std::string& key, const Data& value) override;
    Result<bool, KeyChainError> erase(const std::string& key) override;

  private:
    std::string application_;
    std::chrono::milliseconds timeLimit_;
    std::optional<SecretServiceOwner> owner_;
};

} // namespace zelto
