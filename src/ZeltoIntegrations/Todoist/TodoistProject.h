#pragma once

#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>

namespace zelto {

struct TodoistProject {
    std::string id;
    std::optional<std::string> name;

    bool operator==(const TodoistProject&) const = default;
};

ZELTO_JSON_CODED(TodoistProject);

} // namespace zelto
