#pragma once

#include <ZeltoIntegrations/Content/IntegrationAttachments.h>
#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>
#include <ZeltoIntegrations/Trello/TrelloRecords.h>

#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONKeys.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

class TrelloExporter;

struct TrelloExportConfiguration {
    using Exporter = TrelloExporter;

    std::optional<TrelloSaveToInfo> saveTo;
    IntegrationExportContentType saveAs = IntegrationExportContentType::pdf;
    std::optional<std::string> userTitle; // the card's name
    IntegrationAttachments attachments;
    std::vector<IntegrationExportContentType> supportedContentTypes;

    IntegrationExportContentType exportType() const { return saveAs; }

    std::vector<std::string> diff(const TrelloExportConfiguration& userConfig,
                                  bool attachmentsAreSelectedByDefault) const;
    void storeLastExportInfo(TrelloExporter& exporter) const;

    bool operator==(const TrelloExportConfiguration&) const = default;
};

ZELTO_JSON_CODED(TrelloExportConfiguration);
ZELTO_JSON_KEYS(TrelloExportConfiguration);

} // namespace zelto
