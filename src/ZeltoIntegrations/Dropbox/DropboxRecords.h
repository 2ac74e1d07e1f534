#pragma once

#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>

namespace zelto {

// Whose the account is.
struct DropboxUser {
    std::string email;

    bool operator==(const DropboxUser&) const = default;
};

ZELTO_JSON_CODED(DropboxUser);

struct DropboxFolder {
    std::string id;   // the service's own, which stays when the folder is moved or renamed
    std::string name; // the last part of its path
    std::string path; // as `selectedFolderPath` takes it: in lower case ("/team/plans"), else `id`

    bool operator==(const DropboxFolder&) const = default;
};

// An entry of a listing: a file or a folder.
struct DropboxMetadata {
    std::string tag; // ".tag": "file", "folder"
    std::string name;
    std::optional<std::string> path_lower;
    std::string id;

    bool isFolder() const { return tag == "folder"; }

    bool operator==(const DropboxMetadata&) const = default;
};

ZELTO_JSON_CODED(DropboxMetadata);

} // namespace zelto
