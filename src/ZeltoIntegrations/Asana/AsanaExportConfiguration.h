#pragma once

#include <ZeltoIntegrations/Asana/AsanaRecords.h>
#include <ZeltoIntegrations/Content/IntegrationAttachments.h>
#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>

#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONKeys.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

class AsanaExporter;

struct AsanaExportConfiguration {
    using Exporter = AsanaExporter;

    std::optional<AsanaSaveToInfo> saveTo;
    IntegrationExportContentType saveAs = IntegrationExportContentType::pdf;
    std::optional<std::string> userTitle; // the task's name
    std::optional<std::string> userNote;  // its description
    IntegrationAttachments attachments;
    std::vector<IntegrationExportContentType> supportedContentTypes;

    IntegrationExportContentType exportType() const { return saveAs; }

    std::vector<std::string> diff(const AsanaExportConfiguration& userConfig,
                                  bool attachmentsAreSelectedByDefault) const;
    void storeLastExportInfo(AsanaExporter& exporter) const;

    bool operator==(const AsanaExportConfiguration&) const = default;
};

ZELTO_JSON_CODED(AsanaExportConfiguration);
ZELTO_JSON_KEYS(AsanaExportConfiguration);

} // namespace zelto
