#pragma once

#include <ZeltoIntegrations/Content/IntegrationAttachments.h>
#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>

#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONKeys.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

class ICloudExporter;

struct ICloudExportConfiguration {
    using Exporter = ICloudExporter;

    IntegrationExportContentType saveAs = IntegrationExportContentType::pdf;
    std::optional<std::string> userTitle; // the name of the message's file, without its extension
    IntegrationAttachments attachments;
    std::vector<IntegrationExportContentType> supportedContentTypes;

    IntegrationExportContentType exportType() const { return saveAs; }

    std::vector<std::string> diff(const ICloudExportConfiguration& userConfig,
                                  bool attachmentsAreSelectedByDefault) const;
    // The title is of one export alone.
    void storeLastExportInfo(ICloudExporter& exporter) const;

    bool operator==(const ICloudExportConfiguration&) const = default;
};

ZELTO_JSON_CODED(ICloudExportConfiguration);
ZELTO_JSON_KEYS(ICloudExportConfiguration);

} // namespace zelto
