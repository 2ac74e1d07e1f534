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

} // namespace zelto
