#include <ZeltoIntegrations/Dropbox/DropboxClient.h>

#include <ZeltoIntegrations/Client/Joining.h>
#include <ZeltoIntegrations/Client/MappedRequest.h>
#include <ZeltoIntegrations/Dropbox/DropboxArguments.h>
#include <ZeltoIntegrations/Dropbox/DropboxResponses.h>

#include <Platform/JSON/JSONValue.h>

#include <set>
#include <utility>

namespace zelto {

namespace {

constexpr int listLimit = 2000;
constexpr int searchLimit = 1000;

JSONObject listArguments(const std::string& path, bool isRecursive) {
    JSONObject arguments{{"path", path},
                         {"recursive", isRecursive},
                         {"include_media_info", false},
                         {"include_deleted", false},
                         {"include_has_explicit_shared_members", false},
                         {"include_mounted_folders", true},
                         {"include_non_downloadable_files", false}};
    if (isRecursive) {
        arguments.set("limit", listLimit);
    }
    return arguments;
}

JSONObject searchArguments(const std::string& query, const std::string& folderPath) {
    return {{"match_field_options", JSONObject{{"include_highlights", false}}},
            {"options", JSONObject{{"file_status", "active"},
                                   {"filename_only", false},
                                   {"max_results", searchLimit},
                                   {"path", folderPath}}},
            {"query", query}};
}

JSONObject uploadArguments(const std::string& path, bool overwrite) {
    return {{"path", path},
            {"mode", overwrite ? "overwrite" : "add"},
            {"autorename", !overwrite},
            {"mute", false}};
}

// One search of several, and what it has found.
struct Search {
    std::string query;
    std::vector<DropboxMetadata> found;
};

// In the order of the searches, and each once: two searches may find the same.
std::vector<DropboxMetadata> foundBy(std::vector<Search> searches) {
    std::vector<DropboxMetadata> all;
    std::set<std::string> identifiers;
    for (auto& search : searches) {
        for (auto& match : search.found) {
            if (identifiers.insert(match.id).second) {
                all.push_back(std::move(match));
            }
        }
    }
    return all;
}

} // namespace

void DropboxClient::fetchUser(ServiceCompletion<DropboxUser> completion) {
    performMapped<DropboxAccountResponse>(*this,
                                          createRPCRequest("/2/users/get_current_account").json(JSONValue()),
                                          toDropboxUser, std::move(completion));
}

void DropboxClient::fetchFolders(const std::string& path,
                                 ServiceCompletion<std::vector<DropboxFolder>> completion) {
    fetchEntries<DropboxFolder>(path, true, filterFolders, std::move(completion));
}

void DropboxClient::fetchFiles(const std::string& folderPath,
                               ServiceCompletion<std::vector<DropboxMetadata>> completion) {
    fetchEntries<DropboxMetadata>(folderPath, false, toDropboxEntries, std::move(completion));
}

template <class Item, class ToPage>
void DropboxClient::fetchEntries(std::string path, bool isRecursive, ToPage toPage,
                                 ServiceCompletion<std::vector<Item>> completion) {
    const auto first = listArguments(dropboxFolderPath(path), isRecursive);
    PageLoader<Item>::load(
        [this, self = shared_from_this(), first, toPage](const auto& cursor, auto page) {
            auto request = cursor ? createRPCRequest("/2/files/list_folder/continue")
                                        .json(JSONValue(JSONObject{{"cursor", *cursor}}))
                                  : createRPCRequest("/2/files/list_folder").json(JSONValue(first));
            performMapped<DropboxListFolderResponse>(*this, std::move(request), toPage, std::move(page));
        },
        std::move(completion));
}

void DropboxClient::checkFilesExists(const std::vector<std::string>& fileNames, const std::string& folderPath,
                                     ServiceCompletion<std::vector<DropboxMetadata>> completion) {
    std::vector<Search> searches;
    for (auto& query : dropboxQueries(fileNames)) {
        searches.push_back({.query = std::move(query), .found = {}});
    }
    InOrder<Search, ServiceClientError>::run(
        std::move(searches),
        [this, self = shared_from_this(), folderPath](Search& each, auto done) {
            search(each.query, folderPath, [&each, done = std::move(done)](auto found) mutable {
                each.found = found ? *std::move(found) : decltype(each.found)();
                done(found ? ServiceResult<void>() : failure(found.error()));
            });
        },
        [completion = std::move(completion)](auto searched) mutable {
            completion(searched ? ServiceResult<std::vector<DropboxMetadata>>(foundBy(*std::move(searched)))
                                : failure(searched.error()));
        });
}

void DropboxClient::search(const std::string& query, const std::string& folderPath,
                           ServiceCompletion<std::vector<DropboxMetadata>> completion) {
    performMapped<DropboxSearchResponse>(
        *this,
        createRPCRequest("/2/files/search_v2")
            .json(JSONValue(searchArguments(query, dropboxFolderPath(folderPath)))),
        toDropboxMatches, std::move(completion));
}

void DropboxClient::uploadFile(const std::string& fileName, const std::filesystem::path& filePath,
                               const std::string& folderPath, bool overwrite,
                               ServiceCompletion<void> completion) {
    const auto path = dropboxFolderPath(folderPath) + "/" + fileName;
    auto request = createContentRequest("/2/files/upload", uploadArguments(path, overwrite));
    if (!request) {
        return completion(failure(ServiceClientError::internalError));
    }
    performDiscarding<Empty>(
        *this,
        (*std::move(request))
            .header("Content-Type", "application/octet-stream")
            .content(filePath, "uploadFile(fileName:filePath:folderPath:overwrite:completion:)"),
        std::move(completion));
}

void DropboxClient::downloadFile(const DownloadFileInfo& fileInfo, std::filesystem::path goal,
                                 DownloadProgress onBytes, DownloadCompletion completion) {
    auto request = createContentRequest("/2/files/download", {{"path", fileInfo.fileId()}});
    if (!request) {
        return completion(failure(DownloadError{}));
    }
    download((*std::move(request)).maker(), std::move(goal), std::move(onBytes), std::move(completion));
}

ServiceRequest DropboxClient::createRPCRequest(std::string_view path) {
    return ServiceRequest("POST", apiBaseURL, path).header("Content-Type", "application/json");
}

std::optional<ServiceRequest> DropboxClient::createContentRequest(std::string_view path,
                                                                  const JSONObject& arguments) {
    const auto text = JSONValue(arguments).text();
    if (!text) {
        return std::nullopt;
    }
    return ServiceRequest("POST", contentBaseURL, path).header("Dropbox-API-Arg", asciiEscaped(*text));
}

} // namespace zelto
