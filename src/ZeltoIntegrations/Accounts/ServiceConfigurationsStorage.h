#pragma once

#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

// Where the host keeps the accounts, without secrets: `additionalInfo` in full and the "credentials" JSON as
// it stands. Called from any thread. After loading a record the host fills its secrets with
// ServiceCredentialsManager.
class ServiceConfigurationsStorage {
  public:
    virtual ~ServiceConfigurationsStorage() = default;

    // Inserts or replaces the account of that identifier.
    virtual void save(const ServiceAccountConfiguration& configuration) = 0;
    virtual void remove(const ServiceAccountConfiguration& configuration) = 0;
    virtual std::optional<ServiceAccountConfiguration> load(const std::string& identifier) = 0;

    // The account used last for a type. Setting no value forgets which that was.
    virtual void
    setLastUsedConfiguration(ServiceType serviceType,
                             const std::optional<ServiceAccountConfiguration>& configuration) = 0;
    virtual std::optional<ServiceAccountConfiguration> lastUsedConfiguration(ServiceType serviceType) = 0;

    // All accounts, in the order that the user sees.
    virtual std::vector<ServiceAccountConfiguration> loadConfigurations() = 0;
};

} // namespace zelto
