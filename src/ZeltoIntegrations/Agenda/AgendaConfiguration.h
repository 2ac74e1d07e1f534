#pragma once

#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>

#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONKeys.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

class AgendaExporter;

struct AgendaConfiguration {
    using Exporter = AgendaExporter;

    IntegrationExportContentType saveAs = IntegrationExportContentType::emailBacklink;
    std::optional<std::string> userNote;
    std::optional<std::string> userTitle;
    std::vector<IntegrationExportContentType> supportedContentTypes;

    IntegrationExportContentType exportType() const { return saveAs; }

    std::vector<std::string> diff(const AgendaConfiguration& userConfig,
                                  bool attachmentsAreSelectedByDefault) const;
    void storeLastExportInfo(AgendaExporter& exporter) const;

    bool operator==(const AgendaConfiguration&) const = default;
};

ZELTO_JSON_CODED(AgendaConfiguration);
ZELTO_JSON_KEYS(AgendaConfiguration);

} // namespace zelto
