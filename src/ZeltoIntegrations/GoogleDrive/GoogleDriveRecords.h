#pragma once

#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// Whose the account is.
struct GoogleDriveUser {
    std::string displayName;
    std::string email;

    bool operator==(const GoogleDriveUser&) const = default;
};

ZELTO_JSON_CODED(GoogleDriveUser);

struct GoogleDriveFolder {
    std::string id;
    std::string name;

    bool operator==(const GoogleDriveFolder&) const = default;
};

// An entry of a listing: a file, a folder, or a document of Google's own.
struct GoogleDriveFile {
    std::string id;
    std::string name; // not unique in its folder
    std::optional<std::string> mimeType;

    static constexpr std::string_view folderMimeType = "application/vnd.google-apps.folder";

    bool isFolder() const { return mimeType == folderMimeType; }

    // A folder or a document of Google's own, which is no file.
    bool isOfOwnType() const { return mimeType && mimeType->starts_with("application/vnd.google-apps."); }

    bool operator==(const GoogleDriveFile&) const = default;
};

ZELTO_JSON_CODED(GoogleDriveFile);

// The name as the clash check compares it: with the usual extension of the file's type where the name has no
// extension. Google's own types, which are no files, have none.
std::string getNameWithExtension(const GoogleDriveFile& file);

} // namespace zelto
