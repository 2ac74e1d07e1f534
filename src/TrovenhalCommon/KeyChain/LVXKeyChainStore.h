#pragma once

#include <TrovenhalCommon/KeyChain/KeyChainError.h>
#include <ZeltoCommonLogger/LoggerClient.h>

#include <Platform/Data.h>
#include <Platform/Result.h>

#include <optional>
#include <string>

namespace zelto {

// Secrets by key. A key is any UTF-8 text without NUL, a value any bytes, empty ones too. Any thread; calls
// may block on the disk or on another process, never on a person.
class LVXKeyChainStore : protected LoggerClient {
  public:
    virtual ~LVXKeyChainStore() = default;

    // Nothing where there is no such key. A store that cannot be read is an error, never an empty one.
    virtual Result<std::optional<Data>, KeyChainError> read(const std::string& key) = 0;

    // Replaces the value before. On an error the old one still stands.
    virtual Result<void, KeyChainError> write(const std::string& key, const Data& value) = 0;

    // False where there was no such key.
    virtual Result<bool, KeyChainError> erase(const std::string& key) = 0;

    // The same without the reason, which goes to the log as a warning.
    std::optional<Data> data(const std::string& key);
    bool set(const Data& value, const std::string& key);
    bool remove(const std::string& key); // false for an absent key too
};

} // namespace zelto
