#pragma once

#include <ZeltoSandbox/Drives/Drive.h>

#include <string_view>
#include <vector>

namespace zelto::sandbox {

// Sorts as Drive's "orderBy" says: "folder,name_natural desc". False for a key that is unknown.
bool sortForGoogleDrive(std::vector<const DriveEntry*>& entries, std::string_view orderBy);

} // namespace zelto::sandbox
