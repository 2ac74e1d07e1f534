#include <ZeltoIntegrations/Agenda/AgendaConfiguration.h>

#include <ZeltoIntegrations/Agenda/AgendaExporter.h>
#include <ZeltoIntegrations/Export/ConfigurationDiff.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(AgendaConfiguration, saveAs, userNote, userTitle, supportedContentTypes);

std::vector<std::string> AgendaConfiguration::diff(const AgendaConfiguration& userConfig, bool) const {
    return ConfigurationDiff()
        .field("saveAs", saveAs, userConfig.saveAs)
        .field("userNote", userNote, userConfig.userNote)
        .field("userTitle", userTitle, userConfig.userTitle)
        .names();
}

void AgendaConfiguration::storeLastExportInfo(AgendaExporter& exporter) const {
    exporter.setLastExportContentType(saveAs);
}

} // namespace zelto
