#pragma once

#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>
#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>
#include <ZeltoIntegrations/Content/IntegrationsDateFormatter.h>
#include <ZeltoIntegrations/Content/IntegrationsInteractorTypes.h>

#include <Platform/Completion.h>
#include <Platform/URL.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

class EvernoteClient;
class RemindersClient;

// What the host does for the system. Called from any thread; a completion comes once, on any thread.
class IntegrationsPlatformInteractorProtocol {
  public:
    virtual ~IntegrationsPlatformInteractorProtocol() = default;

    // Clients of the services that are reached through the platform; nothing where the host has none.
    virtual std::shared_ptr<EvernoteClient>
    evernoteClient(const ServiceAccountConfiguration& configuration) = 0;
    virtual std::shared_ptr<RemindersClient> remindersClient() = 0;

    virtual std::shared_ptr<IntegrationsDateFormatter> dateFormatter() = 0;

    // Renders HTML into a PDF file at the path, and says whether that worked.
    virtual void convert(std::string html, std::filesystem::path toPdf, Callback<bool> completion) = 0;

    // Opens a URL on the user's system, and says whether that worked.
    virtual void executeAction(URL url, Callback<bool> completion) = 0;

    // Analytics: one export, one import. An error is the case's name.
    virtual void postExportEvent(ServiceType service, IntegrationExportContentType exportType,
                                 const std::vector<std::string>& modifiedFields,
                                 const std::optional<std::string>& actionSource,
                                 const std::optional<std::string>& exportError) = 0;
    virtual void postImportEvent(ServiceType service, ImportActionType actionType,
                                 const std::optional<std::string>& actionSource,
                                 const std::optional<std::string>& importError) = 0;

    virtual void integrationServiceDidAdded(const ServiceAccountConfiguration& configuration) = 0;
    virtual void integrationServiceDidRemoved(const ServiceAccountConfiguration& configuration) = 0;
};

} // namespace zelto
