#include <ZeltoIntegrations/Trello/TrelloExportConfiguration.h>

#include <ZeltoIntegrations/Export/ConfigurationDiff.h>
#include <ZeltoIntegrations/Trello/TrelloExporter.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(TrelloExportConfiguration, saveTo, saveAs, userTitle, attachments, supportedContentTypes);

std::vector<std::string> TrelloExportConfiguration::diff(const TrelloExportConfiguration& userConfig,
                                                         bool attachmentsAreSelectedByDefault) const {
    return ConfigurationDiff()
        .field("saveAs", saveAs, userConfig.saveAs)
        .field("userTitle", userTitle, userConfig.userTitle)
        .attachments(attachments, userConfig.attachments, attachmentsAreSelectedByDefault)
        .part("board", &TrelloSaveToInfo::board, saveTo, userConfig.saveTo)
        .part("list", &TrelloSaveToInfo::list, saveTo, userConfig.saveTo)
        .names();
}

void TrelloExportConfiguration::storeLastExportInfo(TrelloExporter& exporter) const {
    exporter.setLastExportContentType(saveAs);
    exporter.lastExportInfo.set(saveTo);
}

} // namespace zelto
