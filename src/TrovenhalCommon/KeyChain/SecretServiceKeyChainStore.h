#pragma once

#include <TrovenhalCommon/KeyChain/LVXKeyChainStore.h>

#include <chrono>

namespace zelto {

// The desktop's key chain, reached over the session bus (the Secret Service of freedesktop.org): the user's
// default collection, an item a key with the attributes "application" and "key". Values are stored as Base64,
// which every service keeps as it is.
//
// Nothing here asks the user: a locked collection is the error `locked`, and no answer within the time limit
// is `unavailable`. So is a session without a service, and one without a default collection.
class SecretServiceKeyChainStore final : public LVXKeyChainStore {
  public:
    explicit SecretServiceKeyChainStore(std::string application = "zelto",
                                        std::chrono::milliseconds timeLimit = std::chrono::seconds(15));

    // Whether the session's bus has such a service or can start it; it may be locked or broken all the same.
    static bool isOffered();

    Result<std::optional<Data>, KeyChainError> read(const std::string& key) override;
    Result<void, KeyChainError> write(const std::string& key, const Data& value) override;
    Result<bool, KeyChainError> erase(const std::string& key) override;

  private:
    std::string application_;
    std::chrono::milliseconds timeLimit_;
};

} // namespace zelto
