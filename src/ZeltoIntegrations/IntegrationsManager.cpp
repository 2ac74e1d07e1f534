#include <ZeltoIntegrations/IntegrationsManager.h>

#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>
#include <ZeltoIntegrations/Client/IntegrationsServiceDataFetcher.h>
#include <ZeltoIntegrations/Content/IntegrationsDataInteractorStub.h>
#include <ZeltoIntegrations/Export/NetworkExporter.h>
#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <algorithm>

namespace zelto {

namespace {

using AccountError = IntegrationAccountCreationError;
using AccountResult = Result<ServiceAccountConfiguration, AccountError>;
using AccountCompletion = IntegrationsManager::AccountCompletion;

// The name of an account whose own name is not known yet.
constexpr auto temporaryUserName = "temp_user_name";

bool isAccountExist(ServiceConfigurationsStorage& storage, const ServiceAccountConfiguration& configuration) {
    const auto identifier = configuration.identifier();
    return std::ranges::any_of(storage.loadConfigurations(), [&](const ServiceAccountConfiguration& stored) {
        return stored.identifier() == identifier;
    });
}

// The account under another name, and with it another key in the key chain; no value without credentials.
std::optional<ServiceAccountConfiguration> createAccount(const ServiceAccountConfiguration& from,
                                                         const std::string& name) {
    if (!from.credentials) {
        return std::nullopt;
    }
    auto credentials = ServiceAccountCredentials::forIdentifier(
        ExportServiceHelper::getServiceIdentifierFor(from.serviceType(), name));
    ServiceCredentialsManager::fill(*from.credentials, credentials);
    return ServiceAccountConfiguration(from, std::move(credentials), name);
}

void removeSecrets(const ServiceAccountConfiguration& configuration) {
    if (configuration.credentials) {
        ServiceCredentialsManager::remove(*configuration.credentials);
    }
}

void storeSecrets(const ServiceAccountConfiguration& configuration) {
    if (configuration.credentials) {
        ServiceCredentialsManager::store(*configuration.credentials);
    }
}

bool haveOneKey(const ServiceAccountCredentials& one, const ServiceAccountCredentials& other) {
    return one.serviceCredentialsKey == other.serviceCredentialsKey;
}

std::shared_ptr<void> noted(const IntegrationsManager::FlowNote& flowNote,
                            const std::string& serviceCredentialsKey) {
    return flowNote ? flowNote(serviceCredentialsKey) : nullptr;
}

// Notes the key, since a kill between the two leaves secrets without an account.
void saveAccount(const ServiceAccountConfiguration& account, ServiceConfigurationsStorage& storage,
                 const IntegrationsManager::FlowNote& flowNote) {
    const auto note =
        account.credentials ? noted(flowNote, account.credentials->serviceCredentialsKey) : nullptr;
    storeSecrets(account);
    storage.save(account);
}

// The account with its secrets under a key of this flow's own.
ServiceAccountConfiguration underKeyOfItsOwn(ServiceAccountConfiguration account) {
    auto& key = account.credentials->serviceCredentialsKey;
    key = ServiceAccountCredentials::flowKey(key);
    return account;
}

// The account with other secrets under its own key.
ServiceAccountConfiguration withSecrets(ServiceAccountConfiguration account,
                                        const ServiceAccountCredentials& secrets) {
    ServiceCredentialsManager::fill(secrets, *account.credentials);
    return account;
}

AccountError::DataLoadingError loadingError(const std::optional<ServiceRefusal>& refusal) {
    return refusal ? AccountError::DataLoadingError{refusal->words, refusal->nothingWasSent}
                   : AccountError::DataLoadingError();
}

// Why an exporter has loaded nothing.
AccountError::DataLoadingError loadingError(const ServiceExporter& exporter) {
    const auto* network = dynamic_cast<const NetworkExporter*>(&exporter);
    return loadingError(network ? network->lastRefusal() : std::nullopt);
}

// What an exporter's fetch says about the account that is being connected.
AccountResult loadAccount(const Result<void, IntegrationLoadError>& fetched,
                          const ServiceAccountConfiguration& temporary,
                          const ServiceAccountConfiguration& configuration, ServiceExporter& exporter,
                          ServiceConfigurationsStorage& storage) {
    // With the tokens that were refreshed meanwhile.
    const auto fetchedAccount = exporter.accountConfiguration();
    storage.remove(temporary);
    removeSecrets(temporary);
    if (!fetched || !fetchedAccount.credentials) {
        return failure(AccountError::dataLoadingError(loadingError(exporter)));
    }
    std::optional<ServiceAccountConfiguration> account;
    if (configuration.serviceType() == ServiceType::TickTick && configuration.userName()) {
        account =
            createAccount(withSecrets(configuration, *fetchedAccount.credentials), *configuration.userName());
    } else if (const auto email = exporter.loadUserEmail()) {
        account = createAccount(fetchedAccount, *email);
    }
    if (!account) {
        return failure(AccountError::dataLoadingError());
    }
    return *std::move(account);
}

// What a meeting creator's fetch says. Its client keeps refreshed tokens in the key chain alone: if that
// cannot be read, the tokens at hand may be spent.
AccountResult checkedAccount(const Result<void, IntegrationLoadError>& fetched,
                             const ServiceAccountConfiguration& temporary,
                             const ServiceAccountConfiguration& configuration,
                             const MeetingCreator& creator) {
    const auto stored = ServiceCredentialsManager::stored(temporary.credentials->serviceCredentialsKey);
    removeSecrets(temporary);
    if (!fetched) {
        return failure(AccountError::dataLoadingError(loadingError(creator.lastRefusal())));
    }
    if (!stored) {
        return failure(AccountError::dataLoadingError());
    }
    return *stored ? withSecrets(configuration, **stored) : configuration;
}

} // namespace

IntegrationsManager::IntegrationsManager(std::shared_ptr<ServiceConfigurationsStorage> storage,
                                         std::shared_ptr<IntegrationsPlatformInteractorProtocol> interactor,
                                         EmailValidator emailValidator, std::string attachmentsPath)
    : configurationStorage_(std::move(storage)), platformInteractor_(std::move(interactor)),
      emailValidator_(std::move(emailValidator)), attachmentsPath_(std::move(attachmentsPath)) {}

IntegrationsManager::~IntegrationsManager() = default;

std::string IntegrationsManager::getServiceIdentifier(ServiceType from,
                                                      const std::optional<std::string>& andUsername) const {
    return ExportServiceHelper::getServiceIdentifierFor(from, andUsername);
}

std::string IntegrationsManager::temporaryIdentifier(ServiceType serviceType) const {
    return getServiceIdentifier(serviceType, temporaryUserName);
}

AccountCheck IntegrationsManager::accountCheck(ServiceType serviceType) {
    return factsOf(serviceType).accountCheck;
}

void IntegrationsManager::setFlowNote(FlowNote note) {
    flowNote_ = std::move(note);
}

std::map<int, std::vector<ServiceAccountConfiguration>>
IntegrationsManager::servicesConfigurationsGroupedByType() const {
    std::map<int, std::vector<ServiceAccountConfiguration>> groups;
    for (auto& configuration : servicesConfigurations()) {
        groups[rawValue(configuration.serviceType())].push_back(std::move(configuration));
    }
    return groups;
}

std::vector<ServiceAccountConfiguration> IntegrationsManager::servicesConfigurations() const {
    return configurationStorage_->loadConfigurations();
}

void IntegrationsManager::removeServiceConfiguration(const ServiceAccountConfiguration& configuration) {
    removeSecrets(configuration);
    configurationStorage_->remove(configuration);
    platformInteractor_->integrationServiceDidRemoved(configuration);
}

void IntegrationsManager::setLastUsedConfiguration(
    ServiceType serviceType, const std::optional<ServiceAccountConfiguration>& configuration) {
    configurationStorage_->setLastUsedConfiguration(serviceType, configuration);
}

std::optional<ServiceAccountConfiguration>
IntegrationsManager::lastUsedConfiguration(ServiceType serviceType) const {
    return configurationStorage_->lastUsedConfiguration(serviceType);
}

void IntegrationsManager::storeServiceConfiguration(const ServiceAccountConfiguration& configuration) {
    configurationStorage_->save(configuration);
}

void IntegrationsManager::trySaveServiceConfiguration(const ServiceAccountConfiguration& configuration,
                                                      AccountCompletion completion) {
    fetchAccount(configuration,
                 [storage = configurationStorage_, interactor = platformInteractor_, flowNote = flowNote_,
                  completion = std::move(completion)](AccountResult account) mutable {
                     if (account && isAccountExist(*storage, *account)) {
                         account = failure(AccountError::accountAlreadyExist(*account));
                     }
                     if (account) {
                         saveAccount(*account, *storage, flowNote);
                         interactor->integrationServiceDidAdded(*account);
                     }
                     completion(std::move(account));
                 });
}

void IntegrationsManager::tryUpdateServiceConfiguration(const ServiceAccountConfiguration& withNew,
                                                        const ServiceAccountConfiguration& fromOld,
                                                        AccountCompletion completion) {
    fetchAccount(withNew, [old = fromOld, completion = std::move(completion)](AccountResult account) mutable {
        if (account && account->identifier() != old.identifier()) {
            account = failure(AccountError::accountMismatch(old, *account));
        }
        if (account) {
            storeSecrets(*account);
        }
        completion(std::move(account));
    });
}

void IntegrationsManager::replaceServiceConfiguration(const ServiceAccountConfiguration& old,
                                                      const ServiceAccountConfiguration& with,
                                                      AccountCompletion completion) {
    const auto replacement = with.userName() ? createAccount(with, *with.userName()) : std::nullopt;
    if (!replacement) {
        return completion(failure(AccountError::dataLoadingError()));
    }
    // The new account is there before the old one goes: a process that is killed in between loses neither.
    saveAccount(*replacement, *configurationStorage_, flowNote_);
    if (old.credentials && !haveOneKey(*old.credentials, *replacement->credentials)) {
        removeSecrets(old);
    }
    if (old.identifier() != replacement->identifier()) {
        configurationStorage_->remove(old);
    }
    completion(*replacement);
}

std::optional<ServiceAccountConfiguration>
IntegrationsManager::loadServiceConfiguration(const std::string& identifier) const {
    return configurationStorage_->load(identifier);
}

void IntegrationsManager::removeAllServiceConfigurations() {
    for (const auto& configuration : servicesConfigurations()) {
        removeServiceConfiguration(configuration);
    }
}

void IntegrationsManager::fetchAccount(const ServiceAccountConfiguration& configuration,
                                       AccountCompletion completion) {
    switch (accountCheck(configuration.serviceType())) {
    case AccountCheck::none:
        return completion(configuration);
    case AccountCheck::byExporter:
        return fetchAccountByExporter(configuration, std::move(completion));
    case AccountCheck::byMeetingCreator:
        return fetchAccountByMeetingCreator(configuration, std::move(completion));
    }
}

void IntegrationsManager::fetchAccountByExporter(const ServiceAccountConfiguration& configuration,
                                                 AccountCompletion completion) {
    auto temporary = createAccount(configuration, temporaryUserName);
    if (!temporary) {
        return completion(failure(AccountError::dataLoadingError()));
    }
    temporary = underKeyOfItsOwn(*std::move(temporary));
    const auto exporter =
        createServiceExporter(*temporary, std::make_shared<IntegrationsDataInteractorStub>());
    if (!exporter) {
        return completion(failure(AccountError::dataLoadingError()));
    }
    exporter->fetchServiceData(
        [note = noted(flowNote_, temporary->credentials->serviceCredentialsKey), temporary = *temporary,
         configuration, exporter, storage = configurationStorage_,
         completion = std::move(completion)](const Result<void, IntegrationLoadError>& fetched) mutable {
            auto account = loadAccount(fetched, temporary, configuration, *exporter, *storage);
            note = nullptr;
            completion(std::move(account));
        });
}

void IntegrationsManager::fetchAccountByMeetingCreator(const ServiceAccountConfiguration& configuration,
                                                       AccountCompletion completion) {
    if (!configuration.credentials) {
        return completion(failure(AccountError::dataLoadingError()));
    }
    const auto temporary = underKeyOfItsOwn(configuration);
    const auto creator = createMeetingCreator(temporary);
    auto* fetcher = dynamic_cast<IntegrationsServiceDataFetcher*>(creator.get());
    if (!fetcher) {
        return completion(failure(AccountError::dataLoadingError()));
    }
    fetcher->fetchServiceData([note = noted(flowNote_, temporary.credentials->serviceCredentialsKey),
                               temporary, configuration, creator, completion = std::move(completion)](
                                  const Result<void, IntegrationLoadError>& fetched) mutable {
        auto account = checkedAccount(fetched, temporary, configuration, *creator);
        note = nullptr;
        completion(std::move(account));
    });
}

} // namespace zelto
