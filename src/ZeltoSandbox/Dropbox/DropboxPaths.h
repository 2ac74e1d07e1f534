#pragma once

#include <Platform/Result.h>
#include <ZeltoSandbox/Drives/Drive.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto::sandbox {

// In lower case, character by character: by this Dropbox compares names.
std::string dropboxLower(std::string_view text);

// "/Projects/Plan.pdf"; empty for the root.
std::string dropboxPath(const DriveEntry& entry);

// Whether a text has the form of a path or an identifier at all; if not, Dropbox refuses it in plain text.
// The text of an error is Dropbox's.
Result<void, std::string> checkDropboxPath(std::string_view path, bool allowsRevisions);

// The names on the way to "/a/b"; nullopt if one cannot be a name.
std::optional<std::vector<std::string>> namesOnPath(std::string_view path);

// Names that Dropbox keeps for itself.
bool isDisallowedName(std::string_view name);

// The child of that name that is not deleted; null for none.
DriveEntry* dropboxChild(Drive& drive, const DriveEntry& folder, std::string_view name);

// The root is an entry of every lookup: what "" or "/a/b" or "id:…" stands for; null for none.
const DriveEntry* dropboxEntry(Drive& drive, std::string_view path);

} // namespace zelto::sandbox
