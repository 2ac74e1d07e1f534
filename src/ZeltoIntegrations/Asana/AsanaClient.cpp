#include <ZeltoIntegrations/Asana/AsanaClient.h>

#include <ZeltoIntegrations/Client/Joining.h>
#include <ZeltoIntegrations/Client/MappedRequest.h>

#include <Platform/PercentEncoding.h>

#include <utility>

namespace zelto {

namespace {

std::string projectsPath(const std::string& workspace, const std::optional<std::string>& offset) {
    auto path =
        "workspaces/" + pathSegment(workspace) + "/projects?opt_fields=id,name,archived,public&limit=100";
    if (offset) {
        path += "&offset=" + percentEncodeBytes(*offset, AllowedCharacters::queryItem);
    }
    return path;
}

ServiceRequest::Parameters taskFields(const std::optional<std::string>& title,
                                      const std::optional<std::string>& notes, const std::string& project,
                                      const std::string& workspace, const std::string& user) {
    ServiceRequest::Parameters fields = {{"workspace", workspace}, {"projects", project}, {"assignee", user}};
    if (title) {
        fields.emplace("name", *title);
    }
    if (notes) {
        fields.emplace("notes", *notes);
    }
    return fields;
}

Page<AsanaProject> toPage(AsanaProjectsResponse response) {
    return {.items = toAsanaProjects(std::move(response.data)),
            .next = response.next_page ? std::move(response.next_page->offset) : std::nullopt};
}

} // namespace

void AsanaClient::fetchUser(ServiceCompletion<AsanaSingleUserResponse> completion) {
    performRequest(*this, createUrlRequest("users/me", "GET"), std::move(completion));
}

void AsanaClient::fetchWorkspaces(ServiceCompletion<AsanaWorkspacesResponse> completion) {
    performRequest(*this, createUrlRequest("workspaces", "GET"), std::move(completion));
}

void AsanaClient::fetchUsers(const std::string& forWorkspace,
                             ServiceCompletion<AsanaUsersResponse> completion) {
    performRequest(*this, createUrlRequest("workspaces/" + pathSegment(forWorkspace) + "/users", "GET"),
                   std::move(completion));
}

void AsanaClient::fetchProjects(const std::string& forWorkspace,
                                ServiceCompletion<std::vector<AsanaProject>> completion) {
    PageLoader<AsanaProject>::load(
        [this, self = shared_from_this(), forWorkspace](const auto& offset, auto page) {
            fetchProjectsPage(forWorkspace, offset, std::move(page));
        },
        std::move(completion));
}

void AsanaClient::createTask(const std::optional<std::string>& withTitle,
                             const std::optional<std::string>& notes, const std::string& toProject,
                             const std::string& inWorkspace, const std::string& assignToUser,
                             ServiceCompletion<AsanaTask> completion) {
    performMapped<AsanaTaskResponse>(
        *this,
        createUrlRequest("tasks", "POST")
            .form(taskFields(withTitle, notes, toProject, inWorkspace, assignToUser)),
        &AsanaTaskResponse::data, std::move(completion));
}

void AsanaClient::uploadFile(const std::filesystem::path& fromPath, const std::string& forTaskId,
                             ServiceCompletion<void> completion) {
    performDiscarding<Empty>(*this,
                             createUrlRequest("tasks/" + pathSegment(forTaskId) + "/attachments", "POST")
                                 .upload(fromPath, {}, "file", "uploadFile(fromPath:forTaskId:completion:)"),
                             std::move(completion));
}

void AsanaClient::getAllData(ServiceCompletion<AsanaFullData> completion) {
    fetchUser([this, self = shared_from_this(), completion = std::move(completion)](auto user) mutable {
        if (!user) {
            return completion(failure(user.error()));
        }
        loadWorkspaces(toAsanaUser(std::move(user->data)), std::move(completion));
    });
}

ServiceRequest AsanaClient::createUrlRequest(std::string_view path, std::string httpMethod) {
    return ServiceRequest(std::move(httpMethod), apiBaseURL, path);
}

void AsanaClient::fetchProjectsPage(const std::string& workspace, const std::optional<std::string>& offset,
                                    ServiceCompletion<Page<AsanaProject>> completion) {
    performMapped<AsanaProjectsResponse>(*this, createUrlRequest(projectsPath(workspace, offset), "GET"),
                                         toPage, std::move(completion));
}

void AsanaClient::loadWorkspaces(AsanaUser user, ServiceCompletion<AsanaFullData> completion) {
    fetchWorkspaces([this, self = shared_from_this(), user = std::move(user),
                     completion = std::move(completion)](auto workspaces) mutable {
        if (!workspaces) {
            return completion(failure(workspaces.error()));
        }
        fillAll(std::move(user), toAsanaWorkspaces(*std::move(workspaces)), std::move(completion));
    });
}

void AsanaClient::fillAll(AsanaUser user, std::vector<AsanaWorkspace> workspaces,
                          ServiceCompletion<AsanaFullData> completion) {
    InOrder<AsanaWorkspace, ServiceClientError>::run(
        std::move(workspaces),
        [this, self = shared_from_this()](AsanaWorkspace& workspace, auto done) {
            fill(workspace, std::move(done));
        },
        [user = std::move(user), completion = std::move(completion)](auto filled) mutable {
            if (!filled) {
                return completion(failure(filled.error()));
            }
            completion(AsanaFullData{.user = std::move(user), .workspaces = *std::move(filled)});
        });
}

void AsanaClient::fill(AsanaWorkspace& workspace, ServiceCompletion<void> completion) {
    fetchUsers(workspace.id, [this, self = shared_from_this(), &workspace,
                              completion = std::move(completion)](auto users) mutable {
        if (!users) {
            return completion(failure(users.error()));
        }
        workspace.users = toAsanaUsers(*std::move(users));
        fillProjects(workspace, std::move(completion));
    });
}

void AsanaClient::fillProjects(AsanaWorkspace& workspace, ServiceCompletion<void> completion) {
    fetchProjects(workspace.id, [&workspace, completion = std::move(completion)](auto projects) mutable {
        if (!projects) {
            return completion(failure(projects.error()));
        }
        workspace.projects = archivedLast(*std::move(projects));
        completion({});
    });
}

} // namespace zelto
