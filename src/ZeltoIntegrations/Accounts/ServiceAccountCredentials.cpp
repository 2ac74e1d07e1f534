#include <ZeltoIntegrations/Accounts/ServiceAccountCredentials.h>

#include <Platform/ASCII.h>
#include <Platform/JSON/JSONRecordDescription.h>
#include <Platform/UUID.h>

#include <algorithm>

namespace zelto {

// The secrets have no JSON.
ZELTO_JSON_RECORD(ServiceAccountCredentials, serviceCredentialsKey);

namespace {

constexpr std::string_view keyPrefix = "ServiceCredentials - ";
constexpr std::string_view flowSeparator = " - ";
constexpr std::size_t uuidLength = 36;

bool isUUIDCharacter(char c) {
    return c == '-' || isASCIIDigit(c) || (c >= 'a' && c <= 'f');
}

} // namespace

ServiceAccountCredentials ServiceAccountCredentials::forIdentifier(const std::string& identifier) {
    ServiceAccountCredentials credentials;
    credentials.serviceCredentialsKey = std::string(keyPrefix) + identifier;
    return credentials;
}

std::string ServiceAccountCredentials::flowKey(const std::string& serviceCredentialsKey) {
    return serviceCredentialsKey + std::string(flowSeparator) + uuid();
}

bool ServiceAccountCredentials::isFlowKey(std::string_view serviceCredentialsKey) {
    constexpr auto endLength = flowSeparator.size() + uuidLength;
    if (!serviceCredentialsKey.starts_with(keyPrefix) ||
        serviceCredentialsKey.size() < keyPrefix.size() + endLength) {
        return false;
    }
    const auto end = serviceCredentialsKey.substr(serviceCredentialsKey.size() - endLength);
    return end.starts_with(flowSeparator) &&
           std::ranges::all_of(end.substr(flowSeparator.size()), isUUIDCharacter);
}

} // namespace zelto
