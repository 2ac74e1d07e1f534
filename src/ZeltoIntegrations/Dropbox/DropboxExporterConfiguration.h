#pragma once

#include <ZeltoIntegrations/Content/IntegrationAttachments.h>
#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>

#include <Platform/JSON/JSONCoding.h>
#include <Platform/JSON/JSONKeys.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

class DropboxExporter;

struct DropboxExporterConfiguration {
    using Exporter = DropboxExporter;

    std::optional<std::string> userTitle; // the file's name, without its extension
    IntegrationExportContentType selectedExportKind = IntegrationExportContentType::pdf;
    std::vector<IntegrationExportContentType> availableExportKinds;
    IntegrationAttachments attachments;
    std::optional<std::string> selectedFolderPath; // "/Work/Plans"; without one, the root

    IntegrationExportContentType exportType() const { return selectedExportKind; }

    std::vector<std::string> diff(const DropboxExporterConfiguration& userConfig,
                                  bool attachmentsAreSelectedByDefault) const;
    void storeLastExportInfo(DropboxExporter& exporter) const;

    bool operator==(const DropboxExporterConfiguration&) const = default;
};

ZELTO_JSON_CODED(DropboxExporterConfiguration);
ZELTO_JSON_KEYS(DropboxExporterConfiguration);

} // namespace zelto
