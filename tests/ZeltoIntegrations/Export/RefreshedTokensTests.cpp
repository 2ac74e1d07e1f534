#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>
#include <ZeltoIntegrations/Client/ServiceClient.h>
#include <ZeltoIntegrations/Export/AccountDataExporter.h>
#include <ZeltoIntegrations/Zoom/ZoomAuthoriser.h>

#include <Support/Completed.h>
#include <Support/FakeDataInteractor.h>
#include <Support/FakePlatformInteractor.h>
#include <Support/FakeStorage.h>
#include <Support/MemoryKeyChain.h>
#include <Support/RotatingService.h>
#include <Support/ServiceRoute.h>
#include <Support/TestHTTPServer.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

// Loads one item from a service that rotates.
class RotatingExporter final : public AccountDataExporter<Empty> {
  public:
    using AccountDataExporter::AccountDataExporter;

  private:
    std::optional<Empty> loadedData() const override { return std::nullopt; }

    void fetchData(StepRun& run, DataCompletion done) override {
        const auto client = clientOf<ServiceClient, ZoomAuthoriser>(run, done);
        ASSERT_TRUE(client);
        client->perform<Empty>(URLRequest(*URL::parse("https://api.example/item")), nullptr,
                               [done = std::move(done)](ServiceResult<Empty> item) mutable {
                                   if (!item) {
                                       return done(failure(loadError(item.error())));
                                   }
                                   done(*item);
                               });
    }
};

// An account of a service that rotates, whose token has expired, with the secrets filled by the host.
class RefreshedTokens : public testing::Test {
  protected:
    RefreshedTokens() {
        account.credentials = service.expiredCredentials(account.identifier());
        ServiceCredentialsManager::store(*account.credentials);
        keyChain.takeCalls();
    }

    std::shared_ptr<RotatingExporter> exporter() const {
        return std::make_shared<RotatingExporter>(account, storage,
                                                  std::make_shared<FakePlatformInteractor>(),
                                                  std::make_shared<FakeDataInteractor>(), std::nullopt, true);
    }

    static bool worked(RotatingExporter& exporter) {
        Completed<Result<void, IntegrationLoadError>> end;
        exporter.fetchServiceData(end.callback<Completion<void, IntegrationLoadError>>());
        return end.value().has_value();
    }

    const MemoryKeyChain keyChain;
    RotatingService service;
    ServiceAccountConfiguration account{ServiceType::ZoomMeeting, "alice", true};
    const std::shared_ptr<FakeStorage> storage = std::make_shared<FakeStorage>();
    const TestHTTPServer server{[this](const ReceivedRequest& request) { return service.respond(request); }};
    const ServiceRoute route{server};
};

} // namespace

TEST_F(RefreshedTokens, AreTheExportersTheStoragesAndTheKeyChains) {
    storage->save(account);
    const auto one = exporter();
    EXPECT_TRUE(worked(*one));
    const auto refreshed = one->accountConfiguration();
    EXPECT_EQ(refreshed.credentials->refreshToken, "refresh-2");
    EXPECT_EQ(storage->loadConfigurations(), std::vector{refreshed});
    EXPECT_EQ(ServiceCredentialsManager::stored(account.credentials->serviceCredentialsKey).value(),
              refreshed.credentials);
    EXPECT_TRUE(worked(*one));
    // The host still has the spent ones.
    EXPECT_TRUE(worked(*exporter()));
    EXPECT_EQ(service.refreshCount(), 1);
    EXPECT_FALSE(service.hasEndedTheGrant());
}

TEST_F(RefreshedTokens, OfAnAccountThatIsNoLongerStoredAreNotSaved) {
    const auto one = exporter();
    EXPECT_TRUE(worked(*one));
    EXPECT_EQ(one->accountConfiguration().credentials->refreshToken, "refresh-2");
    EXPECT_EQ(storage->calls(), Texts{});
}

TEST_F(RefreshedTokens, CostOneRunOneReadAtItsBeginAndOneAroundTheRefresh) {
    const auto key = account.credentials->serviceCredentialsKey;
    const auto one = exporter();
    EXPECT_EQ(keyChain.takeCalls(), Texts{});
    EXPECT_TRUE(worked(*one));
    EXPECT_EQ(keyChain.takeCalls(), (Texts{"read " + key, "read " + key, "write " + key}));
    EXPECT_TRUE(worked(*one));
    EXPECT_EQ(keyChain.takeCalls(), Texts{"read " + key});
}

} // namespace zelto
