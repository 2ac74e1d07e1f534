#pragma once

// The service's responses, as it writes them, and what the host sees of them.

#include <ZeltoIntegrations/Asana/AsanaRecords.h>

#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

struct AsanaProjectResponse {
    std::string gid;
    std::optional<std::string> name;
    bool public_ = false; // "public"
    bool archived = false;

    bool operator==(const AsanaProjectResponse&) const = default;
};

ZELTO_JSON_CODED(AsanaProjectResponse);

struct AsanaNextPage {
    std::optional<std::string> offset;

    bool operator==(const AsanaNextPage&) const = default;
};

ZELTO_JSON_CODED(AsanaNextPage);

struct AsanaProjectsResponse {
    std::vector<AsanaProjectResponse> data;
    std::optional<AsanaNextPage> next_page;

    bool operator==(const AsanaProjectsResponse&) const = default;
};

ZELTO_JSON_CODED(AsanaProjectsResponse);

struct AsanaTaskResponse {
    AsanaTask data;

    bool operator==(const AsanaTaskResponse&) const = default;
};

ZELTO_JSON_CODED(AsanaTaskResponse);

struct AsanaUserResponse {
    std::string gid;
    std::optional<std::string> name;
    std::optional<std::string> email;

    bool operator==(const AsanaUserResponse&) const = default;
};

ZELTO_JSON_CODED(AsanaUserResponse);

struct AsanaUsersResponse {
    std::vector<AsanaUserResponse> data;

    bool operator==(const AsanaUsersResponse&) const = default;
};

ZELTO_JSON_CODED(AsanaUsersResponse);

struct AsanaSingleUserResponse {
    AsanaUserResponse data;

    bool operator==(const AsanaSingleUserResponse&) const = default;
};

ZELTO_JSON_CODED(AsanaSingleUserResponse);

struct AsanaWorkspaceResponse {
    std::string gid;
    std::optional<std::string> name;

    bool operator==(const AsanaWorkspaceResponse&) const = default;
};

ZELTO_JSON_CODED(AsanaWorkspaceResponse);

struct AsanaWorkspacesResponse {
    std::vector<AsanaWorkspaceResponse> data;

    bool operator==(const AsanaWorkspacesResponse&) const = default;
};

ZELTO_JSON_CODED(AsanaWorkspacesResponse);

AsanaUser toAsanaUser(AsanaUserResponse response);
std::vector<AsanaUser> toAsanaUsers(AsanaUsersResponse response);

// Without their projects and users.
std::vector<AsanaWorkspace> toAsanaWorkspaces(AsanaWorkspacesResponse response);

std::vector<AsanaProject> toAsanaProjects(std::vector<AsanaProjectResponse> responses);

// The archived projects after the others; else the order stays.
std::vector<AsanaProject> archivedLast(std::vector<AsanaProject> projects);

} // namespace zelto
