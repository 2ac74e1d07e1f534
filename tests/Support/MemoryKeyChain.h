#pragma once

#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>
#include <TrovenhalCommon/KeyChain/MemoryKeyChainStore.h>

#include <memory>
#include <optional>
#include <string>

namespace zelto {

// Installs a key chain as long as this lives.
class InstalledKeyChain {
  public:
    explicit InstalledKeyChain(std::shared_ptr<LVXKeyChainStore> store) {
        LVXKeyChainStoreFactory::setStore(std::move(store));
    }

    ~InstalledKeyChain() { LVXKeyChainStoreFactory::setStore(nullptr); }

    InstalledKeyChain(const InstalledKeyChain&) = delete;
    InstalledKeyChain& operator=(const InstalledKeyChain&) = delete;
};

// An empty key chain in memory, installed as long as this lives.
class MemoryKeyChain {
  public:
    std::optional<std::string> text(const std::string& key) const {
        const auto value = store_->read(key).value();
        return value ? std::optional(std::string(viewOf(*value))) : std::nullopt;
    }

    void setText(const std::string& key, const std::string& text) const {
        store_->write(key, dataOf(text)).value();
    }

  private:
    std::shared_ptr<MemoryKeyChainStore> store_ = std::make_shared<MemoryKeyChainStore>();
    InstalledKeyChain installed_{store_};
};

} // namespace zelto
