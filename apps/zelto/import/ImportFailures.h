#pragma once

#include "base/Outcome.h"
#include "base/Terminal.h"

#include <ZeltoIntegrations/Client/ServiceRefusal.h>
#include <ZeltoIntegrations/Content/IntegrationError.h>
#include <ZeltoIntegrations/Import/ImportReport.h>

#include <chrono>
#include <optional>
#include <string>

namespace zelto::cli {

// Why a folder of the service's account could not be listed; without one it is the drive's root.
Failure listingFailure(IntegrationLoadError error, const std::string& service, const std::string& account,
                       const std::optional<std::string>& folder,
                       const std::optional<ServiceRefusal>& refusal);

// What the sentences about downloads are made of.
struct ImportCircumstances {
    std::string service; // as the program shows it
    std::string account; // its identifier
    ImportReport report;
    bool wasInterrupted = false;
    std::optional<std::chrono::milliseconds> stalledFor; // and was cancelled for that
};

// Why files did not come, which ones, and what to do. What has come is printed all the same.
Failure importFailure(const ImportCircumstances& circumstances, const Terminal& terminal);

// The files that have come: "id", "name" and "path" of each; and their paths, one a line.
JSONValue::Array fetchedFiles(const ImportReport& report);
std::string fetchedPaths(const ImportReport& report, const Terminal& terminal);

} // namespace zelto::cli
