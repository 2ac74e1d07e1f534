#include <ZeltoIntegrations/Dropbox/DropboxImporter.h>

#include <ZeltoIntegrations/Dropbox/DropboxAuthoriser.h>
#include <ZeltoIntegrations/Dropbox/DropboxClient.h>
#include <ZeltoIntegrations/Dropbox/DropboxResponses.h>

#include <utility>

namespace zelto {

void DropboxImporter::fetchFiles(
    const std::optional<std::string>& folderPath,
    Completion<std::vector<IntegrationImportFile>, IntegrationLoadError> completion) {
    const auto run = newRun();
    if (const auto client = clientOf<DropboxClient, DropboxAuthoriser>(*run, completion)) {
        client->fetchFiles(folderPath.value_or(""),
                           listed<DropboxMetadata>(run, toIntegrationImportFile, std::move(completion)));
    }
}

void DropboxImporter::performDownload(StepRun& run, const DownloadFileInfo& file, std::filesystem::path goal,
                                      DownloadProgress onBytes, DownloadCompletion done) {
    if (const auto client = clientOf<DropboxClient, DropboxAuthoriser>(run, done)) {
        client->downloadFile(file, std::move(goal), std::move(onBytes), std::move(done));
    }
}

} // namespace zelto
