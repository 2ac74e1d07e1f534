#include <ZeltoIntegrations/OneNote/OneNoteExportConfiguration.h>

#include <ZeltoIntegrations/Export/ConfigurationDiff.h>
#include <ZeltoIntegrations/OneNote/OneNoteExporter.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(OneNoteExportConfiguration, saveTo, saveAs, userNote, userTitle, attachments, externalLink,
                  supportedContentTypes);

std::vector<std::string> OneNoteExportConfiguration::diff(const OneNoteExportConfiguration& userConfig,
                                                          bool attachmentsAreSelectedByDefault) const {
    return ConfigurationDiff()
        .field("saveAs", saveAs, userConfig.saveAs)
        .field("userNote", userNote, userConfig.userNote)
        .field("userTitle", userTitle, userConfig.userTitle)
        .attachments(attachments, userConfig.attachments, attachmentsAreSelectedByDefault)
        .field("externalLink", externalLink, userConfig.externalLink)
        .part("notebook", &OneNoteSaveToInfo::notebook, saveTo, userConfig.saveTo)
        .part("section", &OneNoteSaveToInfo::section, saveTo, userConfig.saveTo)
        .names();
}

void OneNoteExportConfiguration::storeLastExportInfo(OneNoteExporter& exporter) const {
    exporter.setLastExportContentType(saveAs);
    exporter.lastExportInfo.set(saveTo);
}

} // namespace zelto
