#pragma once

#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>

#include <filesystem>
#include <mutex>
#include <optional>
#include <string>

namespace zelto::cli {

// The key chain that the user chose, or else the session's where it has one and a file where not. It is
// looked for at the first use: most calls need no secret, and asking the session takes time.
class DeferredKeyChain final : public LVXKeyChainStore {
  public:
    DeferredKeyChain(std::optional<std::string> kind, std::filesystem::path file)
        : kind_(std::move(kind)), file_(std::move(file)) {}

    Result<std::optional<Data>, KeyChainError> read(const std::string& key) override {
        return store().read(key);
    }

    Result<void, KeyChainError> write(const std::string& key, const Data& value) override {
        return store().write(key, value);
    }

    Result<bool, KeyChainError> erase(const std::string& key) override { return store().erase(key); }

  private:
    LVXKeyChainStore& store();

    const std::optional<std::string> kind_;
    const std::filesystem::path file_;
    std::once_flag chosen_;
    std::shared_ptr<LVXKeyChainStore> store_;
};

} // namespace zelto::cli
