#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>
#include <ZeltoIntegrations/IntegrationsManager.h>

#include <Support/FakePlatformInteractor.h>
#include <Support/FakeStorage.h>
#include <Support/MeetingFacts.h>
#include <Support/MeetingFixture.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = IntegrationAccountCreationError;
using AccountResult = Result<ServiceAccountConfiguration, Error>;

constexpr auto working =
    R"({"value":[{"id":"l","skuId":"s","skuPartNumber":"E3","servicePlans":[{"servicePlanId":"p",)"
    R"("servicePlanName":"TEAMS1","provisioningStatus":"Success","appliesTo":"User"}]}]})";

// The manager's flows with the clients of the meeting services.
class MeetingAccount : public MeetingFixture<MicrosoftTeamsFacts> {
  protected:
    static ServiceAccountConfiguration account(ServiceType type, const std::string& token = "token") {
        ServiceAccountConfiguration made(type, "me", true);
        made.credentials = ServiceAccountCredentials::forIdentifier(made.identifier());
        made.credentials->accessToken = token;
        made.credentials->refreshToken = token + " refresh";
        made.credentials->expirationDate = Date::distantFuture();
        return made;
    }

    static ServiceAccountConfiguration expired() {
        auto made = account(ServiceType::MicrosoftTeams);
        made.credentials->expirationDate = Date();
        return made;
    }

    void respondToCheck(const PlayedResponse& response) { service.respondTo("licenseDetails", response); }

    AccountResult trySave(const ServiceAccountConfiguration& configuration) {
        Completed<AccountResult> completed;
        manager.trySaveServiceConfiguration(configuration,
                                            completed.callback<IntegrationsManager::AccountCompletion>());
        return completed.value();
    }

    AccountResult tryUpdate(const ServiceAccountConfiguration& with, const ServiceAccountConfiguration& old) {
        Completed<AccountResult> completed;
        manager.tryUpdateServiceConfiguration(with, old,
                                              completed.callback<IntegrationsManager::AccountCompletion>());
        return completed.value();
    }

    std::shared_ptr<FakeStorage> storage = std::make_shared<FakeStorage>();
    IntegrationsManager manager{storage, std::make_shared<FakePlatformInteractor>(),
                                [](const std::string&) { return true; }, ""};
};

} // namespace

TEST_F(MeetingAccount, OfZoomAndGoToIsConnectedWithoutARequest) {
    for (const auto type : {ServiceType::ZoomMeeting, ServiceType::G2Meeting}) {
        EXPECT_EQ(trySave(account(type)), account(type)) << nameOf(type);
        EXPECT_EQ(tryUpdate(account(type, "new"), account(type)), account(type, "new")) << nameOf(type);
    }
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(MeetingAccount, OfTeamsIsConnectedAfterItsLicencesWereLookedAt) {
    respondToCheck(PlayedResponse::json(working));
    EXPECT_EQ(trySave(account(ServiceType::MicrosoftTeams)), account(ServiceType::MicrosoftTeams));
    EXPECT_EQ(service.texts(), Texts{"GET /v1.0//me/licenseDetails\nAuthorization: Bearer token\n\n"});
    EXPECT_EQ(keyChain.keys(), Texts{"ServiceCredentials - Microsoft Teams+me"});
}

TEST_F(MeetingAccount, OfTeamsKeepsTokensThatWereRefreshedOnTheWay) {
    respondToCheck(PlayedResponse::json(working));
    const auto connected = trySave(expired());
    ASSERT_TRUE(connected);
    EXPECT_EQ(connected->credentials->accessToken, "fresh");
    EXPECT_EQ(connected->credentials->refreshToken, "rotated");
    EXPECT_EQ(service.lines(),
              (Texts{"POST " + std::string(MicrosoftTeamsFacts::tokenPath), "GET /v1.0//me/licenseDetails"}));
    EXPECT_EQ(keyChain.keys(), Texts{"ServiceCredentials - Microsoft Teams+me"});
    const auto key = connected->credentials->serviceCredentialsKey;
    EXPECT_EQ(ServiceCredentialsManager::stored(key).value()->refreshToken, "rotated");
    const auto reconnected = tryUpdate(expired(), *connected);
    EXPECT_EQ(reconnected.value().credentials->refreshToken, "rotated");
    EXPECT_EQ(keyChain.keys(), Texts{"ServiceCredentials - Microsoft Teams+me"});
}

TEST_F(MeetingAccount, OfTeamsWithoutAWorkingPlanIsNotConnectedAndSaysWhy) {
    respondToCheck(PlayedResponse::json(R"({"value":[]})"));
    EXPECT_EQ(trySave(account(ServiceType::MicrosoftTeams)).error(),
              Error::dataLoadingError({.words = std::string(MicrosoftTeamsClient::noWorkingPlan)}));
    EXPECT_TRUE(storage->loadConfigurations().empty());
    EXPECT_EQ(keyChain.keys(), Texts{});
}

TEST_F(MeetingAccount, OfTeamsThatIsRefusedSaysWhatTheServiceSays) {
    respondToCheck(
        PlayedResponse::json(R"({"error":{"code":"Forbidden","message":"No personal accounts."}})", 403));
    EXPECT_EQ(trySave(account(ServiceType::MicrosoftTeams)).error(),
              Error::dataLoadingError({.words = "No personal accounts."}));
    EXPECT_EQ(keyChain.keys(), Texts{});
}

TEST_F(MeetingAccount, OfTeamsThatFailsAfterARefreshLeavesTheOldTokensAsTheyWere) {
    respondToCheck(PlayedResponse::json("no", 503));
    const auto old = account(ServiceType::MicrosoftTeams, "old");
    ServiceCredentialsManager::store(*old.credentials);
    EXPECT_FALSE(tryUpdate(expired(), old));
    const auto key = old.credentials->serviceCredentialsKey;
    EXPECT_EQ(keyChain.keys(), Texts{key});
    EXPECT_EQ(ServiceCredentialsManager::stored(key).value(), *old.credentials);
}

TEST_F(MeetingAccount, HasACreatorOfItsService) {
    EXPECT_TRUE(std::dynamic_pointer_cast<ZoomClient>(
        manager.createMeetingCreator(account(ServiceType::ZoomMeeting))));
    EXPECT_TRUE(
        std::dynamic_pointer_cast<GoToClient>(manager.createMeetingCreator(account(ServiceType::G2Meeting))));
    EXPECT_TRUE(std::dynamic_pointer_cast<MicrosoftTeamsClient>(
        manager.createMeetingCreator(account(ServiceType::MicrosoftTeams))));
}

} // namespace zelto
