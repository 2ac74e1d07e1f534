#pragma once

#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

struct OneNoteSection {
    std::string id;
    std::optional<std::string> name;
    std::optional<std::string> notebookId;

    bool operator==(const OneNoteSection&) const = default;
};

ZELTO_JSON_CODED(OneNoteSection);

struct OneNoteNotebook {
    std::string id;
    std::optional<std::string> name;
    std::vector<OneNoteSection> sections;

    bool operator==(const OneNoteNotebook&) const = default;
};

ZELTO_JSON_CODED(OneNoteNotebook);

} // namespace zelto
