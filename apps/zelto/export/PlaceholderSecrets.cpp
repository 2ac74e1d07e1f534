#include "export/PlaceholderSecrets.h"

#include <TrovenhalCommon/KeyChain/LVXKeyChainStoreFactory.h>
#include <TrovenhalCommon/KeyChain/MemoryKeyChainStore.h>
#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>

#include <memory>
#include <string>

namespace zelto::cli {

void usePlaceholderSecrets(const ServiceAccountConfiguration& account) {
    LVXKeyChainStoreFactory::setStore(std::make_shared<MemoryKeyChainStore>());
    if (!account.credentials) {
        return;
    }
    const std::string placeholder(placeholderSecret);
    auto credentials = *account.credentials;
    credentials.accessToken = placeholder;
    credentials.refreshToken = placeholder;
    credentials.tokenSecret = placeholder;
    credentials.password = placeholder;
    credentials.loginName = placeholder;
    // A token that never expires is not refreshed.
    credentials.expirationDate = Date::distantFuture();
    ServiceCredentialsManager::store(credentials);
}

} // namespace zelto::cli
