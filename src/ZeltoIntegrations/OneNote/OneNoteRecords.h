#pragma once

#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

// The account's own user.
struct OneNoteUser {
    std::string id;
    std::optional<std::string> name;
    std::optional<std::string> email;

    bool operator==(const OneNoteUser&) const = default;
};

ZELTO_JSON_CODED(OneNoteUser);

struct OneNoteSection {
    std::string id;
    std::optional<std::string> name;
    std::optional<std::string> notebookId;

    bool operator==(const OneNoteSection&) const = default;
};

ZELTO_JSON_CODED(OneNoteSection);

// A notebook with the sections that a page can be put into.
struct OneNoteNotebook {
    std::string id;
    std::optional<std::string> name;
    std::vector<OneNoteSection> sections;

    bool operator==(const OneNoteNotebook&) const = default;
};

ZELTO_JSON_CODED(OneNoteNotebook);

// What the exporter loads of an account. Each notebook has a section.
struct OneNoteFullData {
    OneNoteUser user;
    std::vector<OneNoteNotebook> notebooks;

    bool operator==(const OneNoteFullData&) const = default;
};

ZELTO_JSON_CODED(OneNoteFullData);

// Where a page goes: the notebook as it was when it was chosen, and a section of it.
struct OneNoteSaveToInfo {
    OneNoteNotebook notebook;
    OneNoteSection section;

    bool operator==(const OneNoteSaveToInfo&) const = default;
};

ZELTO_JSON_CODED(OneNoteSaveToInfo);

} // namespace zelto
