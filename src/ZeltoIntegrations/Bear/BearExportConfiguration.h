#pragma once

#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>

#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONKeys.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

class BearExporter;

struct BearExportConfiguration {
    using Exporter = BearExporter;

    IntegrationExportContentType saveAs = IntegrationExportContentType::emailBacklink;
    std::vector<std::string> tags;
    std::optional<std::string> userNote;
    std::optional<std::string> userTitle;
    std::vector<IntegrationExportContentType> supportedContentTypes;

    IntegrationExportContentType exportType() const { return saveAs; }

    std::vector<std::string> diff(const BearExportConfiguration& userConfig,
                                  bool attachmentsAreSelectedByDefault) const;
    void storeLastExportInfo(BearExporter& exporter) const;

    bool operator==(const BearExportConfiguration&) const = default;
};

ZELTO_JSON_CODED(BearExportConfiguration);
ZELTO_JSON_KEYS(BearExportConfiguration);

} // namespace zelto
