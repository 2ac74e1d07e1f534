#include <ZeltoIntegrations/Slack/SlackExportConfiguration.h>

#include <ZeltoIntegrations/Export/ConfigurationDiff.h>
#include <ZeltoIntegrations/Slack/SlackExporter.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(SlackExportConfiguration, saveTo, saveAs, userTitle, userNote, webLinkVisibility, teamId,
                  supportedContentTypes);

std::vector<std::string> SlackExportConfiguration::diff(const SlackExportConfiguration& userConfig,
                                                        bool) const {
    return ConfigurationDiff()
        .field("saveAs", saveAs, userConfig.saveAs)
        .field("userTitle", userTitle, userConfig.userTitle)
        .field("userNote", userNote, userConfig.userNote)
        .webLinks(*this, userConfig)
        .casePart("channelId", &SlackSaveToInfo::Channel::channelId, saveTo, userConfig.saveTo)
        .casePart("userId", &SlackSaveToInfo::User::userId, saveTo, userConfig.saveTo)
        .names();
}

void SlackExportConfiguration::storeLastExportInfo(SlackExporter& exporter) const {
    exporter.setLastExportContentType(saveAs);
    exporter.lastExportInfo.set(saveTo);
    exporter.webLinks.storeFrom(*this);
}

} // namespace zelto
