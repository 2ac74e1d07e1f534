#include <ZeltoIntegrations/Things/ThingsConfiguration.h>

#include <ZeltoIntegrations/Export/ConfigurationDiff.h>
#include <ZeltoIntegrations/Things/ThingsExporter.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(ThingsConfiguration, saveAs, dueDate, deadline, userTitle, supportedContentTypes);

std::vector<std::string> ThingsConfiguration::diff(const ThingsConfiguration& userConfig, bool) const {
    return ConfigurationDiff()
        .field("saveAs", saveAs, userConfig.saveAs)
        .field("dueDate", dueDate, userConfig.dueDate)
        .field("deadline", deadline, userConfig.deadline)
        .field("userTitle", userTitle, userConfig.userTitle)
        .names();
}

void ThingsConfiguration::storeLastExportInfo(ThingsExporter& exporter) const {
    exporter.setLastExportContentType(saveAs);
}

} // namespace zelto
