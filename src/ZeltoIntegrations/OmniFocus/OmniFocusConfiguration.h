#pragma once

#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>

#include <Platform/Date.h>
#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONKeys.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

class OmniFocusExporter;

struct OmniFocusConfiguration {
    using Exporter = OmniFocusExporter;

    IntegrationExportContentType saveAs = IntegrationExportContentType::emailBacklink;
    std::optional<Date> dueDate;
    std::optional<std::string> userTitle;
    std::vector<IntegrationExportContentType> supportedContentTypes;

    IntegrationExportContentType exportType() const { return saveAs; }

    std::vector<std::string> diff(const OmniFocusConfiguration& userConfig,
                                  bool attachmentsAreSelectedByDefault) const;
    void storeLastExportInfo(OmniFocusExporter& exporter) const;

    bool operator==(const OmniFocusConfiguration&) const = default;
};

ZELTO_JSON_CODED(OmniFocusConfiguration);
ZELTO_JSON_KEYS(OmniFocusConfiguration);

} // namespace zelto
