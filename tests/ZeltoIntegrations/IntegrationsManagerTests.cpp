#include <ZeltoIntegrations/IntegrationsManager.h>

#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>
#include <ZeltoIntegrations/Agenda/AgendaExporter.h>
#include <ZeltoIntegrations/Bear/BearExporter.h>
#include <ZeltoIntegrations/Client/IntegrationsServiceDataFetcher.h>
#include <ZeltoIntegrations/Content/IntegrationsDataInteractorStub.h>
#include <ZeltoIntegrations/OmniFocus/OmniFocusExporter.h>
#include <ZeltoIntegrations/Things/ThingsExporter.h>
#include <ZeltoIntegrations/TwoDo/TwoDoExporter.h>

#include <Support/Completed.h>
#include <Support/FakeDataInteractor.h>
#include <Support/FakePlatformInteractor.h>
#include <Support/FakeStorage.h>
#include <Support/LogCapture.h>
#include <Support/MemoryKeyChain.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace zelto {

namespace {

using Error = IntegrationAccountCreationError;
using AccountResult = Result<ServiceAccountConfiguration, Error>;
using Texts = std::vector<std::string>;

// What connecting an account meets at the service.
struct FakeService {
    Result<void, IntegrationLoadError> fetched;
    std::optional<std::string> email = "alice@example.org";
    bool refreshesToken = false;
    std::function<void()> duringFetch = [] {};
    int fetches = 0;
    int emailLoads = 0;
    std::vector<std::string> identifiersSeen; // of the accounts that exporters were made for
};

// What a client does with a refreshed token.
ServiceAccountCredentials refreshed(ServiceAccountCredentials credentials) {
    credentials.accessToken = "refreshed";
    ServiceCredentialsManager::store(credentials);
    return credentials;
}

class FakeExporter final : public ServiceExporter {
  public:
    FakeExporter(FakeService& service, const ServiceAccountConfiguration& configuration,
                 std::shared_ptr<ServiceConfigurationsStorage> storage,
                 std::shared_ptr<IntegrationsPlatformInteractorProtocol> interactor,
                 std::shared_ptr<IntegrationsDataInteractorProtocol> data)
        : ServiceExporter(configuration, std::move(storage), std::move(interactor), std::move(data),
                          std::nullopt, true),
          service_(service) {}

    void fetchServiceData(Completion<void, IntegrationLoadError> completion) override {
        ++service_.fetches;
        if (service_.refreshesToken) {
            takeRefreshedTokens(refreshed(accountConfiguration().credentials.value()));
            setCachedValue(std::optional(1), "count");
        }
        std::exchange(service_.duringFetch, [] {})();
        completion(service_.fetched);
    }

    std::optional<std::string> loadUserEmail() override {
        ++service_.emailLoads;
        return service_.email;
    }

  private:
    FakeService& service_;
};

// Makes no meetings.
struct PlainMeetingCreator : MeetingCreator {
    void createMeeting(const std::optional<std::string>&, std::optional<Date>, std::optional<Date>,
                       CreationCompletion completion) override {
        completion(failure(MeetingCreatorError::internalError));
    }

    void updateMeeting(const std::string&, const std::optional<std::string>&, std::optional<Date>,
                       std::optional<Date>, ChangeCompletion completion) override {
        completion(failure(MeetingCreatorError::internalError));
    }

    void deleteMeeting(const std::string&, ChangeCompletion completion) override {
        completion(failure(MeetingCreatorError::internalError));
    }

    void cancelAllOperations() override {}

    std::optional<ServiceClientError> lastError() const override { return std::nullopt; }

    std::optional<ServiceRefusal> lastRefusal() const override { return std::nullopt; }
};

struct FakeMeetingCreator final : PlainMeetingCreator, IntegrationsServiceDataFetcher {
    FakeMeetingCreator(FakeService& service, ServiceAccountCredentials credentials)
        : service(service), credentials(std::move(credentials)) {}

    void fetchServiceData(Completion<void, IntegrationLoadError> completion) override {
        ++service.fetches;
        if (service.refreshesToken) {
            refreshed(credentials);
        }
        std::exchange(service.duringFetch, [] {})();
        completion(service.fetched);
    }

    FakeService& service;
    const ServiceAccountCredentials credentials;
};

// A manager whose REST services are the fake one; the factory's table stands for all else.
class ManagerUnderTest : public IntegrationsManager {
  public:
    ManagerUnderTest(FakeService& service, std::shared_ptr<FakeStorage> storage,
                     std::shared_ptr<FakePlatformInteractor> interactor)
        : IntegrationsManager(
              storage, interactor, [](const std::string&) { return true; }, "/attachments"),
          service_(service), storage_(std::move(storage)), interactor_(std::move(interactor)) {}

