#pragma once

#include "export/ServiceAdapter.h"

#include <ZeltoIntegrations/Trello/TrelloExporter.h>

namespace zelto::cli {

struct TrelloAdapter : WebAdapter<TrelloExporter> {
    using TargetData = TrelloFullData;

    static TargetTree targetTree(const TrelloFullData& data);
    static void setTarget(TrelloExportConfiguration& configuration, const TrelloFullData& data,
                          const TargetPath& path);
    static std::string targetName(const TrelloExportConfiguration& configuration);

    static std::string standInResponse(const SentRequest& request);
    static std::vector<PassedLimit> passedLimits(const TrelloExporter& exporter,
                                                 const TrelloExportConfiguration& configuration,
                                                 const std::vector<SentRequest>& requests);
};

} // namespace zelto::cli
