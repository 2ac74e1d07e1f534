#pragma once

#include <ZeltoIntegrations/Dropbox/DropboxExporter.h>

#include <Platform/JSON/JSONValue.h>
#include <Platform/Joined.h>

#include <Support/NetworkExport.h>
#include <Support/ServiceServer.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// Responds as Dropbox does, on both of its hosts.
class DropboxService {
  public:
    static constexpr std::string_view tokenPath = "/oauth2/token";
    static constexpr std::string_view noMatches = R"({"has_more":false,"matches":[]})";

    Replaceable<std::string> user{R"({"account_id":"dbid:1","email":"me@example.org","locale":"en"})"};
    Replaceable<std::string> entries{
        R"({"cursor":"c1","entries":[{".tag":"folder","id":"id:w","name":"Team","path_lower":"/team"},)"
        R"({".tag":"file","id":"id:a","name":"a.txt","path_lower":"/team/a.txt","size":7},)"
        R"({".tag":"folder","id":"id:p","name":"Plans","path_lower":"/team/plans"}],"has_more":false})"};
    Replaceable<std::string> matches{std::string(noMatches)};

    PlayedResponse usualResponse(const ReceivedRequest& request) const {
        if (request.target == "/2/users/get_current_account") {
            return PlayedResponse::json(*user.get());
        }
        if (request.target.starts_with("/2/files/list_folder")) {
            return PlayedResponse::json(*entries.get());
        }
        if (request.target == "/2/files/search_v2") {
            return PlayedResponse::json(*matches.get());
        }
        return PlayedResponse::json(R"({"name":"Title.pdf","id":"id:1","size":1})");
    }

    std::optional<std::string> madeBy(const ReceivedRequest& request) const {
        if (request.target != "/2/files/upload") {
            return std::nullopt;
        }
        const auto arguments =
            JSONValue::parse(request.headers.value("Dropbox-API-Arg").value_or("")).value();
        const auto path = *arguments.find("path")->asString();
        return "file " + path.substr(path.rfind('/') + 1);
    }

    // The response of a search that has found these files in the root.
    static std::string matching(const std::vector<std::string>& names) {
        return R"({"has_more":false,"matches":[)" + joined(names, ",", matchOf) + "]}";
    }

  private:
    static std::string matchOf(const std::string& name) {
        return R"({"metadata":{".tag":"metadata","metadata":{".tag":"file","id":"id:)" + name +
               R"(","name":")" + name + R"(","path_lower":"/)" + name + R"("}}})";
    }
};

using DropboxServer = ServiceServer<DropboxService>;

// What the service finds by that name, as `DropboxService::matching` has it.
inline DropboxMetadata dropboxMatch(const std::string& name) {
    return {.tag = "file", .name = name, .path_lower = "/" + name, .id = "id:" + name};
}

// An export of "Title" into the root.
class DropboxExport : public NetworkExport<DropboxExporter> {
  public:
    DropboxExport() : NetworkExport(ServiceType::Dropbox) { configuration.userTitle = "Title"; }
};

} // namespace zelto