    bool hasExporters = true;
    bool hasMeetingCreators = true;
    bool meetingCreatorFetches = true;

    std::shared_ptr<MeetingCreator>
    createMeetingCreator(const ServiceAccountConfiguration& configuration) override {
        if (!hasMeetingCreators) {
            return nullptr;
        }
        if (!meetingCreatorFetches) {
            return std::make_shared<PlainMeetingCreator>();
        }
        return std::make_shared<FakeMeetingCreator>(service_, configuration.credentials.value());
    }

  protected:
    std::shared_ptr<ServiceExporter>
    makeServiceExporter(const ServiceAccountConfiguration& configuration,
                        std::shared_ptr<IntegrationsDataInteractorProtocol> data,
                        std::optional<std::string> actionSource, bool selectedByDefault) override {
        EXPECT_NE(dynamic_cast<IntegrationsDataInteractorStub*>(data.get()), nullptr);
        EXPECT_EQ(actionSource, std::nullopt);
        EXPECT_TRUE(selectedByDefault);
        service_.identifiersSeen.push_back(configuration.identifier());
        return hasExporters
                   ? std::make_shared<FakeExporter>(service_, configuration, storage_, interactor_, data)
                   : nullptr;
    }

  private:
    FakeService& service_;
    std::shared_ptr<FakeStorage> storage_;
    std::shared_ptr<FakePlatformInteractor> interactor_;
};

ServiceAccountConfiguration account(ServiceType type, const std::optional<std::string>& name,
                                    const std::string& token = "token") {
    ServiceAccountConfiguration configuration(type, name, true);
    configuration.credentials = ServiceAccountCredentials::forIdentifier(configuration.identifier());
    configuration.credentials->accessToken = token;
    return configuration;
}

class IntegrationsManagerTest : public testing::Test {
  protected:
    FakeService service;
    std::shared_ptr<FakeStorage> storage = std::make_shared<FakeStorage>();
    std::shared_ptr<FakePlatformInteractor> interactor = std::make_shared<FakePlatformInteractor>();
    MemoryKeyChain keyChain;
    ManagerUnderTest manager{service, storage, interactor};
    IntegrationsManager plainManager{storage, interactor, [](const std::string&) { return true; }, ""};

    AccountResult trySave(const ServiceAccountConfiguration& configuration) {
        return resultOf(
            [&](auto done) { manager.trySaveServiceConfiguration(configuration, std::move(done)); });
    }

    AccountResult tryUpdate(const ServiceAccountConfiguration& with, const ServiceAccountConfiguration& old) {
        return resultOf(
            [&](auto done) { manager.tryUpdateServiceConfiguration(with, old, std::move(done)); });
    }

    AccountResult replace(const ServiceAccountConfiguration& old, const ServiceAccountConfiguration& with) {
        return resultOf([&](auto done) { manager.replaceServiceConfiguration(old, with, std::move(done)); });
    }

    std::optional<std::string> stored(const std::string& identifier) {
        return keyChain.text("ServiceCredentials - " + identifier);
    }

  private:
    template <class F> AccountResult resultOf(F flow) {
        std::optional<AccountResult> result;
        flow(IntegrationsManager::AccountCompletion([&](AccountResult given) { result = std::move(given); }));
        EXPECT_TRUE(result) << "the flow did not complete";
        return result.value_or(failure(Error::dataLoadingError()));
    }
};

const ServiceType fetchingTypes[] = {
    ServiceType::TodoIst, ServiceType::Asana,       ServiceType::OneNote,     ServiceType::Evernote,
    ServiceType::Trello,  ServiceType::MeisterTask, ServiceType::TickTick,    ServiceType::Slack,
    ServiceType::Hubspot, ServiceType::Notion,      ServiceType::GoogleDrive, ServiceType::Dropbox};

} // namespace

TEST_F(IntegrationsManagerTest, SavingAKnownSchemeAccountGivesAccountAlreadyExistWithoutAnExporter) {
    storage->save(account(ServiceType::Bear, "alice"));
    const auto result = trySave(account(ServiceType::Bear, "alice"));
    EXPECT_EQ(result.error(), Error::accountAlreadyExist(account(ServiceType::Bear, "alice")));
    EXPECT_TRUE(service.identifiersSeen.empty());
    EXPECT_EQ(service.fetches, 0);
    EXPECT_TRUE(interactor->added().empty());
}

