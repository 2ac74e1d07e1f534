#pragma once

#include <ZeltoIntegrations/Asana/AsanaExporter.h>

#include <Support/NetworkExport.h>
#include <Support/ServiceServer.h>

#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// Responds as Asana does. Every workspace has the same users and projects.
class AsanaService {
  public:
    static constexpr std::string_view tokenPath = "/-/oauth_token";

    Replaceable<std::string> user{R"({"data":{"gid":"u1","name":"Me","email":"me@example.org"}})"};
    Replaceable<std::string> workspaces{R"({"data":[{"gid":"w1","name":"Work"}]})"};
    Replaceable<std::string> users{R"({"data":[{"gid":"u1","name":"Me"},{"gid":"u2","name":"You"}]})"};
    Replaceable<std::string> projects{
        R"({"data":[{"gid":"p1","name":"Plan","archived":false,"public":true}],"next_page":null})"};

    PlayedResponse usualResponse(const ReceivedRequest& request) const {
        if (request.method == "POST") {
            return isTask(request)
                       ? PlayedResponse::json(R"({"data":{"gid":"t1","resource_type":"task"}})", 201)
                       : PlayedResponse::json(R"({"data":{"gid":"a1"}})");
        }
        if (request.target == "/api/1.0/users/me") {
            return PlayedResponse::json(*user.get());
        }
        if (request.target == "/api/1.0/workspaces") {
            return PlayedResponse::json(*workspaces.get());
        }
        return PlayedResponse::json(request.target.ends_with("/users") ? *users.get() : *projects.get());
    }

    std::optional<std::string> madeBy(const ReceivedRequest& request) const {
        return isTask(request) ? std::optional<std::string>("task") : std::nullopt;
    }

  private:
    static bool isTask(const ReceivedRequest& request) {
        return request.method == "POST" && request.target == "/api/1.0/tasks";
    }
};

using AsanaServer = ServiceServer<AsanaService>;

// The workspace that the service lists.
inline AsanaWorkspace asanaWorkspace() {
    return {.id = "w1",
            .name = "Work",
            .projects = {{.id = "p1", .name = "Plan", .isPublic = true}},
            .users = {{.id = "u1", .name = "Me"}, {.id = "u2", .name = "You"}}};
}

// An export of "Title" into the project "Plan" of the workspace "Work", for "Me".
class AsanaExport : public NetworkExport<AsanaExporter> {
  public:
    AsanaExport() : NetworkExport(ServiceType::Asana) {
        const auto workspace = asanaWorkspace();
        configuration.saveTo = AsanaSaveToInfo{
            .workspace = workspace, .project = workspace.projects.front(), .user = workspace.users.front()};
        configuration.userTitle = "Title";
        configuration.supportedContentTypes = {IntegrationExportContentType::pdf};
    }
};

} // namespace zelto
