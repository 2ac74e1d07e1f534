#pragma once

#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>
#include <ZeltoIntegrations/Content/IntegrationLink.h>
#include <ZeltoIntegrations/Slack/SlackRecords.h>

#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONKeys.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

class SlackExporter;

struct SlackExportConfiguration {
    using Exporter = SlackExporter;

    std::optional<SlackSaveToInfo> saveTo;
    IntegrationExportContentType saveAs = IntegrationExportContentType::emailWeblink;
    std::optional<std::string> userTitle; // in reports alone; a message has no title
    std::optional<std::string> userNote;  // stands above all else, in the service's mrkdwn
    IntegrationWebLinkVisibility webLinkVisibility = IntegrationWebLinkVisibility::onlyMe;
    std::optional<std::uint64_t> teamId;
    std::vector<IntegrationExportContentType> supportedContentTypes;

    IntegrationExportContentType exportType() const { return saveAs; }

    std::vector<std::string> diff(const SlackExportConfiguration& userConfig,
                                  bool attachmentsAreSelectedByDefault) const;
    // The title and the note are of one message alone.
    void storeLastExportInfo(SlackExporter& exporter) const;

    bool operator==(const SlackExportConfiguration&) const = default;
};

ZELTO_JSON_CODED(SlackExportConfiguration);
ZELTO_JSON_KEYS(SlackExportConfiguration);

} // namespace zelto