TEST_F(IntegrationsManagerTest, SavingANewSchemeAccountNotifiesTheHostAfterTheSave) {
    interactor->onAdded = [&] { EXPECT_TRUE(storage->load("Bear+alice")); };
    const auto result = trySave(account(ServiceType::Bear, "alice"));
    EXPECT_EQ(result.value(), account(ServiceType::Bear, "alice"));
    EXPECT_EQ(interactor->added(), (Texts{"Bear+alice"}));
    EXPECT_TRUE(stored("Bear+alice"));
}

TEST_F(IntegrationsManagerTest, SavingStoresTheSecretsThenTheRecordThenNotifiesTheHostThenCompletes) {
    Texts order;
    storage->onChange = [&] { order.push_back(stored("Bear+alice") ? "record" : "record before secrets"); };
    interactor->onAdded = [&] { order.push_back("host"); };
    manager.trySaveServiceConfiguration(account(ServiceType::Bear, "alice"),
                                        [&](const AccountResult&) { order.push_back("completion"); });
    EXPECT_EQ(order, (Texts{"record", "host", "completion"}));
}

TEST_F(IntegrationsManagerTest, ASchemeAccountWithoutCredentialsIsSavedWithoutAKeyChainEntry) {
    const ServiceAccountConfiguration plain(ServiceType::Things, std::nullopt, true);
    EXPECT_EQ(trySave(plain).value(), plain);
    EXPECT_EQ(stored("Things"), std::nullopt);
}

TEST_F(IntegrationsManagerTest, IdentifiersAreComparedExactly) {
    storage->save(account(ServiceType::Bear, "alice"));
    EXPECT_TRUE(trySave(account(ServiceType::Bear, "Alice")));
    EXPECT_TRUE(trySave(account(ServiceType::Agenda, "alice")));
}

TEST_F(IntegrationsManagerTest, ExactlyTwelveServicesFetchByAnExporterAndTeamsByItsMeetingCreator) {
    for (const auto& each : casesOf<ServiceType>()) {
        service = {};
        trySave(account(each.value, "x"));
        const bool fetches = std::ranges::find(fetchingTypes, each.value) != std::end(fetchingTypes);
        EXPECT_EQ(service.identifiersSeen, fetches ? Texts{manager.temporaryIdentifier(each.value)} : Texts{})
            << each.name;
        EXPECT_EQ(service.fetches, fetches || each.value == ServiceType::MicrosoftTeams ? 1 : 0) << each.name;
    }
}

TEST_F(IntegrationsManagerTest, AnAccountThatIsBeingConnectedHasTheTemporaryUserName) {
    EXPECT_EQ(manager.temporaryIdentifier(ServiceType::Trello), "Trello+temp_user_name");
}

TEST_F(IntegrationsManagerTest, AFetchedAccountIsRenamedByTheUsersEmailAndStored) {
    const auto result = trySave(account(ServiceType::Asana, std::nullopt));
    ASSERT_TRUE(result);
    EXPECT_EQ(result->identifier(), "Asana+alice@example.org");
    EXPECT_EQ(result->credentials->serviceCredentialsKey, "ServiceCredentials - Asana+alice@example.org");
    EXPECT_EQ(stored("Asana+alice@example.org"), R"({"accessToken":"token"})");
    EXPECT_TRUE(storage->load("Asana+alice@example.org"));
    EXPECT_EQ(interactor->added(), (Texts{"Asana+alice@example.org"}));
}

TEST_F(IntegrationsManagerTest, AFailedFetchLeavesNoTemporaryAccountBehind) {
    service.refreshesToken = true;
    service.fetched = failure(IntegrationLoadError::connectionError);
    const auto result = trySave(account(ServiceType::Asana, std::nullopt));
    EXPECT_EQ(result.error(), Error::dataLoadingError());
    EXPECT_TRUE(storage->loadConfigurations().empty());
    EXPECT_EQ(keyChain.keys(), Texts{});
    EXPECT_TRUE(interactor->added().empty());
}

TEST_F(IntegrationsManagerTest, ASuccessfulFetchLeavesNoTemporaryAccountBehindEither) {
    service.refreshesToken = true;
    ASSERT_TRUE(trySave(account(ServiceType::Trello, std::nullopt)));
    EXPECT_FALSE(storage->load("Trello+temp_user_name"));
    EXPECT_EQ(keyChain.keys(), Texts{"ServiceCredentials - Trello+alice@example.org"});
    EXPECT_EQ(storage->loadConfigurations().size(), 1u);
    // What the exporter cached came along.
    EXPECT_EQ(storage->loadConfigurations()[0].getCachedItem<int>("count"), 1);
    EXPECT_EQ(stored("Trello+alice@example.org"), R"({"accessToken":"refreshed"})");
}

