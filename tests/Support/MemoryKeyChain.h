#pragma once

#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

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

// A key chain in memory that keeps what was asked of it, and fails where a test says so. Any thread.
class RecordingKeyChainStore final : public LVXKeyChainStore {
  public:
    Result<std::optional<Data>, KeyChainError> read(const std::string& key) override {
        const std::lock_guard guard(lock_);
        calls_.push_back("read " + key);
        if (isLocked_ || isUnreadable_) {
            return failure(lockedError());
        }
        const auto value = values_.find(key);
        return value == values_.end() ? std::nullopt : std::optional(value->second);
    }

    Result<void, KeyChainError> write(const std::string& key, const Data& value) override {
        const std::lock_guard guard(lock_);
        calls_.push_back("write " + key);
        if (isLocked_) {
            return failure(lockedError());
        }
        values_.insert_or_assign(key, value);
        return {};
    }

    Result<bool, KeyChainError> erase(const std::string& key) override {
        const std::lock_guard guard(lock_);
        calls_.push_back("erase " + key);
        if (isLocked_) {
            return failure(lockedError());
        }
        return values_.erase(key) != 0;
    }

    void setLocked(bool locked) {
        const std::lock_guard guard(lock_);
        isLocked_ = locked;
    }

    void setUnreadable(bool unreadable) {
        const std::lock_guard guard(lock_);
        isUnreadable_ = unreadable;
    }

    // "read KEY", "write KEY", "erase KEY", in order.
    std::vector<std::string> takeCalls() {
        const std::lock_guard guard(lock_);
        return std::exchange(calls_, {});
    }

    std::map<std::string, Data> values() const {
        const std::lock_guard guard(lock_);
        return values_;
    }

    void set(const std::string& key, const Data& value) {
        const std::lock_guard guard(lock_);
        values_.insert_or_assign(key, value);
    }

    void clear() {
        const std::lock_guard guard(lock_);
        values_.clear();
    }

  private:
    static KeyChainError lockedError() { return {KeyChainErrorKind::locked, "The key chain is locked."}; }

    mutable std::mutex lock_;
    std::map<std::string, Data> values_;
    std::vector<std::string> calls_;
    bool isLocked_ = false;
    bool isUnreadable_ = false;
};

// An empty key chain in memory, installed as long as this lives.
class MemoryKeyChain {
  public:
    std::optional<std::string> text(const std::string& key) const {
        const auto values = store_->values();
        const auto value = values.find(key);
        return value == values.end() ? std::nullopt : std::optional(std::string(viewOf(value->second)));
    }

    void setText(const std::string& key, const std::string& text) const { store_->set(key, dataOf(text)); }

    std::vector<std::string> keys() const {
        std::vector<std::string> keys;
        for (const auto& [key, value] : store_->values()) {
            keys.push_back(key);
        }
        return keys;
    }

    // "read KEY", "write KEY", "erase KEY", in order, since the last look.
    std::vector<std::string> takeCalls() const { return store_->takeCalls(); }

    void clear() const { store_->clear(); }

    // While it is locked, it can be neither read nor written.
    void setLocked(bool locked) const { store_->setLocked(locked); }

    // While it is unreadable, it can be written.
    void setUnreadable(bool unreadable) const { store_->setUnreadable(unreadable); }

  private:
    std::shared_ptr<RecordingKeyChainStore> store_ = std::make_shared<RecordingKeyChainStore>();
    InstalledKeyChain installed_{store_};
};

} // namespace zelto
