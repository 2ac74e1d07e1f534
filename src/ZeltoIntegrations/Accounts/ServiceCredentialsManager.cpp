#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>

#include <ZeltoIntegrations/Accounts/LiveSecrets.h>

#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>

#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

// The value of a key in the key chain.
struct CredentialsData {
    std::optional<std::string> accessToken;
    std::optional<std::string> refreshToken;
    std::optional<std::string> tokenSecret;
    std::optional<std::string> password;
    std::optional<std::string> loginName;
    std::optional<Date> expirationDate;
    std::optional<std::map<std::string, std::string>> additionalInfo;
};

ZELTO_JSON_CODED(CredentialsData);
ZELTO_JSON_RECORD(CredentialsData, accessToken, refreshToken, tokenSecret, password, loginName,
                  expirationDate, additionalInfo);

namespace {

// Calls the function with each of the seven fields of both records.
template <class From, class To, class F> void forEachField(const From& from, To& to, F function) {
    function(from.accessToken, to.accessToken);
    function(from.refreshToken, to.refreshToken);
    function(from.tokenSecret, to.tokenSecret);
    function(from.password, to.password);
    function(from.loginName, to.loginName);
    function(from.expirationDate, to.expirationDate);
    function(from.additionalInfo, to.additionalInfo);
}

constexpr auto copy = [](const auto& from, auto& to) { to = from; };

constexpr auto fillAbsent = [](const auto& from, auto& to) {
    if (!to) {
        to = from;
    }
};

} // namespace

void ServiceCredentialsManager::fill(const ServiceAccountCredentials& from, ServiceAccountCredentials& to) {
    maskInLog(from);
    forEachField(from, to, copy);
}

void ServiceCredentialsManager::store(const ServiceAccountCredentials& credentials) {
    maskInLog(credentials);
    CredentialsData data;
    forEachField(credentials, data, copy);
    const auto text = JSONEncoder().encode(data);
    if (!text) {
        return lvxLogError("Failed to encode service credentials", "store(credentials:)");
    }
    store(dataOf(*text), credentials.serviceCredentialsKey);
}

void ServiceCredentialsManager::load(ServiceAccountCredentials& credentials) {
    const auto stored = load(credentials.serviceCredentialsKey);
    if (!stored) {
        return;
    }
    const auto data = JSONDecoder().decode<CredentialsData>(viewOf(*stored));
    if (!data) {
        return lvxLogError("Failed to decode service credentials", "load(credentials:)");
    }
    forEachField(*data, credentials, fillAbsent);
    maskInLog(credentials);
}

void ServiceCredentialsManager::remove(const ServiceAccountCredentials& credentials) {
    remove(credentials.serviceCredentialsKey);
}

void ServiceCredentialsManager::store(const Data& value, const std::string& key) {
    if (!LVXKeyChainStoreFactory::keyChainStore()->set(value, key)) {
        lvxLogError("Failed to save " + key + " to keychain with error", "store(value:forKey:)");
    }
}

std::optional<Data> ServiceCredentialsManager::load(const std::string& key) {
    auto value = LVXKeyChainStoreFactory::keyChainStore()->data(key);
    if (!value) {
        lvxLogError("Failed to load " + key + " from keychain with error", "load(key:)");
    }
    return value;
}

void ServiceCredentialsManager::remove(const std::string& key) {
    if (!LVXKeyChainStoreFactory::keyChainStore()->remove(key)) {
        lvxLogError("Failed to remove " + key + " to keychain with error", "remove(key:)");
    }
}

} // namespace zelto
