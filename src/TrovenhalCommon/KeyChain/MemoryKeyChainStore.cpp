#include <TrovenhalCommon/KeyChain/MemoryKeyChainStore.h>

#include <cstring>

namespace zelto {

namespace {

void wipe(Data& value) {
    if (!value.empty()) {
        explicit_bzero(value.data(), value.size());
    }
}

} // namespace

MemoryKeyChainStore::~MemoryKeyChainStore() {
    for (auto& [key, value] : values_) {
        wipe(value);
    }
}

Result<std::optional<Data>, KeyChainError> MemoryKeyChainStore::read(const std::string& key) {
    const std::lock_guard guard(lock_);
    const auto found = values_.find(key);
    return found == values_.end() ? std::nullopt : std::optional<Data>(found->second);
}

Result<void, KeyChainError> MemoryKeyChainStore::write(const std::string& key, const Data& value) {
    const std::lock_guard guard(lock_);
    auto& stored = values_[key];
    wipe(stored);
    stored = value;
    return {};
}

Result<bool, KeyChainError> MemoryKeyChainStore::erase(const std::string& key) {
    const std::lock_guard guard(lock_);
    const auto found = values_.find(key);
    if (found == values_.end()) {
        return false;
    }
    wipe(found->second);
    values_.erase(found);
    return true;
}

} // namespace zelto
