#pragma once

#include "export/ServiceAdapter.h"

#include <ZeltoIntegrations/Slack/SlackExporter.h>

namespace zelto::cli {

// A target is a channel, "#general", or a person, "@anna". Each also goes by its name without the mark, and a
// person by the display name.
struct SlackAdapter : WebAdapter<SlackExporter> {
    using TargetData = SlackFullData;

    static std::vector<UnusedOption> unusedOptions(IntegrationExportContentType type);

    static TargetTree targetTree(const SlackFullData& data);
    static void setTarget(SlackExportConfiguration& configuration, const SlackFullData& data,
                          const TargetPath& path);
    static std::string targetName(const SlackExportConfiguration& configuration);
    static std::string targetIdentifier(const JSONValue& saveTo);

    // The exporter itself asks the service for what it has not kept, also where nothing may be sent.
    template <class Done> static void loadTargetData(SlackExporter& exporter, bool force, Done done) {
        if (force) {
            exporter.loadData(force, std::move(done));
        } else {
            done(keptData(exporter));
        }
    }

    static std::optional<RefusalAdvice> adviceOn(const RefusedRequest& refused);

    static std::string standInResponse(const SentRequest& request);
    static std::vector<PassedLimit> passedLimits(const SlackExporter& exporter,
                                                 const SlackExportConfiguration& configuration,
                                                 const std::vector<SentRequest>& requests);

  private:
    static std::optional<SlackFullData> keptData(const SlackExporter& exporter);
};

} // namespace zelto::cli
