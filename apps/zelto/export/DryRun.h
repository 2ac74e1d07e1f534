#pragma once

#include "base/Outcome.h"
#include "base/Terminal.h"
#include "export/MessageWork.h"

#include <functional>

namespace zelto::cli {

// Shows what an export to a service on the web would send, and which of the service's limits it would pass.
// `run` runs the export that was prepared, which the recorder receives instead of the service. An export that
// fails is a failure that shows as much of it. `work` has been opened to send nothing.
Outcome<Report> dryRun(const MessageWork& work, const ExportPlan& plan, const Terminal& terminal,
                       const std::function<ExporterResult<void>()>& run);

} // namespace zelto::cli
