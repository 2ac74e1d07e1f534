#include <ZeltoIntegrations/Evernote/EvernoteExportConfiguration.h>

#include <ZeltoIntegrations/Evernote/EvernoteExporter.h>
#include <ZeltoIntegrations/Export/ConfigurationDiff.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(EvernoteExportConfiguration, saveTo, saveAs, userTitle, attachments, tags, externalLink,
                  remark, supportedContentTypes);

std::vector<std::string> EvernoteExportConfiguration::diff(const EvernoteExportConfiguration& userConfig,
                                                           bool attachmentsAreSelectedByDefault) const {
    return ConfigurationDiff()
        .field("saveTo", saveTo, userConfig.saveTo)
        .field("saveAs", saveAs, userConfig.saveAs)
        .field("userTitle", userTitle, userConfig.userTitle)
        .attachments(attachments, userConfig.attachments, attachmentsAreSelectedByDefault)
        .field("tags", tags, userConfig.tags)
        .field("externalLink", externalLink, userConfig.externalLink)
        .field("remark", remark, userConfig.remark)
        .names();
}

void EvernoteExportConfiguration::storeLastExportInfo(EvernoteExporter& exporter) const {
    exporter.setLastExportContentType(saveAs);
    exporter.lastExportInfo.set(saveTo);
    exporter.lastExportTags.set(tags);
}

} // namespace zelto
