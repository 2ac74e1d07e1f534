#pragma once

#include <ZeltoIntegrations/Accounts/ServiceConfigurationsStorage.h>

#include <memory>

namespace zelto::cli {

// Reads from another storage and writes nothing: for a dry run, which leaves no trace.
class UnchangedStorage final : public ServiceConfigurationsStorage {
  public:
    explicit UnchangedStorage(std::shared_ptr<ServiceConfigurationsStorage> storage)
        : storage_(std::move(storage)) {}

    void save(const ServiceAccountConfiguration&) override {}

    void remove(const ServiceAccountConfiguration&) override {}

    std::optional<ServiceAccountConfiguration> load(const std::string& identifier) override {
        return storage_->load(identifier);
    }

    void setLastUsedConfiguration(ServiceType, const std::optional<ServiceAccountConfiguration>&) override {}

    std::optional<ServiceAccountConfiguration> lastUsedConfiguration(ServiceType serviceType) override {
        return storage_->lastUsedConfiguration(serviceType);
    }

    std::vector<ServiceAccountConfiguration> loadConfigurations() override {
        return storage_->loadConfigurations();
    }

  private:
    std::shared_ptr<ServiceConfigurationsStorage> storage_;
};

} // namespace zelto::cli
