#pragma once

#include "ConfigurationEdits.h"
#include "Outcome.h"

#include <ZeltoIntegrations/IntegrationError.h>
#include <ZeltoIntegrations/IntegrationsManager.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zelto::cli {

// One exporter as the command line drives it, whatever its configuration is. Calls block until they are done.
class ExportSession {
  public:
    virtual ~ExportSession() = default;

    // The configuration that the exporter offers, as JSON.
    virtual Outcome<std::string> offeredConfiguration() = 0;

    // The names of the types that an export to the service may have, "emailBacklink, backLink".
    virtual std::string takenTypes() = 0;

    // Nothing for a type that the exporter has no preview of; without a type, the one that it offers.
    virtual Outcome<std::optional<IntegrationExportPreview>>
    preview(std::optional<IntegrationExportContentType> type) = 0;

    // Exports the offered configuration with its edits. `onStarted` gets the progress at once.
    virtual Outcome<ExporterResult<void>>
    run(const ConfigurationEdits& edits,
        const std::function<void(std::shared_ptr<ExportProgress>)>& onStarted) = 0;
};

// Whether the program can export to the service, and a session that does.
bool canExport(ServiceType type);
Failure cannotExport(ServiceType type);
Outcome<std::unique_ptr<ExportSession>>
openExportSession(IntegrationsManager& manager, const ServiceAccountConfiguration& account,
                  std::shared_ptr<IntegrationsDataInteractorProtocol> message);

} // namespace zelto::cli
