#pragma once

#include <ZeltoIntegrations/Accounts/IntegrationAccountCreationError.h>
#include <ZeltoIntegrations/Accounts/ServiceConfigurationsStorage.h>
#include <ZeltoIntegrations/Accounts/ServiceFacts.h>
#include <ZeltoIntegrations/Client/MeetingCreator.h>
#include <ZeltoIntegrations/Content/IntegrationError.h>
#include <ZeltoIntegrations/Content/IntegrationsDataInteractorProtocol.h>
#include <ZeltoIntegrations/Export/IntegrationsPlatformInteractorProtocol.h>
#include <ZeltoIntegrations/Export/ServiceExporter.h>
#include <ZeltoIntegrations/Import/ServiceImporter.h>

#include <Platform/Completion.h>

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// The one object that a host holds: the accounts, the two flows that connect them, and the factory of
// exporters, importers and meeting creators.
//
// A flow asks the service with secrets under a key of its own, which is gone when the flow has ended: it
// takes no secret of another flow, and only a flow that succeeds writes the account's key.
//
// It has no state beyond what it is made with, and no lock. Synchronous operations run on the caller's
// thread; a completion of the flows comes once, on the thread of the data fetch (or at once where there is
// none), and the storage and the platform interactor are called there too. A flow in progress keeps alive
// what it needs; the manager itself may be released.
class IntegrationsManager {
  public:
    using EmailValidator = std::function<bool(const std::string&)>;
    using AccountCompletion = Completion<ServiceAccountConfiguration, IntegrationAccountCreationError>;

    IntegrationsManager(std::shared_ptr<ServiceConfigurationsStorage> storage,
                        std::shared_ptr<IntegrationsPlatformInteractorProtocol> interactor,
                        EmailValidator emailValidator, std::string attachmentsPath);
    virtual ~IntegrationsManager();

    // The product name, and "+" and the user name where there is one.
    std::string getServiceIdentifier(ServiceType from, const std::optional<std::string>& andUsername) const;
    // Of the account that stands for one of the service while it is being connected.
    std::string temporaryIdentifier(ServiceType serviceType) const;

    static AccountCheck accountCheck(ServiceType serviceType);

    // Called when a flow begins to ask a service, with the key in the key chain that it uses till its end;
    // what it gives is held till then. Called again with the key of a new account, and held from before its
    // secrets are written until its record is saved. A host that may be killed meanwhile notes the keys by
    // it, and removes later what was left there: secrets of a flow, and secrets that no account has. To be
    // set before the first flow.
    using FlowNote = std::function<std::shared_ptr<void>(const std::string& serviceCredentialsKey)>;
    void setFlowNote(FlowNote note);

    // By the raw value of the type; within a group the storage's order stands.
    std::map<int, std::vector<ServiceAccountConfiguration>> servicesConfigurationsGroupedByType() const;
    std::vector<ServiceAccountConfiguration> servicesConfigurations() const;

    // Removes the secrets and the record, and notifies the platform interactor.
    void removeServiceConfiguration(const ServiceAccountConfiguration& configuration);

    void setLastUsedConfiguration(ServiceType serviceType,
                                  const std::optional<ServiceAccountConfiguration>& configuration);
    std::optional<ServiceAccountConfiguration> lastUsedConfiguration(ServiceType serviceType) const;

    // Saves the record; the key chain is not touched.
    void storeServiceConfiguration(const ServiceAccountConfiguration& configuration);

    // Connects an account as it stands after authorisation: the secrets are filled, the user name may be
    // missing. Services with data are asked for the user's e-mail first, under a temporary account that is
    // removed again. It is stored only if all went well.
    void trySaveServiceConfiguration(const ServiceAccountConfiguration& configuration,
                                     AccountCompletion completion);

    // Re-authorises `fromOld`: the same fetch, and the user must be the same. Stores the secrets alone; the
    // record is the caller's to store.
    void tryUpdateServiceConfiguration(const ServiceAccountConfiguration& withNew,
                                       const ServiceAccountConfiguration& fromOld,
                                       AccountCompletion completion);

    // Puts one account in the place of another, without fetch or validation; completes before it returns.
    void replaceServiceConfiguration(const ServiceAccountConfiguration& old,
                                     const ServiceAccountConfiguration& with, AccountCompletion completion);

    std::optional<ServiceAccountConfiguration> loadServiceConfiguration(const std::string& identifier) const;
    // One by one, so that the host is notified of each.
    void removeAllServiceConfigurations();

    // An exporter for the account's service, as the class that is asked for; null where the service has
    // none or one of another class.
    template <class T = ServiceExporter>
    std::shared_ptr<T>
    createServiceExporter(const ServiceAccountConfiguration& configuration,
                          std::shared_ptr<IntegrationsDataInteractorProtocol> dataInteractor,
                          std::optional<std::string> actionSource = std::nullopt,
                          bool attachmentsAreSelectedByDefault = true) {
        return std::dynamic_pointer_cast<T>(makeServiceExporter(configuration, std::move(dataInteractor),
                                                                std::move(actionSource),
                                                                attachmentsAreSelectedByDefault));
    }

    template <class T = ServiceImporter>
    std::shared_ptr<T> createServiceImporter(const ServiceAccountConfiguration& configuration,
                                             std::optional<std::string> actionSource = std::nullopt) {
        return std::dynamic_pointer_cast<T>(makeServiceImporter(configuration, std::move(actionSource)));
    }

    // Null for an account without credentials, and for a service that is none of meetings.
    virtual std::shared_ptr<MeetingCreator>
    createMeetingCreator(const ServiceAccountConfiguration& configuration);

  protected:
    virtual std::shared_ptr<ServiceExporter>
    makeServiceExporter(const ServiceAccountConfiguration& configuration,
                        std::shared_ptr<IntegrationsDataInteractorProtocol> dataInteractor,
                        std::optional<std::string> actionSource, bool attachmentsAreSelectedByDefault);
    virtual std::shared_ptr<ServiceImporter>
    makeServiceImporter(const ServiceAccountConfiguration& configuration,
                        std::optional<std::string> actionSource);

  private:
    // Gives the account under the name that the service knows it by, and as it stands where there is no
    // data to fetch.
    void fetchAccount(const ServiceAccountConfiguration& configuration, AccountCompletion completion);
    void fetchAccountByExporter(const ServiceAccountConfiguration& configuration,
                                AccountCompletion completion);
    void fetchAccountByMeetingCreator(const ServiceAccountConfiguration& configuration,
                                      AccountCompletion completion);

    const std::shared_ptr<ServiceConfigurationsStorage> configurationStorage_;
    const std::shared_ptr<IntegrationsPlatformInteractorProtocol> platformInteractor_;
    const EmailValidator emailValidator_;
    const std::string attachmentsPath_;
    FlowNote flowNote_;
};

} // namespace zelto
