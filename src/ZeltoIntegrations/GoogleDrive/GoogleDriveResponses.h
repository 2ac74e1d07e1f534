#pragma once

// The service's responses, as it writes them, and what the host sees of them.

#include <ZeltoIntegrations/Client/Paging.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveRecords.h>
#include <ZeltoIntegrations/Import/IntegrationImportFile.h>

#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

struct GoogleDriveUserResponse {
    std::string displayName;
    std::string emailAddress;

    bool operator==(const GoogleDriveUserResponse&) const = default;
};

ZELTO_JSON_CODED(GoogleDriveUserResponse);

struct GoogleDriveSingleUserResponse {
    GoogleDriveUserResponse user;

    bool operator==(const GoogleDriveSingleUserResponse&) const = default;
};

ZELTO_JSON_CODED(GoogleDriveSingleUserResponse);

struct GoogleDriveSingleFilesResponse {
    std::vector<GoogleDriveFile> files;
    std::optional<std::string> nextPageToken;

    bool operator==(const GoogleDriveSingleFilesResponse&) const = default;
};

ZELTO_JSON_CODED(GoogleDriveSingleFilesResponse);

GoogleDriveUser toGoogleDriveUser(GoogleDriveSingleUserResponse response);

IntegrationImportFile toIntegrationImportFile(GoogleDriveFile file);

// Of a folder's entry.
GoogleDriveFolder toFolder(GoogleDriveFile file);

// A page of a listing of folders alone.
Page<GoogleDriveFolder> toGoogleDriveFolders(GoogleDriveSingleFilesResponse response);

} // namespace zelto
