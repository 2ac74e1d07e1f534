#include <ZeltoIntegrations/Accounts/ServiceAccountCredentials.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

// The secrets have no JSON.
ZELTO_JSON_RECORD(ServiceAccountCredentials, serviceCredentialsKey);

ServiceAccountCredentials ServiceAccountCredentials::forIdentifier(const std::string& identifier) {
    ServiceAccountCredentials credentials;
    credentials.serviceCredentialsKey = "ServiceCredentials - " + identifier;
    return credentials;
}

} // namespace zelto
