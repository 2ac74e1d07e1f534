#pragma once

#include <ZeltoIntegrations/Content/IntegrationAttachments.h>
#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>
#include <ZeltoIntegrations/Evernote/EvernoteRecords.h>

#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONKeys.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

class EvernoteExporter;

struct EvernoteExportConfiguration {
    using Exporter = EvernoteExporter;

    std::optional<EvernoteNotebook> saveTo;
    IntegrationExportContentType saveAs = IntegrationExportContentType::emailBacklink;
    std::optional<std::string> userTitle; // the note's title
    IntegrationAttachments attachments;
    std::vector<EvernoteTag> tags;
    std::optional<std::string> externalLink; // what a note of the type `externalLink` consists of
    std::optional<std::string> remark;       // stands above the message; plain text
    std::vector<IntegrationExportContentType> supportedContentTypes;

    IntegrationExportContentType exportType() const { return saveAs; }

    std::vector<std::string> diff(const EvernoteExportConfiguration& userConfig,
                                  bool attachmentsAreSelectedByDefault) const;
    // The title, the link and the remark are of one note alone.
    void storeLastExportInfo(EvernoteExporter& exporter) const;

    bool operator==(const EvernoteExportConfiguration&) const = default;
};

ZELTO_JSON_CODED(EvernoteExportConfiguration);
ZELTO_JSON_KEYS(EvernoteExportConfiguration);

} // namespace zelto
