#pragma once

#include <ZeltoIntegrations/Content/IntegrationAttachments.h>
#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>

#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONKeys.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

class GoogleDriveExporter;

struct GoogleDriveExporterConfiguration {
    using Exporter = GoogleDriveExporter;

    std::optional<std::string> userTitle; // the file's name, without its extension
    IntegrationExportContentType selectedExportKind = IntegrationExportContentType::pdf;
    std::vector<IntegrationExportContentType> availableExportKinds;
    IntegrationAttachments attachments;
    std::optional<std::string> selectedFolderId; // without one, the root

    IntegrationExportContentType exportType() const { return selectedExportKind; }

    std::vector<std::string> diff(const GoogleDriveExporterConfiguration& userConfig,
                                  bool attachmentsAreSelectedByDefault) const;
    void storeLastExportInfo(GoogleDriveExporter& exporter) const;

    bool operator==(const GoogleDriveExporterConfiguration&) const = default;
};

ZELTO_JSON_CODED(GoogleDriveExporterConfiguration);
ZELTO_JSON_KEYS(GoogleDriveExporterConfiguration);

} // namespace zelto
