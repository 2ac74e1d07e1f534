#pragma once

#include <ZeltoSandbox/Drives/Drive.h>

#include <Platform/JSON/JSONValue.h>

namespace zelto::sandbox {

// Dropbox's own JSON of its records.
JSONObject dropboxAccountJSON();
// With the member ".tag", as in a list.
JSONObject dropboxMetadataJSON(const DriveEntry& entry);
// Without it, as of an upload or a download.
JSONObject dropboxFileJSON(const DriveEntry& file, const DriveRevision& revision);

inline constexpr std::string_view dropboxUserName = "Robin Sandbox";
inline constexpr std::string_view dropboxUserEmail = "robin@sandbox.example";

} // namespace zelto::sandbox
