#pragma once

#include <ZeltoSandbox/Drives/Drive.h>

#include <Platform/JSON/JSONValue.h>

namespace zelto::sandbox {

// Google Drive's own JSON of its records, with all members that the sandbox has.
JSONObject googleAboutJSON(const Drive& drive, const SandboxDrives& settings);
JSONObject googleFileJSON(const DriveEntry& entry);
// {"kind", "incompleteSearch", "files"}
JSONObject googleListJSON(JSONValue::Array files);

// The same with every member that "fields" can name.
JSONValue googleAboutSchema();
JSONValue googleFileSchema();
JSONValue googleListSchema();

// What comes of a file where no fields are named.
inline constexpr std::string_view googleFileDefault = "kind,id,name,mimeType";

inline constexpr std::string_view googleUserName = "Robin Sandbox";
inline constexpr std::string_view googleUserEmail = "robin@sandbox.example";

} // namespace zelto::sandbox
