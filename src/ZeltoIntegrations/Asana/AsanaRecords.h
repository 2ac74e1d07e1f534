#pragma once

#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

struct AsanaProject {
    std::string id;
    std::optional<std::string> name;
    bool isPublic = false;
    bool isArchived = false;

    bool operator==(const AsanaProject&) const = default;
};

ZELTO_JSON_CODED(AsanaProject);

// The account's own user, or a member of a workspace.
struct AsanaUser {
    std::string id;
    std::optional<std::string> name;
    std::optional<std::string> email;

    bool operator==(const AsanaUser&) const = default;
};

ZELTO_JSON_CODED(AsanaUser);

// A workspace with what a task in it can be put into and given to.
struct AsanaWorkspace {
    std::string id;
    std::optional<std::string> name;
    std::vector<AsanaProject> projects;
    std::vector<AsanaUser> users;

    bool operator==(const AsanaWorkspace&) const = default;
};

ZELTO_JSON_CODED(AsanaWorkspace);

// What the exporter loads of an account.
struct AsanaFullData {
    AsanaUser user;
    std::vector<AsanaWorkspace> workspaces;

    bool operator==(const AsanaFullData&) const = default;
};

ZELTO_JSON_CODED(AsanaFullData);

struct AsanaTask {
    std::string ID; // "gid" of the service
    std::optional<std::string> name;

    bool operator==(const AsanaTask&) const = default;
};

ZELTO_JSON_CODED(AsanaTask);

// Where a task goes: the workspace as it was when it was chosen, a project in it, and whose the task is.
struct AsanaSaveToInfo {
    AsanaWorkspace workspace;
    AsanaProject project;
    AsanaUser user;

    bool operator==(const AsanaSaveToInfo&) const = default;
};

ZELTO_JSON_CODED(AsanaSaveToInfo);

} // namespace zelto
