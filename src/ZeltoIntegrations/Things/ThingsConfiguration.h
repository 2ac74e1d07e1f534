#pragma once

#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>

#include <Platform/Date.h>
#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONKeys.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

class ThingsExporter;

struct ThingsConfiguration {
    using Exporter = ThingsExporter;

    IntegrationExportContentType saveAs = IntegrationExportContentType::emailBacklink;
    std::optional<Date> dueDate;
    std::optional<Date> deadline;
    std::optional<std::string> userTitle;
    std::vector<IntegrationExportContentType> supportedContentTypes;

    IntegrationExportContentType exportType() const { return saveAs; }

    std::vector<std::string> diff(const ThingsConfiguration& userConfig,
                                  bool attachmentsAreSelectedByDefault) const;
    void storeLastExportInfo(ThingsExporter& exporter) const;

    bool operator==(const ThingsConfiguration&) const = default;
};

ZELTO_JSON_CODED(ThingsConfiguration);
ZELTO_JSON_KEYS(ThingsConfiguration);

} // namespace zelto
