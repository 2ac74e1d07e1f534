#pragma once

#include <ZeltoIntegrations/Client/Paging.h>
#include <ZeltoIntegrations/Client/ServiceClient.h>
#include <ZeltoIntegrations/Client/ServiceRequest.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveRecords.h>
#include <ZeltoIntegrations/Import/DownloadFileInfo.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Google's Drive API, version 3. Without a folder's identifier, its root is meant. Always made with
// std::make_shared.
class GoogleDriveClient final : public ServiceClient {
  public:
    using ServiceClient::ServiceClient;

    // https://developers.google.com/workspace/drive/api/reference/rest/v3/about/get
    void fetchUser(ServiceCompletion<GoogleDriveUser> completion);

    // All folders of the account that it may see, by name.
    // https://developers.google.com/workspace/drive/api/reference/rest/v3/files/list
    void fetchFolders(ServiceCompletion<std::vector<GoogleDriveFolder>> completion);

    // The first 100 entries of the folder that are not in the trash: the service gives no more without being
    // asked for a next page, and a file beyond them is not seen.
    void fetchFiles(const std::optional<std::string>& folderId,
                    ServiceCompletion<std::vector<GoogleDriveFile>> completion);

    // Makes a new file, beside those of its name. Sends the file as it is read, in Base64.
    // https://developers.google.com/workspace/drive/api/reference/rest/v3/files/create
    void uploadFile(const std::string& fileName, const std::filesystem::path& filePath,
                    const std::optional<std::string>& folderId, ServiceCompletion<void> completion);

    // Replaces the content and the name of a file that is there, wherever that lies.
    // https://developers.google.com/workspace/drive/api/reference/rest/v3/files/update
    void uploadFile(const std::string& fileId, const std::string& fileName,
                    const std::filesystem::path& filePath, ServiceCompletion<void> completion);

    // Brings the file to the goal as it comes; of `fileInfo` the identifier counts. The service has no
    // content of its own documents.
    // https://developers.google.com/workspace/drive/api/reference/rest/v3/files/get
    void downloadFile(const DownloadFileInfo& fileInfo, std::filesystem::path goal, DownloadProgress onBytes,
                      DownloadCompletion completion);

    static constexpr std::string_view apiBaseURL = "https://www.googleapis.com";

  private:
    using Parameters = ServiceRequest::Parameters;

    static ServiceRequest createUrlRequest(std::string_view path, const Parameters& httpParams,
                                           std::string httpMethod);

    void performFetchFolders(const std::optional<std::string>& pageToken,
                             ServiceCompletion<Page<GoogleDriveFolder>> completion);
};

} // namespace zelto
