#pragma once

#include "export/ServiceAdapter.h"

#include <ZeltoIntegrations/Evernote/EvernoteExporter.h>

namespace zelto::cli {

struct EvernoteAdapter : WebAdapter<EvernoteExporter> {
    using TargetData = EvernoteData;

    // The remark is the note of the user's own. Tags are chosen by setTags.
    static EditableFields fields(EvernoteExportConfiguration& configuration);

    static TargetTree targetTree(const EvernoteData& data);
    static void setTarget(EvernoteExportConfiguration& configuration, const EvernoteData& data,
                          const TargetPath& path);
    static std::string targetName(const EvernoteExportConfiguration& configuration);
    static constexpr bool hasTargetItself = true;

    static void setTags(EvernoteExportConfiguration& configuration, const std::optional<EvernoteData>& data,
                        const std::vector<std::string>& names);

    // The exporter itself asks its client for what it has not kept, also where nothing may be asked.
    template <class Done> static void loadTargetData(EvernoteExporter& exporter, bool force, Done done) {
        if (force) {
            exporter.loadData(force, std::move(done));
        } else {
            done(keptData(exporter));
        }
    }

    static std::optional<ServiceRefusal> lastRefusal(const EvernoteExporter& /*exporter*/) {
        return std::nullopt;
    }

    static std::vector<PassedLimit> passedLimits(const EvernoteExporter& exporter,
                                                 const EvernoteExportConfiguration& configuration,
                                                 const std::vector<SentRequest>& requests);

  private:
    static std::optional<EvernoteData> keptData(const EvernoteExporter& exporter);
};

} // namespace zelto::cli
