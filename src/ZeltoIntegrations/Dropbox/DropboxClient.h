#pragma once

#include <ZeltoIntegrations/Client/Paging.h>
#include <ZeltoIntegrations/Client/ServiceClient.h>
#include <ZeltoIntegrations/Client/ServiceRequest.h>
#include <ZeltoIntegrations/Dropbox/DropboxRecords.h>
#include <ZeltoIntegrations/Import/DownloadFileInfo.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

class JSONObject;

// Dropbox's HTTP API, version 2, on its two hosts. A folder's path is "" for the root, else begins with "/";
// the service takes an identifier ("id:…") in its place. Always made with std::make_shared.
class DropboxClient final : public ServiceClient {
  public:
    using ServiceClient::ServiceClient;

    // https://www.dropbox.com/developers/documentation/http/documentation#users-get_current_account
    void fetchUser(ServiceCompletion<DropboxUser> completion);

    // The folders below the path, at any depth.
    // https://www.dropbox.com/developers/documentation/http/documentation#files-list_folder
    void fetchFolders(const std::string& path, ServiceCompletion<std::vector<DropboxFolder>> completion);

    // The files and folders in the folder.
    void fetchFiles(const std::string& folderPath,
                    ServiceCompletion<std::vector<DropboxMetadata>> completion);

    // What the service finds by these names below the folder, by as many searches as the names need, one
    // after the other. It finds by words, so that not every match has one of the names exactly; new files
    // show up with a delay. https://www.dropbox.com/developers/documentation/http/documentation#files-search
    void checkFilesExists(const std::vector<std::string>& fileNames, const std::string& folderPath,
                          ServiceCompletion<std::vector<DropboxMetadata>> completion);

    // Sends the file as it is read. Where its name is taken, `overwrite` replaces what is there, and else the
    // service gives it another name.
    // https://www.dropbox.com/developers/documentation/http/documentation#files-upload
    void uploadFile(const std::string& fileName, const std::filesystem::path& filePath,
                    const std::string& folderPath, bool overwrite, ServiceCompletion<void> completion);

    // Brings the file to the goal as it comes; of `fileInfo` the identifier counts, or a path.
    // https://www.dropbox.com/developers/documentation/http/documentation#files-download
    void downloadFile(const DownloadFileInfo& fileInfo, std::filesystem::path goal, DownloadProgress onBytes,
                      DownloadCompletion completion);

    static constexpr std::string_view apiBaseURL = "https://api.dropboxapi.com";
    static constexpr std::string_view contentBaseURL = "https://content.dropboxapi.com";

  private:
    static ServiceRequest createRPCRequest(std::string_view path);
    // The arguments are those of a JSON object, and go into a header. No value where they are not UTF-8.
    static std::optional<ServiceRequest> createContentRequest(std::string_view path,
                                                              const JSONObject& arguments);

    template <class Item, class ToPage>
    void fetchEntries(std::string path, bool isRecursive, ToPage toPage,
                      ServiceCompletion<std::vector<Item>> completion);
    void search(const std::string& query, const std::string& folderPath,
                ServiceCompletion<std::vector<DropboxMetadata>> completion);
};

} // namespace zelto
