#include <ZeltoIntegrations/GoogleDrive/GoogleDriveImporter.h>

#include <ZeltoIntegrations/GoogleDrive/GoogleDriveAuthoriser.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveClient.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveResponses.h>

#include <utility>

namespace zelto {

void GoogleDriveImporter::fetchFiles(
    const std::optional<std::string>& folderId,
    Completion<std::vector<IntegrationImportFile>, IntegrationLoadError> completion) {
    const auto run = newRun();
    if (const auto client = clientOf<GoogleDriveClient, GoogleDriveAuthoriser>(*run, completion)) {
        client->fetchFiles(folderId,
                           listed<GoogleDriveFile>(run, toIntegrationImportFile, std::move(completion)));
    }
}

void GoogleDriveImporter::performDownload(StepRun& run, const DownloadFileInfo& file,
                                          std::filesystem::path goal, DownloadProgress onBytes,
                                          DownloadCompletion done) {
    if (const auto client = clientOf<GoogleDriveClient, GoogleDriveAuthoriser>(run, done)) {
        client->downloadFile(file, std::move(goal), std::move(onBytes), std::move(done));
    }
}

} // namespace zelto
