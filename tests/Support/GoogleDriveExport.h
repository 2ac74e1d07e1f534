#pragma once

#include <ZeltoIntegrations/GoogleDrive/GoogleDriveExporter.h>

#include <Platform/Joined.h>

#include <Support/NetworkExport.h>
#include <Support/ServiceServer.h>

#include <optional>
#include <regex>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Responds as Google Drive does.
class GoogleDriveService {
  public:
    static constexpr std::string_view tokenPath = "/oauth2/v4/token";

    Replaceable<std::string> user{
        R"({"user":{"kind":"drive#user","displayName":"Me","emailAddress":"me@example.org"}})"};
    Replaceable<std::string> folders{
        R"({"files":[{"id":"f1","name":"Plans","mimeType":"application/vnd.google-apps.folder"},)"
        R"({"id":"f2","name":"Work","mimeType":"application/vnd.google-apps.folder"}]})"};
    Replaceable<std::string> files{R"({"files":[]})"};

    PlayedResponse usualResponse(const ReceivedRequest& request) const {
        if (isUpload(request)) {
            return PlayedResponse::json(R"({"kind":"drive#file","id":"n1","name":"Title.pdf"})");
        }
        if (request.target.starts_with("/drive/v3/about")) {
            return PlayedResponse::json(*user.get());
        }
        return PlayedResponse::json(request.target.contains("orderBy") ? *folders.get() : *files.get());
    }

    std::optional<std::string> madeBy(const ReceivedRequest& request) const {
        static const std::regex name(R"re("name":"([^"]*)")re");
        std::smatch found;
        return isUpload(request) && std::regex_search(request.body, found, name)
                   ? std::optional("file " + found[1].str())
                   : std::nullopt;
    }

    // "B" stands for the boundary.
    static std::string comparable(const std::string& text) {
        static const std::regex identifier("[0-9A-Fa-f]{8}(-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12}");
        return std::regex_replace(text, identifier, "B");
    }

    // The listing of a folder that has these files.
    static std::string listing(const std::vector<std::string>& names) {
        return R"({"files":[)" + joined(names, ",", fileOf) + "]}";
    }

  private:
    static bool isUpload(const ReceivedRequest& request) {
        return request.target.starts_with("/upload/drive/v3/files");
    }

    static std::string fileOf(const std::string& name) {
        return R"({"id":"id-)" + name + R"(","name":")" + name +
               R"(","mimeType":"application/octet-stream"})";
    }
};

using GoogleDriveServer = ServiceServer<GoogleDriveService>;

// What a folder has by that name, as `GoogleDriveService::listing` has it.
inline GoogleDriveFile googleDriveFile(const std::string& name) {
    return {.id = "id-" + name, .name = name, .mimeType = "application/octet-stream"};
}

// An export of "Title" into the root.
class GoogleDriveExport : public NetworkExport<GoogleDriveExporter> {
  public:
    GoogleDriveExport() : NetworkExport(ServiceType::GoogleDrive) { configuration.userTitle = "Title"; }
};

} // namespace zelto
