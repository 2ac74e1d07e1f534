#pragma once

#include <ZeltoSandbox/Drives/Drive.h>

#include <Platform/JSON/JSONValue.h>

namespace zelto::sandbox {

// What the page of the sandbox shows of a drive: {"user": {"name", "email"}, "root": identifier, "uploads":
// how many, "newest": identifier of the file that was uploaded last, or null, "entries": […]}. A folder has
// {"id", "parent", "name", "trashed", "date", "count"}, a file "mediaType" and "revisions", the newest first,
// in place of the count: [{"id", "date", "size", "url"}]. Folders come before what they hold. Of the files of
// a folder that has very many there are the first and the newest; its "count" is that of all.
JSONObject driveState(const Drive& drive, std::string_view userName, std::string_view email);

} // namespace zelto::sandbox
