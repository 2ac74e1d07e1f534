#pragma once

#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>

#include <Platform/Date.h>
#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONKeys.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

class TwoDoExporter;

struct TwoDoConfiguration {
    using Exporter = TwoDoExporter;

    IntegrationExportContentType saveAs = IntegrationExportContentType::emailBacklink;
    std::optional<Date> dueDate;
    std::optional<std::string> userTitle;
    std::vector<IntegrationExportContentType> supportedContentTypes;

    IntegrationExportContentType exportType() const { return saveAs; }

    std::vector<std::string> diff(const TwoDoConfiguration& userConfig,
                                  bool attachmentsAreSelectedByDefault) const;
    void storeLastExportInfo(TwoDoExporter& exporter) const;

    bool operator==(const TwoDoConfiguration&) const = default;
};

ZELTO_JSON_CODED(TwoDoConfiguration);
ZELTO_JSON_KEYS(TwoDoConfiguration);

} // namespace zelto
