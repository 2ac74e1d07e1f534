#pragma once

#include "export/ServiceAdapter.h"

#include <ZeltoIntegrations/OneNote/OneNoteExporter.h>

namespace zelto::cli {

// A target is a section of a notebook. An external link is given by --config or --config-over.
struct OneNoteAdapter : WebAdapter<OneNoteExporter> {
    using TargetData = OneNoteFullData;

    static std::vector<UnusedOption> unusedOptions(IntegrationExportContentType type);

    static TargetTree targetTree(const OneNoteFullData& data);
    static void setTarget(OneNoteExportConfiguration& configuration, const OneNoteFullData& data,
                          const TargetPath& path);
    static std::string targetName(const OneNoteExportConfiguration& configuration);

    static std::string standInResponse(const SentRequest& request);

    // What the service takes of a request today, which is less than what an export offers.
    static std::vector<PassedLimit> passedLimits(const OneNoteExporter& exporter,
                                                 const OneNoteExportConfiguration& configuration,
                                                 const std::vector<SentRequest>& requests);
};

} // namespace zelto::cli
