#pragma once

#include "base/Outcome.h"
#include "export/ConfigurationEdits.h"
#include "export/PassedLimit.h"
#include "export/RefusalAdvice.h"
#include "export/SentRequest.h"
#include "export/Targets.h"

#include <ZeltoIntegrations/Content/IntegrationError.h>
#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>
#include <ZeltoIntegrations/Export/ExportProgress.h>
#include <ZeltoIntegrations/Export/ExportReport.h>

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
    std::string more; // a sentence about targets that are not among them; empty if there are none
};

// What an export would come to.
struct ExportPlan {
    std::string title;
    IntegrationExportContentType saveAs;
    std::string target; // "Board/List"; empty where none is chosen, and for a service without targets
    std::vector<std::string> attachments;
    std::vector<std::string> tags;
    // The attachments that `--attach all` meant and the service does not take.
    std::vector<std::string> leftOut;
    // The options that were given and make no difference.
    std::vector<UnusedOption> unused;
    // Why no target is chosen, for an export that needs one.
    std::optional<Failure> missingTarget;
};

// Whether the service may be asked for data that were never loaded.
enum class DataLoading { whereMissing, never };

// Whether a configuration's JSON is that of its record, or has names in it.
enum class ConfigurationForm { record, names };

// One exporter as the command line drives it, whatever its configuration is. Calls block until they are done.
class ExportSession {
  public:
    using OnStarted = std::function<void(std::shared_ptr<ExportProgress>)>;

    virtual ~ExportSession() = default;

    // The configuration that the exporter offers; with a target of --target where one is given.
    virtual Outcome<JSONObject> offeredConfiguration(const std::optional<std::string>& target,
                                                     ConfigurationForm form) = 0;

    // The names of the types that an export to the service may have.
    virtual std::vector<std::string> takenTypes() = 0;

    // The one that an export has where none was ever chosen.
    virtual std::string usualType() = 0;

    // The preview of a type, without one of the type that the exporter offers; nullopt where it has none.
    virtual Outcome<std::optional<IntegrationExportPreview>>
    preview(std::optional<IntegrationExportContentType> type) = 0;

    // As they were loaded last, and from the service if they never were or `refresh` asks for it. Wrong usage
    // for a service without targets.
    virtual Outcome<LoadedTargets> targets(bool refresh) = 0;

    // Whether an export goes over the network, by requests that each leave something on the service.
    virtual bool isOnWeb() const = 0;

    // Makes the offered configuration with its edits that of the next run().
    virtual Outcome<ExportPlan> prepare(const ConfigurationEdits& edits, DataLoading loading) = 0;

    // Exports what was prepared. `onStarted` gets the progress at once; a second one follows where an export
    // is repeated with a policy.
    virtual ExporterResult<void> run(const OnStarted& onStarted) = 0;

    // What the last export did on its service.
    virtual ExportReport report() const = 0;

    // The files that the last export has found in place of its own, as they are shown.
    virtual std::vector<std::string> existingFiles() const = 0;

    // Whether the service refuses a request for a target that is not there in a way of its own.
    virtual bool tellsMissingTargets() const = 0;

    // What a refusal means by the service's own words; nullopt for what any service's refusal means.
    virtual std::optional<RefusalAdvice> adviceOn(const ExportReport::Refused& refused) const = 0;

    // For a dry run: the response to a request of the export, the limits that the requests would pass,
    // sentences about what else of them the service would refuse, and one about what was taken for granted of
    // the service, which is not asked; empty for nothing.
    virtual StandInResponse standInResponse(const SentRequest& request) const = 0;
    virtual std::vector<PassedLimit> passedLimits(const std::vector<SentRequest>& requests) const = 0;
    virtual std::vector<std::string> refusals(const std::vector<SentRequest>& requests) const = 0;
    virtual std::string assumption(const std::vector<SentRequest>& requests) const = 0;
};

} // namespace zelto::cli
