#pragma once

#include "export/services/DriveAdapter.h"

#include <ZeltoIntegrations/Dropbox/DropboxExporter.h>

namespace zelto::cli {

struct DropboxAdapter : DriveAdapter<DropboxExporter> {
    static TargetTree targetTree(const DriveFolders& data);
    static void setTarget(DropboxExporterConfiguration& configuration, const DriveFolders& data,
                          const TargetPath& path);
    static std::string targetName(const DropboxExporterConfiguration& configuration);

    // By their paths: a search finds below the folder too.
    static std::vector<std::string> existingFiles(const DropboxExporter& exporter);

    static std::string standInResponse(const SentRequest& request);
    static std::vector<PassedLimit> passedLimits(const DropboxExporter& exporter,
                                                 const DropboxExporterConfiguration& configuration,
                                                 const std::vector<SentRequest>& requests);
};

} // namespace zelto::cli
