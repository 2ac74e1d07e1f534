#pragma once

#include <ZeltoIntegrations/Accounts/ServiceAccountCredentials.h>
#include <ZeltoIntegrations/Accounts/ServiceType.h>

#include <Platform/JSON/JSONCoding.h>

#include <map>
#include <optional>
#include <string>

namespace zelto {

// One connected account, as the host stores it. Never holds a secret in its JSON.
class ServiceAccountConfiguration {
  public:
    ServiceAccountConfiguration(ServiceType serviceType, std::optional<std::string> userName, bool enabled);

    // A copy of `configuration` with another name and other credentials.
    ServiceAccountConfiguration(const ServiceAccountConfiguration& configuration,
                                std::optional<ServiceAccountCredentials> accountCredentials,
                                std::optional<std::string> userName);

    ServiceType serviceType() const { return serviceType_; }

    // The account's name on the service; a part of its identity.
    const std::optional<std::string>& userName() const { return userName_; }

    // The product name, and "+" and the user name where there is one. A type without a product name gives a
    // new random text at each call.
    std::string identifier() const;

    // Cached values lie in `additionalInfo` as JSON under "cached_" and the key. One that is missing or does
    // not decode is no value; one that does not encode removes the entry; an absent one is stored as "null".
    template <class T> std::optional<T> getCachedItem(const std::string& key) const {
        const auto text = cachedText(key);
        if (!text) {
            return std::nullopt;
        }
        auto item = JSONDecoder().decode<T>(*text);
        return item ? std::optional<T>(std::move(*item)) : std::nullopt;
    }

    template <class T> void setCachedItem(const std::optional<T>& item, const std::string& key) {
        auto text = JSONEncoder().encode(item);
        setCachedText(key, text ? std::optional<std::string>(std::move(*text)) : std::nullopt);
    }

    bool operator==(const ServiceAccountConfiguration& other) const;

    std::optional<std::string> displayName; // what the host shows; no part of the identity
    std::optional<ServiceAccountCredentials> credentials;
    bool enabled;
    std::map<std::string, std::string> additionalInfo;

  private:
    std::optional<std::string> cachedText(const std::string& key) const;
    void setCachedText(const std::string& key, std::optional<std::string> text);

    ServiceType serviceType_;
    std::optional<std::string> userName_;
};

ZELTO_JSON_CODED(ServiceAccountConfiguration);

} // namespace zelto
