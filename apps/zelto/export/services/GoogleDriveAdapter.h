#pragma once

#include "export/services/DriveAdapter.h"

#include <ZeltoIntegrations/GoogleDrive/GoogleDriveExporter.h>

namespace zelto::cli {

// The service does not say in what a folder lies, so that all of them are in one list.
struct GoogleDriveAdapter : DriveAdapter<GoogleDriveExporter> {
    static TargetTree targetTree(const DriveFolders& data);
    static void setTarget(GoogleDriveExporterConfiguration& configuration, const DriveFolders& data,
                          const TargetPath& path);
    static std::string targetName(const GoogleDriveExporterConfiguration& configuration);

    static std::vector<std::string> existingFiles(const GoogleDriveExporter& exporter);

    static std::string standInResponse(const SentRequest& request);
    static std::vector<PassedLimit> passedLimits(const GoogleDriveExporter& exporter,
                                                 const GoogleDriveExporterConfiguration& configuration,
                                                 const std::vector<SentRequest>& requests);
};

} // namespace zelto::cli
