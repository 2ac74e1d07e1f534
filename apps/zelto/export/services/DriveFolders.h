#pragma once

#include "export/Targets.h"

#include <ZeltoIntegrations/Dropbox/DropboxRecords.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveRecords.h>

#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto::cli {

struct DriveFolder {
    std::string id;
    std::string name;
    std::optional<std::string> path; // "/team/plans", where the service says in what a folder lies

    bool operator==(const DriveFolder&) const = default;
};

ZELTO_JSON_CODED(DriveFolder);

// The folders of a drive, without its root. They are kept in the account, for completions and dry runs.
struct DriveFolders {
    std::vector<DriveFolder> folders;

    bool operator==(const DriveFolders&) const = default;
};

ZELTO_JSON_CODED(DriveFolders);

DriveFolders foldersOf(std::vector<DropboxFolder> folders);
DriveFolders foldersOf(std::vector<GoogleDriveFolder> folders);

// The root, "/", before the folders: in each other by their paths and by name, or where no folder has one
// in their order.
TargetTree targetTreeOf(const DriveFolders& folders, const std::string& rootIdentifier);

// Null for the root.
const DriveFolder* folderAt(const DriveFolders& folders, const TargetPath& path,
                            const std::string& rootIdentifier);

} // namespace zelto::cli
