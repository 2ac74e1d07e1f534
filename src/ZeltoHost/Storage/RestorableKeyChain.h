#pragma once

#include <TrovenhalCommon/KeyChain/LVXKeyChainStore.h>

#include <Platform/Date.h>
#include <Platform/Enum.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <set>

namespace zelto {

enum class RestoreErrorCode {
    newerTokens, // the account has tokens
    nothingKept,
    tooOld, // and erased by now
    keyChain,
};
ZELTO_ENUM(RestoreErrorCode);

struct RestoreError {
    RestoreErrorCode code;
    std::string message; // of the key chain; empty for the other codes
};

// A key chain that keeps the tokens of an account for seven days after they were wiped: a token endpoint that
// is out of order makes an account lose its tokens, which may still be good.
//
// A wipe is known by what is written: a record without tokens in place of one with tokens. The former record
// then lies beside it in the same store, under a key of its own. Tokens that replace tokens keep nothing, and
// tokens that come later or the removal of the record erase what is kept. Nothing is restored by itself.
//
// What is kept is noted in the data directory, in files below "wiped" without a secret, so that it is found
// again when it is too old. Where it cannot be noted, nothing is kept. Any thread, and several processes.
class RestorableKeyChain final : public LVXKeyChainStore {
  public:
    static constexpr TimeInterval keptFor{7 * 24 * 60 * 60};

    // `name`: the host's word for that store among those that it uses with the data directory.
    RestorableKeyChain(std::shared_ptr<LVXKeyChainStore> store, std::string name,
                       std::filesystem::path dataDirectory);

    Result<std::optional<Data>, KeyChainError> read(const std::string& key) override;
    Result<void, KeyChainError> write(const std::string& key, const Data& value) override;
    // With what is kept of it.
    Result<bool, KeyChainError> erase(const std::string& key) override;

    // When the tokens of that record were wiped, if they can be restored.
    Result<std::optional<Date>, KeyChainError> wipeDate(const std::string& key);

    // Puts the kept record back. Nobody else may refresh the account's tokens at this moment (RefreshLock).
    Result<void, RestoreError> restore(const std::string& key);

    // Whether this object has seen the tokens of that record wiped, and has kept them.
    bool hasKept(const std::string& key) const;

    // Gives the store of that name, or null if it cannot be had.
    using StoreNamed = std::function<std::shared_ptr<LVXKeyChainStore>(const std::string& name)>;

    // Erases what was kept for too long in any store. Asks for a store only if there is something to erase in
    // it; what cannot be erased stays noted.
    static void eraseOld(const std::filesystem::path& dataDirectory, const StoreNamed& storeNamed);

  private:
    void keep(const std::string& key, const Data& record);
    Result<void, KeyChainError> forget(const std::string& key);
    Result<void, RestoreError> putBack(const std::string& key);

    const std::shared_ptr<LVXKeyChainStore> store_;
    const std::string name_;
    const std::filesystem::path dataDirectory_;
    mutable std::mutex lock_; // guards what follows
    std::set<std::string> keptKeys_;
};

} // namespace zelto
