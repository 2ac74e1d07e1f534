#pragma once

#include <TrovenhalCommon/KeyChain/KeyChainError.h>
#include <ZeltoCommonLogger/LoggerClient.h>

#include <Platform/Data.h>
#include <Platform/Result.h>

#include <optional>
#include <string>

namespace zelto {

// Stores secrets by key. A key is any UTF-8 text without NUL, a value any bytes, possibly none. Any thread;
// calls may block on the disk or on another process, but never on user input.
class LVXKeyChainStore : protected LoggerClient {
  public:
    virtual ~LVXKeyChainStore() = default;

    // `nullopt` if there is no such key. A store that cannot be read is an error, never an empty store.
    virtual Result<std::optional<Data>, KeyChainError> read(const std::string& key) = 0;

    // Replaces a previous value. After an error the previous one is still stored.
    virtual Result<void, KeyChainError> write(const std::string& key, const Data& value) = 0;

    // False if there was no such key.
    virtual Result<bool, KeyChainError> erase(const std::string& key) = 0;

    // The same without the reason of a failure, which is logged as a warning.
    std::optional<Data> data(const std::string& key);
    bool set(const Data& value, const std::string& key);
    bool remove(const std::string& key); // false for an absent key too
};

} // namespace zelto
