#pragma once

#include "export/ServiceAdapter.h"

#include <ZeltoIntegrations/Notion/NotionExporter.h>

namespace zelto::cli {

// A target is a database, into which a page goes as an entry of a journal. A task is chosen by --config or
// --config-over.
struct NotionAdapter : WebAdapter<NotionExporter> {
    using TargetData = NotionFullData;

    static TargetTree targetTree(const NotionFullData& data);
    static void setTarget(NotionExportConfiguration& configuration, const NotionFullData& data,
                          const TargetPath& path);
    static std::string targetName(const NotionExportConfiguration& configuration);
    static const JSONValue* levelsIn(const JSONValue& saveTo);
    static std::string moreTargets(const NotionExporter& exporter, const NotionFullData& data, bool isFresh);

    // The exporter itself asks the service for what it has not kept, also where nothing may be sent.
    template <class Done> static void loadTargetData(NotionExporter& exporter, bool force, Done done) {
        if (force) {
            exporter.loadData(force, std::move(done));
        } else {
            done(keptData(exporter));
        }
    }

    static constexpr bool tellsMissingTargets = true;

    static std::vector<std::string> refusals(const std::vector<SentRequest>& requests);
    static std::string standInResponse(const SentRequest& request);
    static std::vector<PassedLimit> passedLimits(const NotionExporter& exporter,
                                                 const NotionExportConfiguration& configuration,
                                                 const std::vector<SentRequest>& requests);

  private:
    static std::optional<NotionFullData> keptData(const NotionExporter& exporter);
};

} // namespace zelto::cli
