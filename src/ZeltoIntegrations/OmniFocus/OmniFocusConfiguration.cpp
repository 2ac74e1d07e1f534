#include <ZeltoIntegrations/OmniFocus/OmniFocusConfiguration.h>

#include <ZeltoIntegrations/Export/ConfigurationDiff.h>
#include <ZeltoIntegrations/OmniFocus/OmniFocusExporter.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(OmniFocusConfiguration, saveAs, dueDate, userTitle, supportedContentTypes);

std::vector<std::string> OmniFocusConfiguration::diff(const OmniFocusConfiguration& userConfig, bool) const {
    return ConfigurationDiff()
        .field("saveAs", saveAs, userConfig.saveAs)
        .field("dueDate", dueDate, userConfig.dueDate)
        .field("userTitle", userTitle, userConfig.userTitle)
        .names();
}

void OmniFocusConfiguration::storeLastExportInfo(OmniFocusExporter& exporter) const {
    exporter.setLastExportContentType(saveAs);
}

} // namespace zelto
