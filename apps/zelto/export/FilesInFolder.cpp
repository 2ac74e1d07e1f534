#include "export/FilesInFolder.h"

#include <Platform/Joined.h>

namespace zelto::cli {

using std::filesystem::path;

std::string namedInFolder(const std::vector<path>& files) {
    const auto names =
        joined(files, ", ", [](const path& file) { return "\"" + file.filename().native() + "\""; });
    return names + " in " + files.front().parent_path().native();
}

JSONValue pathsOf(const std::vector<path>& files) {
    JSONValue::Array all;
    for (const auto& file : files) {
        all.emplace_back(file.native());
    }
    return all;
}

} // namespace zelto::cli
