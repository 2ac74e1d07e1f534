#pragma once

#include "export/ServiceAdapter.h"

#include <ZeltoIntegrations/Todoist/TodoistExporter.h>

namespace zelto::cli {

struct TodoistAdapter : WebAdapter<TodoistExporter> {
    using TargetData = TodoistFullData;

    static TargetTree targetTree(const TodoistFullData& data);
    static void setTarget(TodoistExportConfiguration& configuration, const TodoistFullData& data,
                          const TargetPath& path);
    static std::string targetName(const TodoistExportConfiguration& configuration);

    static std::string standInResponse(const SentRequest& request);
    static std::vector<PassedLimit> passedLimits(const TodoistExporter& exporter,
                                                 const TodoistExportConfiguration& configuration,
                                                 const std::vector<SentRequest>& requests);
};

} // namespace zelto::cli
