#pragma once

#include "export/ServiceAdapter.h"

#include <ZeltoIntegrations/Asana/AsanaExporter.h>

namespace zelto::cli {

// A target is a project; its task is given to the account's own user. Another user is chosen by --config or
// --config-over.
struct AsanaAdapter : WebAdapter<AsanaExporter> {
    using TargetData = AsanaFullData;

    static TargetTree targetTree(const AsanaFullData& data);
    static void setTarget(AsanaExportConfiguration& configuration, const AsanaFullData& data,
                          const TargetPath& path);
    static std::string targetName(const AsanaExportConfiguration& configuration);

    static constexpr std::string_view personKey = "user";
    static std::vector<TargetNode> people(const AsanaFullData& data, const TargetPath& path);
    static void setPerson(AsanaExportConfiguration& configuration, const AsanaFullData& data,
                          const TargetPath& path, std::size_t index);

    static std::string standInResponse(const SentRequest& request);
    static std::vector<PassedLimit> passedLimits(const AsanaExporter& exporter,
                                                 const AsanaExportConfiguration& configuration,
                                                 const std::vector<SentRequest>& requests);
};

} // namespace zelto::cli
