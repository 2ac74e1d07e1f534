#include <zelto/StoredAccount.h>

#include <TrovenhalCommon/KeyChain/FileKeyChainStore.h>
#include <ZeltoHost/Storage/SQLiteAccountStorage.h>
#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>

#include <Support/MemoryKeyChain.h>

namespace zelto {

void addAccount(const ZeltoProgram& zelto, ServiceAccountConfiguration account) {
    account.credentials = ServiceAccountCredentials::forIdentifier(account.identifier());
    SQLiteAccountStorage::open(zelto.dataDirectory()).value()->save(account);

    const InstalledKeyChain keyChain(
        std::make_shared<FileKeyChainStore>(zelto.dataDirectory() / "keychain", std::nullopt));
    account.credentials->accessToken = "token";
    ServiceCredentialsManager::store(*account.credentials);
}

} // namespace zelto
