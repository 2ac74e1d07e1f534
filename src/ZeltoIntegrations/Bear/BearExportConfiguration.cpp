#include <ZeltoIntegrations/Bear/BearExportConfiguration.h>

#include <ZeltoIntegrations/Bear/BearExporter.h>
#include <ZeltoIntegrations/Export/ConfigurationDiff.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(BearExportConfiguration, saveAs, tags, userNote, userTitle, supportedContentTypes);

std::vector<std::string> BearExportConfiguration::diff(const BearExportConfiguration& userConfig,
                                                       bool) const {
    return ConfigurationDiff()
        .field("saveAs", saveAs, userConfig.saveAs)
        .field("tags", tags, userConfig.tags)
        .field("userNote", userNote, userConfig.userNote)
        .field("userTitle", userTitle, userConfig.userTitle)
        .names();
}

void BearExportConfiguration::storeLastExportInfo(BearExporter& exporter) const {
    exporter.setLastExportContentType(saveAs);
    exporter.setLastExportTags(tags);
}

} // namespace zelto
