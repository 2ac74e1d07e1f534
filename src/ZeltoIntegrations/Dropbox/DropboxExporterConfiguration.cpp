#include <ZeltoIntegrations/Dropbox/DropboxExporterConfiguration.h>

#include <ZeltoIntegrations/Dropbox/DropboxExporter.h>
#include <ZeltoIntegrations/Export/ConfigurationDiff.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(DropboxExporterConfiguration, userTitle, selectedExportKind, availableExportKinds,
                  attachments, selectedFolderPath);

std::vector<std::string> DropboxExporterConfiguration::diff(const DropboxExporterConfiguration& userConfig,
                                                            bool attachmentsAreSelectedByDefault) const {
    return ConfigurationDiff()
        .field("userTitle", userTitle, userConfig.userTitle)
        .field("selectedExportKind", selectedExportKind, userConfig.selectedExportKind)
        .attachments(attachments, userConfig.attachments, attachmentsAreSelectedByDefault)
        .field("selectedFolderPath", selectedFolderPath, userConfig.selectedFolderPath)
        .names();
}

void DropboxExporterConfiguration::storeLastExportInfo(DropboxExporter& exporter) const {
    exporter.setLastExportContentType(selectedExportKind);
}

} // namespace zelto
