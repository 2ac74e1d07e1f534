#include <ZeltoIntegrations/ICloud/ICloudExportConfiguration.h>

#include <ZeltoIntegrations/Export/ConfigurationDiff.h>
#include <ZeltoIntegrations/ICloud/ICloudExporter.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(ICloudExportConfiguration, saveAs, userTitle, attachments, supportedContentTypes);

std::vector<std::string> ICloudExportConfiguration::diff(const ICloudExportConfiguration& userConfig,
                                                         bool attachmentsAreSelectedByDefault) const {
    return ConfigurationDiff()
        .field("saveAs", saveAs, userConfig.saveAs)
        .field("userTitle", userTitle, userConfig.userTitle)
        .attachments(attachments, userConfig.attachments, attachmentsAreSelectedByDefault)
        .names();
}

void ICloudExportConfiguration::storeLastExportInfo(ICloudExporter& exporter) const {
    exporter.setLastExportContentType(saveAs);
}

} // namespace zelto
