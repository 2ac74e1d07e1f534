#include <ZeltoIntegrations/TwoDo/TwoDoConfiguration.h>

#include <ZeltoIntegrations/Export/ConfigurationDiff.h>
#include <ZeltoIntegrations/TwoDo/TwoDoExporter.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(TwoDoConfiguration, saveAs, dueDate, userTitle, supportedContentTypes);

std::vector<std::string> TwoDoConfiguration::diff(const TwoDoConfiguration& userConfig, bool) const {
    return ConfigurationDiff()
        .field("saveAs", saveAs, userConfig.saveAs)
        .field("dueDate", dueDate, userConfig.dueDate)
        .field("userTitle", userTitle, userConfig.userTitle)
        .names();
}

void TwoDoConfiguration::storeLastExportInfo(TwoDoExporter& exporter) const {
    exporter.setLastExportContentType(saveAs);
}

} // namespace zelto
