#include <ZeltoIntegrations/Notion/NotionExportConfiguration.h>

#include <ZeltoIntegrations/Export/ConfigurationDiff.h>
#include <ZeltoIntegrations/Notion/NotionExporter.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(NotionExportConfiguration, saveTo, saveAs, userTitle, webLinkVisibility, teamId, userNote,
                  supportedContentTypes);

std::vector<std::string> NotionExportConfiguration::diff(const NotionExportConfiguration& userConfig,
                                                         bool) const {
    using Journal = NotionSaveToInfo::Journal;
    using Task = NotionSaveToInfo::Task;
    return ConfigurationDiff()
        .field("saveAs", saveAs, userConfig.saveAs)
        .field("userTitle", userTitle, userConfig.userTitle)
        .field("userNote", userNote, userConfig.userNote)
        .webLinks(*this, userConfig)
        .casePart("database", &Journal::database, saveTo, userConfig.saveTo)
        .casePart("project", &Task::project, saveTo, userConfig.saveTo)
        .casePart("assignee", &Task::assignee, saveTo, userConfig.saveTo)
        .casePart("status", &Task::status, saveTo, userConfig.saveTo)
        .casePart("dueDate", &Task::dueDate, saveTo, userConfig.saveTo)
        .names();
}

void NotionExportConfiguration::storeLastExportInfo(NotionExporter& exporter) const {
    exporter.setLastExportContentType(saveAs);
    exporter.lastExportInfo.set(saveTo);
    exporter.webLinks.storeFrom(*this);
}

} // namespace zelto
