#include <zelto/StoredAccount.h>

#include <TrovenhalCommon/KeyChain/FileKeyChainStore.h>
#include <ZeltoHost/Storage/RestorableKeyChain.h>
#include <ZeltoHost/Storage/SQLiteAccountStorage.h>
#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>

#include <Support/MemoryKeyChain.h>

namespace zelto {

namespace {

std::shared_ptr<FileKeyChainStore> keyChainOf(const ZeltoProgram& zelto) {
    return std::make_shared<FileKeyChainStore>(zelto.dataDirectory() / "keychain", std::nullopt);
}

} // namespace

void addAccount(const ZeltoProgram& zelto, ServiceAccountConfiguration account, AccountOf place) {
    account.credentials = ServiceAccountCredentials::forIdentifier(account.identifier());
    const auto storage = SQLiteAccountStorage::open(zelto.dataDirectory()).value();
    storage->setMarksNewOfSandbox(place == AccountOf::sandbox);
    storage->save(account);
    account.credentials->accessToken = "token";
    account.credentials->expirationDate = Date::distantFuture();
    storeTokens(zelto, *account.credentials);
}

void storeTokens(const ZeltoProgram& zelto, ServiceAccountCredentials credentials) {
    const InstalledKeyChain keyChain(keyChainOf(zelto));
    ServiceCredentialsManager::store(credentials);
}

void wipeTokens(const ZeltoProgram& zelto, const std::string& identifier) {
    const InstalledKeyChain keyChain(
        std::make_shared<RestorableKeyChain>(keyChainOf(zelto), "file", zelto.dataDirectory()));
    ServiceCredentialsManager::store(ServiceAccountCredentials::forIdentifier(identifier));
}

ServiceAccountCredentials storedTokens(const ZeltoProgram& zelto, const std::string& identifier) {
    const InstalledKeyChain keyChain(keyChainOf(zelto));
    auto credentials = ServiceAccountCredentials::forIdentifier(identifier);
    ServiceCredentialsManager::load(credentials);
    return credentials;
}

} // namespace zelto
