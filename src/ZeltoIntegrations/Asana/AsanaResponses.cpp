#include <ZeltoIntegrations/Asana/AsanaResponses.h>

#include <Platform/JSON/JSONRecordDescription.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace zelto {

ZELTO_JSON_RECORD(AsanaProjectResponse, gid, name, (public_, "public"), archived);
ZELTO_JSON_RECORD(AsanaNextPage, offset);
ZELTO_JSON_RECORD(AsanaProjectsResponse, data, next_page);
ZELTO_JSON_RECORD(AsanaTaskResponse, data);
ZELTO_JSON_RECORD(AsanaUserResponse, gid, name, email);
ZELTO_JSON_RECORD(AsanaUsersResponse, data);
ZELTO_JSON_RECORD(AsanaSingleUserResponse, data);
ZELTO_JSON_RECORD(AsanaWorkspaceResponse, gid, name);
ZELTO_JSON_RECORD(AsanaWorkspacesResponse, data);

namespace {

template <class To, class From> std::vector<To> mapped(std::vector<From> responses, To (*map)(From)) {
    std::vector<To> records;
    records.reserve(responses.size());
    std::ranges::transform(std::move_iterator(responses.begin()), std::move_iterator(responses.end()),
                           std::back_inserter(records), map);
    return records;
}

AsanaWorkspace toAsanaWorkspace(AsanaWorkspaceResponse response) {
    return {.id = std::move(response.gid), .name = std::move(response.name), .projects = {}, .users = {}};
}

AsanaProject toAsanaProject(AsanaProjectResponse response) {
    return {.id = std::move(response.gid),
            .name = std::move(response.name),
            .isPublic = response.public_,
            .isArchived = response.archived};
}

} // namespace

AsanaUser toAsanaUser(AsanaUserResponse response) {
    return {
        .id = std::move(response.gid), .name = std::move(response.name), .email = std::move(response.email)};
}

std::vector<AsanaUser> toAsanaUsers(AsanaUsersResponse response) {
    return mapped(std::move(response.data), toAsanaUser);
}

std::vector<AsanaWorkspace> toAsanaWorkspaces(AsanaWorkspacesResponse response) {
    return mapped(std::move(response.data), toAsanaWorkspace);
}

std::vector<AsanaProject> toAsanaProjects(std::vector<AsanaProjectResponse> responses) {
    return mapped(std::move(responses), toAsanaProject);
}

std::vector<AsanaProject> archivedLast(std::vector<AsanaProject> projects) {
    std::vector<AsanaProject> ordered;
    ordered.reserve(projects.size());
    for (const bool archived : {false, true}) {
        std::ranges::copy_if(projects, std::back_inserter(ordered), [archived](const AsanaProject& project) {
            return project.isArchived == archived;
        });
    }
    return ordered;
}

} // namespace zelto
