#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>
#include <ZeltoIntegrations/IntegrationsManager.h>

#include <Support/AsanaExport.h>
#include <Support/Completed.h>
#include <Support/FakePlatformInteractor.h>
#include <Support/FakeStorage.h>
#include <Support/MemoryKeyChain.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using AccountResult = Result<ServiceAccountConfiguration, IntegrationAccountCreationError>;

// How often connecting opens the key chain: each time may ask the user, or take as long as opening a file.
class ConnectingKeyChain : public testing::Test {
  protected:
    static ServiceAccountConfiguration signedIn(Date expirationDate) {
        ServiceAccountConfiguration account(ServiceType::Asana, std::nullopt, true);
        account.credentials = ServiceAccountCredentials::forIdentifier(account.identifier());
        account.credentials->accessToken = "token";
        account.credentials->refreshToken = "refresh-1";
        account.credentials->expirationDate = expirationDate;
        return account;
    }

    static ServiceAccountConfiguration fresh() { return signedIn(Date::now() + TimeInterval(3600)); }

    static ServiceAccountConfiguration stale() { return signedIn(Date::fromReferenceSeconds(0)); }

    ServiceAccountConfiguration connected(const ServiceAccountConfiguration& account) {
        Completed<AccountResult> ended;
        manager.trySaveServiceConfiguration(account,
                                            ended.callback<IntegrationsManager::AccountCompletion>());
        return ended.value().value();
    }

    ServiceAccountConfiguration reconnected(const ServiceAccountConfiguration& account,
                                            const ServiceAccountConfiguration& old) {
        Completed<AccountResult> ended;
        manager.tryUpdateServiceConfiguration(account, old,
                                              ended.callback<IntegrationsManager::AccountCompletion>());
        return ended.value().value();
    }

    // "read flow", "write account" and so on, since the last look.
    Texts takeCalls() const {
        auto calls = keyChain.takeCalls();
        for (auto& call : calls) {
            const auto end = call.find(' ');
            const auto key = call.substr(end + 1);
            const bool isFlows = ServiceAccountCredentials::isFlowKey(key);
            const bool isAccounts = key == "ServiceCredentials - Asana+me@example.org";
            call = call.substr(0, end) + " " + (isFlows ? "flow" : isAccounts ? "account" : key);
        }
        return calls;
    }

    const MemoryKeyChain keyChain;
    AsanaServer server;
    IntegrationsManager manager{std::make_shared<FakeStorage>(), std::make_shared<FakePlatformInteractor>(),
                                [](const std::string&) { return true; }, ""};
};

} // namespace

TEST_F(ConnectingKeyChain, IsOpenedThreeTimesWithoutARefresh) {
    const auto account = connected(fresh());
    EXPECT_EQ(takeCalls(), (Texts{"read flow", "erase flow", "write account"}));
    reconnected(fresh(), account);
    EXPECT_EQ(takeCalls(), (Texts{"read flow", "erase flow", "write account"}));
}

TEST_F(ConnectingKeyChain, IsOpenedFiveTimesWithARefresh) {
    const auto account = connected(stale());
    EXPECT_EQ(account.credentials->accessToken, "fresh");
    EXPECT_EQ(takeCalls(), (Texts{"read flow", "read flow", "write flow", "erase flow", "write account"}));
    reconnected(stale(), account);
    EXPECT_EQ(takeCalls(), (Texts{"read flow", "read flow", "write flow", "erase flow", "write account"}));
}

} // namespace zelto
