#include <ZeltoIntegrations/Asana/AsanaExportConfiguration.h>

#include <ZeltoIntegrations/Asana/AsanaExporter.h>
#include <ZeltoIntegrations/Export/ConfigurationDiff.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(AsanaExportConfiguration, saveTo, saveAs, userTitle, userNote, attachments,
                  supportedContentTypes);

std::vector<std::string> AsanaExportConfiguration::diff(const AsanaExportConfiguration& userConfig,
                                                        bool attachmentsAreSelectedByDefault) const {
    return ConfigurationDiff()
        .field("saveAs", saveAs, userConfig.saveAs)
        .field("userTitle", userTitle, userConfig.userTitle)
        .field("userNote", userNote, userConfig.userNote)
        .attachments(attachments, userConfig.attachments, attachmentsAreSelectedByDefault)
        .part("workspace", &AsanaSaveToInfo::workspace, saveTo, userConfig.saveTo)
        .part("project", &AsanaSaveToInfo::project, saveTo, userConfig.saveTo)
        .part("user", &AsanaSaveToInfo::user, saveTo, userConfig.saveTo)
        .names();
}

void AsanaExportConfiguration::storeLastExportInfo(AsanaExporter& exporter) const {
    exporter.setLastExportContentType(saveAs);
    exporter.lastExportInfo.set(saveTo);
}

} // namespace zelto