TEST_F(IntegrationsManagerTest, AUserWhoseEmailIsStoredKeepsTheExistingCredentials) {
    const auto existing = account(ServiceType::Asana, "alice@example.org", "existing");
    storage->save(existing);
    ServiceCredentialsManager::store(*existing.credentials);
    const auto result = trySave(account(ServiceType::Asana, std::nullopt, "new"));
    ASSERT_FALSE(result);
    EXPECT_EQ(result.error().name(), "accountAlreadyExist");
    EXPECT_EQ(stored("Asana+alice@example.org"), R"({"accessToken":"existing"})");
}

TEST_F(IntegrationsManagerTest, TickTickWithAUserNameNeverAsksForTheEmail) {
    const auto result = trySave(account(ServiceType::TickTick, "bob"));
    EXPECT_EQ(result.value().identifier(), "TickTick+bob");
    EXPECT_EQ(service.emailLoads, 0);
    EXPECT_EQ(service.fetches, 1);
}

TEST_F(IntegrationsManagerTest, TickTickWithoutAUserNameAsksForTheEmail) {
    EXPECT_EQ(trySave(account(ServiceType::TickTick, std::nullopt)).value().identifier(),
              "TickTick+alice@example.org");
    EXPECT_EQ(service.emailLoads, 1);
}

TEST_F(IntegrationsManagerTest, AnAccountWithoutEmailCredentialsOrExporterGivesDataLoadingError) {
    service.email = std::nullopt;
    EXPECT_EQ(trySave(account(ServiceType::Slack, std::nullopt)).error(), Error::dataLoadingError());
    EXPECT_EQ(trySave({ServiceType::Slack, "alice", true}).error(), Error::dataLoadingError());
    manager.hasExporters = false;
    EXPECT_EQ(trySave(account(ServiceType::Slack, std::nullopt)).error(), Error::dataLoadingError());
    EXPECT_TRUE(storage->loadConfigurations().empty());
}

TEST_F(IntegrationsManagerTest, TeamsIsSavedAsItStandsWhenItsFetchSucceeds) {
    EXPECT_EQ(trySave(account(ServiceType::MicrosoftTeams, "alice")).value(),
              account(ServiceType::MicrosoftTeams, "alice"));
    EXPECT_EQ(trySave(account(ServiceType::MicrosoftTeams, "alice")).error().name(), "accountAlreadyExist");
}

TEST_F(IntegrationsManagerTest, TeamsGivesDataLoadingErrorWhenItCannotFetch) {
    service.fetched = failure(IntegrationLoadError::oauthError);
    EXPECT_EQ(trySave(account(ServiceType::MicrosoftTeams, "alice")).error(), Error::dataLoadingError());
    service.fetched = {};
    manager.meetingCreatorFetches = false;
    EXPECT_EQ(trySave(account(ServiceType::MicrosoftTeams, "alice")).error(), Error::dataLoadingError());
    manager.hasMeetingCreators = false;
    EXPECT_EQ(trySave(account(ServiceType::MicrosoftTeams, "alice")).error(), Error::dataLoadingError());
    EXPECT_TRUE(storage->loadConfigurations().empty());
}

TEST_F(IntegrationsManagerTest, TokensThatWereRefreshedWhileAServiceWasAskedAreTheAccounts) {
    service.refreshesToken = true;
    for (const auto type : {ServiceType::Asana, ServiceType::MicrosoftTeams}) {
        const auto old = account(type, "alice@example.org", "old");
        EXPECT_EQ(trySave(old).value().credentials->accessToken, "refreshed") << nameOf(type);
        EXPECT_EQ(stored(old.identifier()), R"({"accessToken":"refreshed"})") << nameOf(type);
        ServiceCredentialsManager::store(*old.credentials);
        EXPECT_EQ(tryUpdate(old, old).value().credentials->accessToken, "refreshed") << nameOf(type);
        EXPECT_EQ(stored(old.identifier()), R"({"accessToken":"refreshed"})") << nameOf(type);
    }
    EXPECT_EQ(keyChain.keys(), (Texts{"ServiceCredentials - Asana+alice@example.org",
                                      "ServiceCredentials - Microsoft Teams+alice@example.org"}));
}

TEST_F(IntegrationsManagerTest, TeamsGivesDataLoadingErrorWhenItsRefreshedTokensCannotBeRead) {
    service.refreshesToken = true;
    const auto old = account(ServiceType::MicrosoftTeams, "alice", "old");
    ServiceCredentialsManager::store(*old.credentials);
    service.duringFetch = [&] { keyChain.setUnreadable(true); };
    EXPECT_EQ(tryUpdate(account(ServiceType::MicrosoftTeams, "alice", "spent"), old).error(),
              Error::dataLoadingError());
    EXPECT_EQ(trySave(account(ServiceType::MicrosoftTeams, "bob")).error(), Error::dataLoadingError());
    EXPECT_EQ(keyChain.keys(), Texts{old.credentials->serviceCredentialsKey});
    EXPECT_EQ(stored("Microsoft Teams+alice"), R"({"accessToken":"old"})");
    EXPECT_TRUE(storage->loadConfigurations().empty());
}

