#pragma once

#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>
#include <ZeltoIntegrations/Content/IntegrationLink.h>
#include <ZeltoIntegrations/Notion/NotionRecords.h>

#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONKeys.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

class NotionExporter;

struct NotionExportConfiguration {
    using Exporter = NotionExporter;

    std::optional<NotionSaveToInfo> saveTo;
    IntegrationExportContentType saveAs = IntegrationExportContentType::emailWeblink;
    std::optional<std::string> userTitle; // the page's title
    IntegrationWebLinkVisibility webLinkVisibility = IntegrationWebLinkVisibility::onlyMe;
    std::optional<std::uint64_t> teamId;
    std::optional<std::string> userNote; // stands above all else, with a divider behind it
    std::vector<IntegrationExportContentType> supportedContentTypes;

    IntegrationExportContentType exportType() const { return saveAs; }

    std::vector<std::string> diff(const NotionExportConfiguration& userConfig,
                                  bool attachmentsAreSelectedByDefault) const;
    // The title and the note are of one page alone.
    void storeLastExportInfo(NotionExporter& exporter) const;

    bool operator==(const NotionExportConfiguration&) const = default;
};

ZELTO_JSON_CODED(NotionExportConfiguration);
ZELTO_JSON_KEYS(NotionExportConfiguration);

} // namespace zelto
