#include <ZeltoIntegrations/Todoist/TodoistExportConfiguration.h>

#include <ZeltoIntegrations/Export/ConfigurationDiff.h>
#include <ZeltoIntegrations/Todoist/TodoistExporter.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(TodoistExportConfiguration, saveTo, saveAs, dueDate, attachments, userTitle,
                  webLinkVisibility, teamId, supportedContentTypes);

std::vector<std::string> TodoistExportConfiguration::diff(const TodoistExportConfiguration& userConfig,
                                                          bool attachmentsAreSelectedByDefault) const {
    return ConfigurationDiff()
        .field("saveAs", saveAs, userConfig.saveAs)
        .field("dueDate", dueDate, userConfig.dueDate)
        .field("userTitle", userTitle, userConfig.userTitle)
        .webLinks(*this, userConfig)
        .attachments(attachments, userConfig.attachments, attachmentsAreSelectedByDefault)
        .part("project", &TodoistSaveToInfo::project, saveTo, userConfig.saveTo)
        .names();
}

void TodoistExportConfiguration::storeLastExportInfo(TodoistExporter& exporter) const {
    exporter.setLastExportContentType(saveAs);
    exporter.lastExportInfo.set(saveTo);
    exporter.webLinks.storeFrom(*this);
}

} // namespace zelto