TEST_F(IntegrationsManagerTest, AFlowThatFailsLeavesTheAccountsTokensAsTheyWere) {
    service.refreshesToken = true;
    service.fetched = failure(IntegrationLoadError::connectionError);
    for (const auto type : {ServiceType::Asana, ServiceType::MicrosoftTeams}) {
        const auto old = account(type, "alice@example.org", "old");
        ServiceCredentialsManager::store(*old.credentials);
        EXPECT_FALSE(tryUpdate(account(type, "alice@example.org", "new"), old)) << nameOf(type);
        EXPECT_EQ(keyChain.keys(), Texts{old.credentials->serviceCredentialsKey});
        EXPECT_EQ(stored(old.identifier()), R"({"accessToken":"old"})") << nameOf(type);
        keyChain.clear();
    }
}

TEST_F(IntegrationsManagerTest, AFlowTakesNothingOfAnotherThatRunsAtTheSameTime) {
    service.refreshesToken = true;
    for (const auto type : {ServiceType::Asana, ServiceType::MicrosoftTeams}) {
        std::optional<AccountResult> inner;
        service.duringFetch = [&] {
            service.refreshesToken = false;
            service.email = "bob@example.org";
            inner = trySave(account(type, "bob@example.org", "bobs"));
            service.email = "alice@example.org";
        };
        service.refreshesToken = true;
        EXPECT_EQ(trySave(account(type, "alice@example.org", "alices")).value().credentials->accessToken,
                  "refreshed");
        ASSERT_TRUE(inner && *inner);
        EXPECT_EQ((*inner)->credentials->accessToken, "bobs") << nameOf(type);
        EXPECT_EQ((*inner)->userName(), "bob@example.org");
    }
}

TEST_F(IntegrationsManagerTest, AFlowTakesNothingThatAKilledOneLeft) {
    ServiceCredentialsManager::store(
        *account(ServiceType::Asana, "temp_user_name", "of somebody else").credentials);
    EXPECT_EQ(trySave(account(ServiceType::Asana, std::nullopt)).value().credentials->accessToken, "token");
    EXPECT_EQ(stored("Asana+alice@example.org"), R"({"accessToken":"token"})");
}

TEST_F(IntegrationsManagerTest, AFlowIsNotedFromTheBeginningOfItsFetchToTheEndOfItsKey) {
    for (const auto type : {ServiceType::Asana, ServiceType::MicrosoftTeams}) {
        service = {};
        service.refreshesToken = true;
        std::weak_ptr<std::string> noted;
        manager.setFlowNote([&](const std::string& key) {
            auto note = std::make_shared<std::string>(key);
            noted = note;
            return note;
        });
        service.duringFetch = [&] {
            const auto note = noted.lock();
            ASSERT_TRUE(note);
            EXPECT_TRUE(ServiceAccountCredentials::isFlowKey(*note)) << *note;
            EXPECT_TRUE(keyChain.text(*note)) << *note;
        };
        manager.trySaveServiceConfiguration(
            account(type, "alice@example.org"),
            [&](const AccountResult& result) { EXPECT_TRUE(result && noted.expired()); });
    }
}

TEST_F(IntegrationsManagerTest, ANewAccountsKeyIsNotedFromBeforeItsSecretsUntilItsRecordIsSaved) {
    const auto key = account(ServiceType::Bear, "alice").credentials->serviceCredentialsKey;
    Texts order;
    manager.setFlowNote([&](const std::string& noted) {
        order.push_back("noted " + noted + (keyChain.text(noted) ? " with secrets" : ""));
        return std::shared_ptr<void>(&order, [&](void*) { order.push_back("note gone"); });
    });
    storage->onChange = [&] { order.push_back(keyChain.text(key) ? "record" : "record before secrets"); };
    interactor->onAdded = [&] { order.push_back("host"); };
    ASSERT_TRUE(trySave(account(ServiceType::Bear, "alice")));
    EXPECT_EQ(order, (Texts{"noted " + key, "record", "note gone", "host"}));
    order.clear();
    EXPECT_FALSE(trySave(account(ServiceType::Bear, "alice")));
    ASSERT_TRUE(trySave({ServiceType::Things, std::nullopt, true})) << "without secrets there is no note";
    EXPECT_EQ(order, (Texts{"record", "host"}));
}

