#pragma once

#include <ZeltoIntegrations/Content/IntegrationAttachments.h>
#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>
#include <ZeltoIntegrations/OneNote/OneNoteRecords.h>

#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONKeys.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

class OneNoteExporter;

struct OneNoteExportConfiguration {
    using Exporter = OneNoteExporter;

    std::optional<OneNoteSaveToInfo> saveTo;
    IntegrationExportContentType saveAs = IntegrationExportContentType::emailBacklink;
    std::optional<std::string> userNote;  // above what the page shows of the message
    std::optional<std::string> userTitle; // of a page with a PDF or with an external link
    IntegrationAttachments attachments;
    std::optional<std::string> externalLink; // an address, for that type alone
    std::vector<IntegrationExportContentType> supportedContentTypes;

    IntegrationExportContentType exportType() const { return saveAs; }

    std::vector<std::string> diff(const OneNoteExportConfiguration& userConfig,
                                  bool attachmentsAreSelectedByDefault) const;
    void storeLastExportInfo(OneNoteExporter& exporter) const;

    bool operator==(const OneNoteExportConfiguration&) const = default;
};

ZELTO_JSON_CODED(OneNoteExportConfiguration);
ZELTO_JSON_KEYS(OneNoteExportConfiguration);

} // namespace zelto
