#pragma once

#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

struct TodoistProject {
    std::string id;
    std::optional<std::string> name;

    bool operator==(const TodoistProject&) const = default;
};

ZELTO_JSON_CODED(TodoistProject);

// The person whose account it is, as the service writes it.
struct TodoistUser {
    std::string email;
    bool isPremium = false; // decides how large an attachment may be
    std::optional<std::string> premiumUntil;

    bool operator==(const TodoistUser&) const = default;
};

ZELTO_JSON_CODED(TodoistUser);

// What the exporter loads of an account.
struct TodoistFullData {
    TodoistUser user;
    std::vector<TodoistProject> projects;

    bool operator==(const TodoistFullData&) const = default;
};

ZELTO_JSON_CODED(TodoistFullData);

// Where a task goes: the project as it was when it was chosen.
struct TodoistSaveToInfo {
    TodoistProject project;

    bool operator==(const TodoistSaveToInfo&) const = default;
};

ZELTO_JSON_CODED(TodoistSaveToInfo);

} // namespace zelto
