#include <ZeltoIntegrations/Dropbox/DropboxExporter.h>

#include <ZeltoIntegrations/Dropbox/DropboxArguments.h>
#include <ZeltoIntegrations/Dropbox/DropboxAuthoriser.h>
#include <ZeltoIntegrations/Dropbox/DropboxClient.h>
#include <ZeltoIntegrations/Dropbox/DropboxConstants.h>
#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <Platform/Text.h>

#include <utility>

namespace zelto {

void DropboxExporter::loadConfiguration(
    Completion<DropboxExporterConfiguration, IntegrationLoadError> completion) {
    offer(*this, &DropboxExporter::offered, std::move(completion));
}

DropboxExporterConfiguration DropboxExporter::offered(IntegrationAttachments attachments) const {
    const auto types = contentTypes(exportTarget());
    return {
        .userTitle = dataInteractor().title(),
        .selectedExportKind = ExportServiceHelper::saveAs(lastExportContentType(), types),
        .availableExportKinds = types.supported,
        .attachments = std::move(attachments),
        .selectedFolderPath = std::nullopt,
    };
}

ServiceExporterAttachmentsValidator DropboxExporter::createAttachmentsValidator() const {
    return ServiceExporterAttachmentsValidator(DropboxConstants::attachmentSizeLimit, std::nullopt,
                                               std::nullopt);
}

void DropboxExporter::fetchFolders(Completion<std::vector<DropboxFolder>, IntegrationLoadError> completion) {
    load<std::vector<DropboxFolder>>(std::move(completion), &DropboxExporter::loadFolders);
}

void DropboxExporter::fetchData(StepRun& run, DataCompletion done) {
    const auto client = createDropboxClient(run, done);
    if (!client) {
        return;
    }
    client->fetchUser([this, done = std::move(done)](auto user) mutable {
        if (!user) {
            return done(failure(loadError(user.error())));
        }
        myUser.set(*user);
        done(*std::move(user));
    });
}

void DropboxExporter::loadFolders(StepRun& run, LoadCompletion<std::vector<DropboxFolder>> done) {
    const auto client = createDropboxClient(run, done);
    if (!client) {
        return;
    }
    client->fetchFolders("", [done = std::move(done)](auto folders) mutable {
        if (!folders) {
            return done(failure(loadError(folders.error())));
        }
        done(*std::move(folders));
    });
}

std::shared_ptr<ExportProgress>
DropboxExporter::export_(DropboxExporterConfiguration configuration, std::optional<ExportFilePolicy> policy,
                         Completion<void, IntegrationExportError> completion) {
    auto finish = createResultMediator(configuration, std::move(completion));
    return exportFiles({.type = configuration.selectedExportKind,
                        .title = titleOr(configuration.userTitle),
                        .attachments = configuration.attachments.selected(),
                        .folder = std::move(configuration.selectedFolderPath),
                        .policy = policy},
                       std::move(finish));
}

void DropboxExporter::findExisting(StepRun& run, const std::vector<std::string>& fileNames,
                                   const std::optional<std::string>& folder, FoundCompletion done) {
    if (const auto client = createDropboxClient(run, done)) {
        client->checkFilesExists(fileNames, folder.value_or(""), std::move(done));
    }
}

DropboxExporter::Making DropboxExporter::checking(const std::vector<std::string>& names) const {
    return DriveExporter::checking(
        names, "Dropbox checking files error: ", "checkFilesExists(fileNames:folderPath:updateProgress:)");
}

void DropboxExporter::uploadFile(StepRun& run, const Upload& upload, StepCompletion<void> done) {
    const auto client = createDropboxClient(run, done);
    if (!client) {
        return;
    }
    const bool overwrites = upload.overrides && (upload.isMessage || upload.existed);
    client->uploadFile(upload.name, upload.file, upload.folder.value_or(""), overwrites,
                       reported(run,
                                making(upload, "Dropbox uploading file error: ",
                                       "uploadFile(fileName:filePath:folderPath:updateProgress:)"),
                                std::move(done)));
}

// A search finds in folders below as well. Where the folder is an identifier, its path is not known.
bool DropboxExporter::isReplaced(const DropboxMetadata& file, const std::string& name,
                                 const std::optional<std::string>& folder) const {
    const auto path = dropboxFolderPath(folder.value_or(""));
    const bool isPath = path.empty() || path.starts_with('/');
    const bool isThere =
        !isPath || !file.path_lower || foldedCase(*file.path_lower) == foldedCase(path + "/" + name);
    return !file.isFolder() && file.name == name && isThere;
}

std::string DropboxExporter::storedName(std::string name) const {
    return dropboxFileName(name);
}

// The service keeps the case of names, but tells none apart by it.
bool DropboxExporter::nameSameFile(const std::string& one, const std::string& other) const {
    return foldedCase(one) == foldedCase(other);
}

template <class Done>
std::shared_ptr<DropboxClient> DropboxExporter::createDropboxClient(StepRun& run, Done& done) {
    return clientOf<DropboxClient, DropboxAuthoriser>(run, done);
}

} // namespace zelto
