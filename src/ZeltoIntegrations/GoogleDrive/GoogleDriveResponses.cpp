#include <ZeltoIntegrations/GoogleDrive/GoogleDriveResponses.h>

#include <Platform/JSON/JSONRecordDescription.h>

#include <utility>

namespace zelto {

ZELTO_JSON_RECORD(GoogleDriveUserResponse, displayName, emailAddress);
ZELTO_JSON_RECORD(GoogleDriveSingleUserResponse, user);
ZELTO_JSON_RECORD(GoogleDriveSingleFilesResponse, files, nextPageToken);

GoogleDriveUser toGoogleDriveUser(GoogleDriveSingleUserResponse response) {
    return {.displayName = std::move(response.user.displayName),
            .email = std::move(response.user.emailAddress)};
}

IntegrationImportFile toIntegrationImportFile(GoogleDriveFile file) {
    const auto make = file.isFolder() ? IntegrationImportFile::folder : IntegrationImportFile::file;
    return make(std::move(file.id), std::move(file.name));
}

GoogleDriveFolder toFolder(GoogleDriveFile file) {
    return {.id = std::move(file.id), .name = std::move(file.name)};
}

Page<GoogleDriveFolder> toGoogleDriveFolders(GoogleDriveSingleFilesResponse response) {
    Page<GoogleDriveFolder> folders{.items = {}, .next = std::move(response.nextPageToken)};
    folders.items.reserve(response.files.size());
    for (auto& file : response.files) {
        folders.items.push_back(toFolder(std::move(file)));
    }
    return folders;
}

} // namespace zelto
