#include <ZeltoIntegrations/GoogleDrive/GoogleDriveClient.h>

#include <ZeltoIntegrations/Client/MappedRequest.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveResponses.h>

#include <Platform/NeverDestroyed.h>

#include <utility>

namespace zelto {

namespace {

using Parameters = ServiceRequest::Parameters;

constexpr auto filesPath = "/drive/v3/files";
constexpr auto uploadPath = "/upload/drive/v3/files";
constexpr auto rootFolder = "root";

const auto& multipart = neverDestroyed(Parameters{{"uploadType", "multipart"}});

Parameters foldersParameters(const std::optional<std::string>& pageToken) {
    Parameters parameters = {
        {"q", "mimeType='" + std::string(GoogleDriveFile::folderMimeType) + "'"},
        {"orderBy", "name_natural"},
        {"pageSize", "1000"},
    };
    if (pageToken) {
        parameters.emplace("pageToken", *pageToken);
    }
    return parameters;
}

// As it stands between quotes in a query.
std::string queryText(std::string_view text) {
    std::string escaped = "'";
    for (const char each : text) {
        if (each == '\'' || each == '\\') {
            escaped += '\\';
        }
        escaped += each;
    }
    return escaped + "'";
}

Parameters filesParameters(const std::optional<std::string>& folderId) {
    return {{"q", queryText(folderId.value_or(rootFolder)) + " in parents and trashed = false"},
            {"fields", "files(id,name,mimeType)"}};
}

} // namespace

void GoogleDriveClient::fetchUser(ServiceCompletion<GoogleDriveUser> completion) {
    performMapped<GoogleDriveSingleUserResponse>(
        *this, createUrlRequest("/drive/v3/about", {{"fields", "user"}}, "GET"), toGoogleDriveUser,
        std::move(completion));
}

void GoogleDriveClient::fetchFolders(ServiceCompletion<std::vector<GoogleDriveFolder>> completion) {
    PageLoader<GoogleDriveFolder>::load(
        [this, self = shared_from_this()](const auto& pageToken, auto page) {
            performFetchFolders(pageToken, std::move(page));
        },
        std::move(completion));
}

void GoogleDriveClient::performFetchFolders(const std::optional<std::string>& pageToken,
                                            ServiceCompletion<Page<GoogleDriveFolder>> completion) {
    performMapped<GoogleDriveSingleFilesResponse>(
        *this, createUrlRequest(filesPath, foldersParameters(pageToken), "GET"), toGoogleDriveFolders,
        std::move(completion));
}

void GoogleDriveClient::fetchFiles(const std::optional<std::string>& folderId,
                                   ServiceCompletion<std::vector<GoogleDriveFile>> completion) {
    performMapped<GoogleDriveSingleFilesResponse>(
        *this, createUrlRequest(filesPath, filesParameters(folderId), "GET"),
        &GoogleDriveSingleFilesResponse::files, std::move(completion));
}

void GoogleDriveClient::uploadFile(const std::string& fileName, const std::filesystem::path& filePath,
                                   const std::optional<std::string>& folderId,
                                   ServiceCompletion<void> completion) {
    performDiscarding<Empty>(
        *this,
        createUrlRequest(uploadPath, multipart, "POST")
            .driveUpload(filePath, fileName, folderId, "uploadFile(fileName:filePath:folderId:completion:)"),
        std::move(completion));
}

void GoogleDriveClient::uploadFile(const std::string& fileId, const std::string& fileName,
                                   const std::filesystem::path& filePath,
                                   ServiceCompletion<void> completion) {
    performDiscarding<Empty>(*this,
                             createUrlRequest(uploadPath + ("/" + pathSegment(fileId)), multipart, "PATCH")
                                 .driveUpload(filePath, fileName, std::nullopt,
                                              "uploadFile(fileId:fileName:filePath:completion:)"),
                             std::move(completion));
}

void GoogleDriveClient::downloadFile(const DownloadFileInfo& fileInfo, std::filesystem::path goal,
                                     DownloadProgress onBytes, DownloadCompletion completion) {
    auto request =
        createUrlRequest(filesPath + ("/" + pathSegment(fileInfo.fileId())), {{"alt", "media"}}, "GET");
    download(std::move(request).maker(), std::move(goal), std::move(onBytes), std::move(completion));
}

ServiceRequest GoogleDriveClient::createUrlRequest(std::string_view path, const Parameters& httpParams,
                                                   std::string httpMethod) {
    return ServiceRequest(std::move(httpMethod), apiBaseURL, path, httpParams);
}

} // namespace zelto
