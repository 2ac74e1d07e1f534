#pragma once

#include <TrovenhalCommon/KeyChain/LVXKeyChainStore.h>

#include <map>
#include <mutex>

namespace zelto {

// A key chain in memory, lost when the process ends.
class MemoryKeyChainStore final : public LVXKeyChainStore {
  public:
    ~MemoryKeyChainStore() override;

    Result<std::optional<Data>, KeyChainError> read(const std::string& key) override;
    Result<void, KeyChainError> write(const std::string& key, const Data& value) override;
    Result<bool, KeyChainError> erase(const std::string& key) override;

  private:
    std::mutex lock_;
    std::map<std::string, Data> values_;
};

} // namespace zelto
