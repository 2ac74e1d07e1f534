#pragma once

#include <Platform/JSON/JSONCoding.h>

#include <string>
#include <vector>

namespace zelto {

// The person whose account it is.
struct EvernoteUser {
    std::string username;
    bool premium = false; // decides how large the attachments of a note may be

    bool operator==(const EvernoteUser&) const = default;
};

ZELTO_JSON_CODED(EvernoteUser);

struct EvernoteNotebook {
    std::string id;
    std::string name;

    bool operator==(const EvernoteNotebook&) const = default;
};

ZELTO_JSON_CODED(EvernoteNotebook);

struct EvernoteTag {
    std::string id;
    std::string name;

    bool operator==(const EvernoteTag&) const = default;
};

ZELTO_JSON_CODED(EvernoteTag);

// What the exporter loads of an account.
struct EvernoteData {
    EvernoteUser user;
    std::vector<EvernoteNotebook> notebooks;
    std::vector<EvernoteTag> tags;

    bool operator==(const EvernoteData&) const = default;
};

ZELTO_JSON_CODED(EvernoteData);

} // namespace zelto
