#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>

#include <ZeltoIntegrations/Accounts/LiveSecrets.h>

#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>

#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONRecordDescription.h>

#include <map>
#include <mutex>

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

// Held while a record is removed, and while one is stored that may have been.
struct Removals {
    std::mutex lock;
    std::map<std::string, std::uint64_t> counts; // by key
};

Removals& removals() {
    // Never destroyed: other threads may still store tokens when the process ends.
    static auto& all = *new Removals;
    return all;
}

} // namespace

void ServiceCredentialsManager::fill(const ServiceAccountCredentials& from, ServiceAccountCredentials& to) {
    maskInLog(from);
    forEachField(from, to, copy);
}

bool ServiceCredentialsManager::store(const ServiceAccountCredentials& credentials) {
    maskInLog(credentials);
    CredentialsData data;
    forEachField(credentials, data, copy);
    const auto text = JSONEncoder().encode(data);
    if (!text) {
        lvxLogError("Failed to encode service credentials", "store(credentials:)");
        return false;
    }
    return store(dataOf(*text), credentials.serviceCredentialsKey);
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

Result<std::optional<ServiceAccountCredentials>, KeyChainError>
ServiceCredentialsManager::stored(const std::string& serviceCredentialsKey) {
    constexpr auto function = "stored(serviceCredentialsKey:)";
    const auto value = LVXKeyChainStoreFactory::keyChainStore()->read(serviceCredentialsKey);
    if (!value) {
        lvxLogError("Failed to load " + serviceCredentialsKey + " from keychain: " + value.error().message,
                    function);
        return failure(value.error());
    }
    if (!*value) {
        return std::nullopt;
    }
    const auto data = JSONDecoder().decode<CredentialsData>(viewOf(**value));
    if (!data) {
        lvxLogError("Failed to decode service credentials", function);
        return failure(KeyChainError{KeyChainErrorKind::damaged, "The account's record is damaged."});
    }
    ServiceAccountCredentials credentials;
    credentials.serviceCredentialsKey = serviceCredentialsKey;
    forEachField(*data, credentials, copy);
    maskInLog(credentials);
    return credentials;
}

void ServiceCredentialsManager::remove(const ServiceAccountCredentials& credentials) {
    const std::lock_guard guard(removals().lock);
    ++removals().counts[credentials.serviceCredentialsKey];
    remove(credentials.serviceCredentialsKey);
}

bool ServiceCredentialsManager::holdsTokens(const Data& record) {
    const auto data = JSONDecoder().decode<CredentialsData>(viewOf(record));
    return data && (data->accessToken || data->refreshToken);
}

std::uint64_t ServiceCredentialsManager::removalCount(const std::string& serviceCredentialsKey) {
    const std::lock_guard guard(removals().lock);
    const auto found = removals().counts.find(serviceCredentialsKey);
    return found == removals().counts.end() ? 0 : found->second;
}

bool ServiceCredentialsManager::storeUnlessRemoved(const ServiceAccountCredentials& credentials,
                                                   std::uint64_t removalCount) {
    const std::lock_guard guard(removals().lock);
    const auto found = removals().counts.find(credentials.serviceCredentialsKey);
    const bool wasRemoved = found != removals().counts.end() && found->second != removalCount;
    return !wasRemoved && store(credentials);
}

bool ServiceCredentialsManager::store(const Data& value, const std::string& key) {
    const bool isStored = LVXKeyChainStoreFactory::keyChainStore()->set(value, key);
    if (!isStored) {
        lvxLogError("Failed to save " + key + " to keychain with error", "store(value:forKey:)");
    }
    return isStored;
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