TEST_F(IntegrationsManagerTest, UpdatingAsAnotherUserGivesAccountMismatchAndChangesNoSecret) {
    const auto old = account(ServiceType::Slack, "bob@example.org", "old");
    ServiceCredentialsManager::store(*old.credentials);
    const auto result = tryUpdate(account(ServiceType::Slack, std::nullopt, "new"), old);
    ASSERT_FALSE(result);
    const auto& mismatch = std::get<Error::AccountMismatch>(result.error().value);
    EXPECT_EQ(mismatch.requiredAccount, old);
    EXPECT_EQ(mismatch.actualAccount.identifier(), "Slack+alice@example.org");
    EXPECT_EQ(stored("Slack+bob@example.org"), R"({"accessToken":"old"})");
    EXPECT_EQ(stored("Slack+alice@example.org"), std::nullopt);
}

TEST_F(IntegrationsManagerTest, UpdatingStoresTheSecretsAndDoesNotSaveTheRecord) {
    const auto old = account(ServiceType::Slack, "alice@example.org", "old");
    const auto result = tryUpdate(account(ServiceType::Slack, std::nullopt, "new"), old);
    ASSERT_TRUE(result);
    EXPECT_EQ(stored("Slack+alice@example.org"), R"({"accessToken":"new"})");
    const auto calls = storage->calls();
    EXPECT_EQ(std::ranges::count_if(calls, [](const auto& call) { return call.starts_with("save"); }), 0);
    EXPECT_TRUE(interactor->added().empty());
}

TEST_F(IntegrationsManagerTest, UpdatingASchemeAccountComparesTheTwoDirectly) {
    const auto old = account(ServiceType::Bear, "alice", "old");
    EXPECT_TRUE(tryUpdate(account(ServiceType::Bear, "alice", "new"), old));
    EXPECT_EQ(stored("Bear+alice"), R"({"accessToken":"new"})");
    EXPECT_EQ(tryUpdate(account(ServiceType::Bear, "bob"), old).error(),
              Error::accountMismatch(old, account(ServiceType::Bear, "bob")));
    EXPECT_EQ(service.fetches, 0);
}

TEST_F(IntegrationsManagerTest, AFailedFetchWhileUpdatingGivesDataLoadingError) {
    service.fetched = failure(IntegrationLoadError::internalError);
    EXPECT_EQ(tryUpdate(account(ServiceType::Slack, "a"), account(ServiceType::Slack, "a")).error(),
              Error::dataLoadingError());
}

TEST_F(IntegrationsManagerTest, ReplacingByAnAccountWithoutUserNameOrCredentialsRemovesNothing) {
    const auto old = account(ServiceType::Asana, "alice", "old");
    storage->save(old);
    ServiceCredentialsManager::store(*old.credentials);
    EXPECT_EQ(replace(old, account(ServiceType::Asana, std::nullopt)).error(), Error::dataLoadingError());
    EXPECT_EQ(replace(old, {ServiceType::Asana, "bob", true}).error(), Error::dataLoadingError());
    EXPECT_TRUE(storage->load("Asana+alice"));
    EXPECT_TRUE(stored("Asana+alice"));
}

TEST_F(IntegrationsManagerTest, ReplacingPutsOneAccountInThePlaceOfAnotherWithoutNotifyingTheHost) {
    const auto old = account(ServiceType::Asana, "alice", "old");
    storage->save(old);
    ServiceCredentialsManager::store(*old.credentials);
    auto with = account(ServiceType::Asana, "bob", "new");
    with.displayName = "Bob";
    const auto result = replace(old, with);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->identifier(), "Asana+bob");
    EXPECT_EQ(result->displayName, "Bob");
    EXPECT_EQ(storage->loadConfigurations(), (std::vector{*result}));
    EXPECT_EQ(stored("Asana+alice"), std::nullopt);
    EXPECT_EQ(stored("Asana+bob"), R"({"accessToken":"new"})");
    EXPECT_EQ(service.fetches, 0);
    EXPECT_TRUE(interactor->added().empty());
    EXPECT_TRUE(interactor->removed().empty());
    EXPECT_EQ(storage->calls(), (Texts{"save Asana+alice", "save Asana+bob", "remove Asana+alice"}));
}

