#include <ZeltoIntegrations/GoogleDrive/GoogleDriveExporter.h>

#include <ZeltoIntegrations/GoogleDrive/GoogleDriveAuthoriser.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveClient.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveConstants.h>
#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <algorithm>
#include <utility>

namespace zelto {

namespace {

// What of a folder has one of the names.
std::vector<GoogleDriveFile> clashesOf(std::vector<GoogleDriveFile> files,
                                       const std::vector<std::string>& names) {
    std::erase_if(files, [&](const GoogleDriveFile& file) {
        return file.isFolder() || std::ranges::count(names, getNameWithExtension(file)) == 0;
    });
    return files;
}

} // namespace

void GoogleDriveExporter::loadConfiguration(
    Completion<GoogleDriveExporterConfiguration, IntegrationLoadError> completion) {
    offer(*this, &GoogleDriveExporter::offered, std::move(completion));
}

GoogleDriveExporterConfiguration GoogleDriveExporter::offered(IntegrationAttachments attachments) const {
    const auto types = contentTypes(exportTarget());
    return {
        .userTitle = dataInteractor().title(),
        .selectedExportKind = ExportServiceHelper::saveAs(lastExportContentType(), types),
        .availableExportKinds = types.supported,
        .attachments = std::move(attachments),
        .selectedFolderId = std::nullopt,
    };
}

ServiceExporterAttachmentsValidator GoogleDriveExporter::createAttachmentsValidator() const {
    return ServiceExporterAttachmentsValidator(GoogleDriveConstants::attachmentSizeLimit, std::nullopt,
                                               std::nullopt);
}

void GoogleDriveExporter::fetchFolders(
    Completion<std::vector<GoogleDriveFolder>, IntegrationLoadError> completion) {
    load<std::vector<GoogleDriveFolder>>(std::move(completion), &GoogleDriveExporter::loadFolders);
}

void GoogleDriveExporter::fetchData(StepRun& run, DataCompletion done) {
    const auto client = createGoogleDriveClient(run, done);
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

void GoogleDriveExporter::loadFolders(StepRun& run, LoadCompletion<std::vector<GoogleDriveFolder>> done) {
    const auto client = createGoogleDriveClient(run, done);
    if (!client) {
        return;
    }
    client->fetchFolders([done = std::move(done)](auto folders) mutable {
        if (!folders) {
            return done(failure(loadError(folders.error())));
        }
        done(*std::move(folders));
    });
}

std::shared_ptr<ExportProgress>
GoogleDriveExporter::export_(GoogleDriveExporterConfiguration configuration,
                             std::optional<ExportFilePolicy> policy,
                             Completion<void, IntegrationExportError> completion) {
    auto finish = createResultMediator(configuration, std::move(completion));
    return exportFiles({.type = configuration.selectedExportKind,
                        .title = titleOr(configuration.userTitle),
                        .attachments = configuration.attachments.selected(),
                        .folder = std::move(configuration.selectedFolderId),
                        .policy = policy},
                       std::move(finish));
}

void GoogleDriveExporter::findExisting(StepRun& run, const std::vector<std::string>& fileNames,
                                       const std::optional<std::string>& folder, FoundCompletion done) {
    const auto client = createGoogleDriveClient(run, done);
    if (!client) {
        return;
    }
    client->fetchFiles(folder, [fileNames, done = std::move(done)](ServiceResult<Files> listed) mutable {
        done(listed ? clashesOf(*std::move(listed), fileNames) : std::move(listed));
    });
}

GoogleDriveExporter::Making GoogleDriveExporter::checking(const std::vector<std::string>& names) const {
    return DriveExporter::checking(
        names, "Google Drive checking files error: ", "checkFilesExists(fileNames:folderId:updateProgress:)");
}

void GoogleDriveExporter::uploadFile(StepRun& run, const Upload& upload, StepCompletion<void> done) {
    const auto client = createGoogleDriveClient(run, done);
    if (!client) {
        return;
    }
    auto uploaded = reported(run,
                             making(upload, "Google Drive uploading file error: ",
                                    "uploadFile(fileName:filePath:folderId:updateProgress:)"),
                             std::move(done));
    if (upload.existed) {
        return client->uploadFile(upload.existed->id, upload.name, upload.file, std::move(uploaded));
    }
    client->uploadFile(upload.name, upload.file, upload.folder, std::move(uploaded));
}

// Documents of Google's own have no bytes to replace.
bool GoogleDriveExporter::isReplaced(const GoogleDriveFile& file, const std::string& name,
                                     const std::optional<std::string>&) const {
    return !file.isOfOwnType() && getNameWithExtension(file) == name;
}

template <class Done>
std::shared_ptr<GoogleDriveClient> GoogleDriveExporter::createGoogleDriveClient(StepRun& run, Done& done) {
    return clientOf<GoogleDriveClient, GoogleDriveAuthoriser>(run, done);
}

} // namespace zelto
