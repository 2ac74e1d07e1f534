#pragma once

#include "base/Outcome.h"
#include "export/ConfigurationEdits.h"
#include "export/Targets.h"

#include <ZeltoIntegrations/Content/IntegrationError.h>
#include <ZeltoIntegrations/Export/ExportReport.h>
#include <ZeltoIntegrations/IntegrationsManager.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelto::cli {

// What an export can be put into, and the service's data that say it.
struct LoadedTargets {
    TargetTree tree;
    JSONObject data;
};

// What an export would come to.
struct ExportPlan {
    std::string title;
    IntegrationExportContentType saveAs;
    std::string target; // "Board/List"; empty for a service without targets
    std::vector<std::string> attachments;
};

// One exporter as the command line drives it, whatever its configuration is. Calls block until they are done.
class ExportSession {
  public:
    virtual ~ExportSession() = default;

    // The configuration that the exporter offers, as JSON; with a target of --target where one is given.
    virtual Outcome<std::string> offeredConfiguration(const std::optional<std::string>& target) = 0;

    // The names of the types that an export to the service may have, "emailBacklink, backLink".
    virtual std::string takenTypes() = 0;

    // Nothing for a type that the exporter has no preview of; without a type, the one that it offers.
    virtual Outcome<std::optional<IntegrationExportPreview>>
    preview(std::optional<IntegrationExportContentType> type) = 0;

    // As they were loaded last, and from the service if they never were or `refresh` asks for it. Wrong usage
    // for a service without targets.
    virtual Outcome<LoadedTargets> targets(bool refresh) = 0;

    // Whether an export goes over the network, by requests that each leave something on the service.
    virtual bool isOverNetwork() const = 0;

    // What run() would do.
    virtual Outcome<ExportPlan> plan(const ConfigurationEdits& edits) = 0;

    // Exports the offered configuration with its edits. `onStarted` gets the progress at once.
    virtual Outcome<ExporterResult<void>>
    run(const ConfigurationEdits& edits,
        const std::function<void(std::shared_ptr<ExportProgress>)>& onStarted) = 0;

    // What the last export did on its service, and where.
    virtual ExportReport report() const = 0;
    virtual const std::string& target() const = 0;

    // The attachments that `--attach all` meant and the service does not take, of the last plan() or run().
    virtual const std::vector<std::string>& leftOut() const = 0;
};

// The services that the program can export to, and a session that does.
std::vector<ServiceType> exportableServices();
bool canExport(ServiceType type);
Failure cannotExport(ServiceType type);
Outcome<std::unique_ptr<ExportSession>>
openExportSession(IntegrationsManager& manager, const ServiceAccountConfiguration& account,
                  std::shared_ptr<IntegrationsDataInteractorProtocol> message);

} // namespace zelto::cli
