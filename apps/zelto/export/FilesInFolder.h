#pragma once

#include <Platform/JSON/JSONValue.h>

#include <filesystem>
#include <string>
#include <vector>

// The words about files that an export makes in an account's folder.

namespace zelto::cli {

// `"a.pdf", "b.txt" in /home/me/folder`; the files are in one folder, and there is one at least.
std::string namedInFolder(const std::vector<std::filesystem::path>& files);

// "files" of a JSON document.
JSONValue pathsOf(const std::vector<std::filesystem::path>& files);

} // namespace zelto::cli