TEST_F(IntegrationsManagerTest, ReplacingHasTheNewAccountWithItsSecretsBeforeTheOldOneGoes) {
    const auto old = account(ServiceType::Asana, "alice", "old");
    storage->save(old);
    ServiceCredentialsManager::store(*old.credentials);
    Texts found;
    storage->onChange = [&] {
        found.push_back(stored("Asana+alice").value_or("none") + " " + stored("Asana+bob").value_or("none"));
    };
    ASSERT_TRUE(replace(old, account(ServiceType::Asana, "bob", "new")));
    EXPECT_EQ(found,
              (Texts{R"({"accessToken":"old"} {"accessToken":"new"})", R"(none {"accessToken":"new"})"}));
}

TEST_F(IntegrationsManagerTest, ReplacingAnAccountByItselfKeepsItWithTheNewSecrets) {
    const auto old = account(ServiceType::Asana, "alice", "old");
    storage->save(old);
    ServiceCredentialsManager::store(*old.credentials);
    ASSERT_TRUE(replace(old, account(ServiceType::Asana, "alice", "new")));
    EXPECT_EQ(stored("Asana+alice"), R"({"accessToken":"new"})");
    EXPECT_EQ(storage->calls(), (Texts{"save Asana+alice", "save Asana+alice"}));
}

TEST_F(IntegrationsManagerTest, RemovingTakesTheSecretsAndTheRecordAndNotifiesTheHost) {
    const auto bear = account(ServiceType::Bear, "alice");
    trySave(bear);
    manager.removeServiceConfiguration(bear);
    EXPECT_EQ(stored("Bear+alice"), std::nullopt);
    EXPECT_TRUE(storage->loadConfigurations().empty());
    EXPECT_EQ(interactor->removed(), (Texts{"Bear+alice"}));
}

TEST_F(IntegrationsManagerTest, RemovingTakesTheSecretsThenTheRecordThenNotifiesTheHost) {
    const auto bear = account(ServiceType::Bear, "alice");
    trySave(bear);
    Texts order;
    storage->onChange = [&] { order.push_back(stored("Bear+alice") ? "record before secrets" : "record"); };
    interactor->onRemoved = [&] { order.push_back("host"); };
    manager.removeServiceConfiguration(bear);
    EXPECT_EQ(order, (Texts{"record", "host"}));
}

TEST_F(IntegrationsManagerTest, AnAccountWithoutCredentialsIsRemovedWithoutTheKeyChain) {
    const ServiceAccountConfiguration plain(ServiceType::Things, std::nullopt, true);
    storage->save(plain);
    const LogCapture log;
    manager.removeServiceConfiguration(plain);
    EXPECT_TRUE(log.records().empty());
    EXPECT_EQ(interactor->removed(), (Texts{"Things"}));
}

TEST_F(IntegrationsManagerTest, RemovingAllNotifiesTheHostOfEachOne) {
    trySave(account(ServiceType::Bear, "a"));
    trySave(account(ServiceType::Things, "b"));
    manager.removeAllServiceConfigurations();
    EXPECT_TRUE(manager.servicesConfigurations().empty());
    EXPECT_EQ(interactor->removed(), (Texts{"Bear+a", "Things+b"}));
}

TEST_F(IntegrationsManagerTest, GroupsFollowTheTypeAndKeepTheStoragesOrder) {
    for (const auto& each : {account(ServiceType::Bear, "b"), account(ServiceType::Trello, "t"),
                             account(ServiceType::Bear, "a")}) {
        storage->save(each);
    }
    const auto groups = manager.servicesConfigurationsGroupedByType();
    ASSERT_EQ(groups.size(), 2u);
    ASSERT_EQ(groups.at(46).size(), 2u);
    EXPECT_EQ(groups.at(46)[0].userName(), "b");
    EXPECT_EQ(groups.at(46)[1].userName(), "a");
    EXPECT_EQ(groups.at(45).size(), 1u);
}

TEST_F(IntegrationsManagerTest, StoringARecordDoesNotTouchTheKeyChain) {
    manager.storeServiceConfiguration(account(ServiceType::Asana, "alice"));
    EXPECT_TRUE(manager.loadServiceConfiguration("Asana+alice"));
    EXPECT_EQ(stored("Asana+alice"), std::nullopt);
}

TEST_F(IntegrationsManagerTest, AnUnknownIdentifierGivesNothing) {
    EXPECT_EQ(manager.loadServiceConfiguration("Asana+nobody"), std::nullopt);
}

TEST_F(IntegrationsManagerTest, TheLastUsedAccountIsTheStoragesMatter) {
    EXPECT_EQ(manager.lastUsedConfiguration(ServiceType::Bear), std::nullopt);
    manager.setLastUsedConfiguration(ServiceType::Bear, account(ServiceType::Bear, "alice"));
    EXPECT_EQ(manager.lastUsedConfiguration(ServiceType::Bear), account(ServiceType::Bear, "alice"));
    manager.setLastUsedConfiguration(ServiceType::Bear, std::nullopt);
    EXPECT_EQ(manager.lastUsedConfiguration(ServiceType::Bear), std::nullopt);
}

