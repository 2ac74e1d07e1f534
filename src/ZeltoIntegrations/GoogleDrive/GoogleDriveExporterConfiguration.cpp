#include <ZeltoIntegrations/GoogleDrive/GoogleDriveExporterConfiguration.h>

#include <ZeltoIntegrations/Export/ConfigurationDiff.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveExporter.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(GoogleDriveExporterConfiguration, userTitle, selectedExportKind, availableExportKinds,
                  attachments, selectedFolderId);

std::vector<std::string>
GoogleDriveExporterConfiguration::diff(const GoogleDriveExporterConfiguration& userConfig,
                                       bool attachmentsAreSelectedByDefault) const {
    return ConfigurationDiff()
        .field("userTitle", userTitle, userConfig.userTitle)
        .field("selectedExportKind", selectedExportKind, userConfig.selectedExportKind)
        .attachments(attachments, userConfig.attachments, attachmentsAreSelectedByDefault)
        .field("selectedFolderId", selectedFolderId, userConfig.selectedFolderId)
        .names();
}

void GoogleDriveExporterConfiguration::storeLastExportInfo(GoogleDriveExporter& exporter) const {
    exporter.setLastExportContentType(selectedExportKind);
}

} // namespace zelto
