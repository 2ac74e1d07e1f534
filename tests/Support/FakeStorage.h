#pragma once

#include <ZeltoIntegrations/Accounts/ServiceConfigurationsStorage.h>

#include <algorithm>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace zelto {

// Accounts in memory, in the order of their first saving, with a list of the calls.
class FakeStorage final : public ServiceConfigurationsStorage {
  public:
    // Called before an account is saved or removed.
    std::function<void()> onChange = [] {};

    void save(const ServiceAccountConfiguration& configuration) override {
        onChange();
        const std::lock_guard guard(lock_);
        calls_.push_back("save " + configuration.identifier());
        const auto stored = find(configuration.identifier());
        if (stored == accounts_.end()) {
            accounts_.push_back(configuration);
        } else {
            *stored = configuration;
        }
    }

    void remove(const ServiceAccountConfiguration& configuration) override {
        onChange();
        const std::lock_guard guard(lock_);
        calls_.push_back("remove " + configuration.identifier());
        const auto stored = find(configuration.identifier());
        if (stored != accounts_.end()) {
            accounts_.erase(stored);
        }
    }

    std::optional<ServiceAccountConfiguration> load(const std::string& identifier) override {
        const std::lock_guard guard(lock_);
        const auto stored = find(identifier);
        return stored == accounts_.end() ? std::nullopt : std::optional(*stored);
    }

    void setLastUsedConfiguration(ServiceType serviceType,
                                  const std::optional<ServiceAccountConfiguration>& configuration) override {
        const std::lock_guard guard(lock_);
        lastUsed_.erase(serviceType);
        if (configuration) {
            lastUsed_.emplace(serviceType, *configuration);
        }
    }

    std::optional<ServiceAccountConfiguration> lastUsedConfiguration(ServiceType serviceType) override {
        const std::lock_guard guard(lock_);
        const auto stored = lastUsed_.find(serviceType);
        return stored == lastUsed_.end() ? std::nullopt : std::optional(stored->second);
    }

    std::vector<ServiceAccountConfiguration> loadConfigurations() override {
        const std::lock_guard guard(lock_);
        return accounts_;
    }

    std::vector<std::string> calls() const {
        const std::lock_guard guard(lock_);
        return calls_;
    }

  private:
    std::vector<ServiceAccountConfiguration>::iterator find(const std::string& identifier) {
        return std::ranges::find_if(accounts_,
                                    [&](const auto& account) { return account.identifier() == identifier; });
    }

    mutable std::mutex lock_;
    std::vector<ServiceAccountConfiguration> accounts_;
    std::map<ServiceType, ServiceAccountConfiguration> lastUsed_;
    std::vector<std::string> calls_;
};

} // namespace zelto