TEST_F(IntegrationsManagerTest, IdentifierOfATypeAndAUserNameIsThatOfTheAccount) {
    EXPECT_EQ(manager.getServiceIdentifier(ServiceType::Asana, "alice"), "Asana+alice");
    EXPECT_EQ(manager.getServiceIdentifier(ServiceType::Asana, std::nullopt), "Asana");
}

TEST_F(IntegrationsManagerTest, TheFactoryMakesTheExporterOfEachSchemeService) {
    const auto data = std::make_shared<FakeDataInteractor>();
    const auto exporterOf = [&](ServiceType type) {
        return plainManager.createServiceExporter(account(type, "alice"), data, "toolbar", false);
    };
    EXPECT_NE(std::dynamic_pointer_cast<OmniFocusExporter>(exporterOf(ServiceType::OmniFocus)), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<TwoDoExporter>(exporterOf(ServiceType::Type2Do)), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<ThingsExporter>(exporterOf(ServiceType::Things)), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<BearExporter>(exporterOf(ServiceType::Bear)), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<AgendaExporter>(exporterOf(ServiceType::Agenda)), nullptr);
    EXPECT_EQ(exporterOf(ServiceType::Bear)->accountConfiguration(), account(ServiceType::Bear, "alice"));
}

TEST_F(IntegrationsManagerTest, TheFactoryHandsItsExportersEverythingTheyWorkWith) {
    const auto data = std::make_shared<FakeDataInteractor>();
    const auto exporter = plainManager.createServiceExporter<BearExporter>(
        account(ServiceType::Bear, "alice"), data, "toolbar", false);
    ASSERT_NE(exporter, nullptr);
    Completed<ExporterResult<void>> completed;
    exporter->export_(BearExportConfiguration(),
                      completed.callback<Completion<void, IntegrationExportError>>());
    EXPECT_TRUE(completed.value());
    EXPECT_EQ(interactor->openedURLs(), (Texts{"bear://x-callback-url/create?title=Title&text=Body"}));
    EXPECT_EQ(interactor->exportEvents().at(0).actionSource, "toolbar");
    EXPECT_TRUE(storage->load("Bear+alice"));
}

TEST_F(IntegrationsManagerTest, TypesWithoutAnExporterGiveNothing) {
    const auto data = std::make_shared<FakeDataInteractor>();
    for (const auto type :
         {ServiceType::Calendar, ServiceType::OneDrive, ServiceType::Box, ServiceType::OneDriveBusiness,
          ServiceType::iOSShare, ServiceType::Albums, ServiceType::Zelto, ServiceType::iOSSharePDF,
          ServiceType::G2Meeting, ServiceType::ZoomMeeting, ServiceType::MicrosoftTeams}) {
        EXPECT_EQ(plainManager.createServiceExporter(account(type, "alice"), data), nullptr) << nameOf(type);
    }
}

TEST_F(IntegrationsManagerTest, AskingForAnotherClassGivesNothingAndReleasesTheExporter) {
    const auto data = std::make_shared<FakeDataInteractor>();
    const auto bear = account(ServiceType::Bear, "alice");
    EXPECT_EQ(plainManager.createServiceExporter<AgendaExporter>(bear, data), nullptr);
    EXPECT_EQ(data.use_count(), 1);
    EXPECT_NE(plainManager.createServiceExporter<BearExporter>(bear, data), nullptr);
}

TEST_F(IntegrationsManagerTest, OnlyDrivesHaveImporters) {
    for (const auto& each : casesOf<ServiceType>()) {
        const bool isDrive = each.value == ServiceType::GoogleDrive || each.value == ServiceType::Dropbox;
        EXPECT_EQ(plainManager.createServiceImporter(account(each.value, "x")) != nullptr, isDrive)
            << each.name;
    }
}

TEST_F(IntegrationsManagerTest, AnAccountWithoutCredentialsHasNoMeetingCreator) {
    for (const auto& each : casesOf<ServiceType>()) {
        EXPECT_EQ(plainManager.createMeetingCreator({each.value, "alice", true}), nullptr) << each.name;
    }
}

TEST_F(IntegrationsManagerTest, TypesThatAreNoMeetingServicesHaveNoMeetingCreator) {
    for (const auto& each : casesOf<ServiceType>()) {
        if (each.value < ServiceType::G2Meeting) {
            EXPECT_EQ(plainManager.createMeetingCreator(account(each.value, "alice")), nullptr) << each.name;
        }
    }
}

} // namespace zelto
