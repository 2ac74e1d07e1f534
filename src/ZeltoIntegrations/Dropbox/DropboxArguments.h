#pragma once

// How names and paths are written in the service's requests.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// JSON as a header can carry it: every character from U+007F upwards is an escape, above U+FFFF two (a
// surrogate pair). Of well-formed UTF-8.
std::string asciiEscaped(std::string_view json);

// The queries that together ask for files of any of the names, in their order; each has at most
// `maximumDropboxQuery` code points. In a query stands " OR " between the names, each as `dropboxSearchName`
// gives it, with none of them divided between two queries. A name that alone is longer is cut to its
// beginning, and a name of which nothing but blanks is left is not asked for.
std::vector<std::string> dropboxQueries(const std::vector<std::string>& fileNames);

inline constexpr std::size_t maximumDropboxQuery = 1000;

// The name filter of a search: letters and digits of any script, blanks, ".", "-" and "_" stay; every other
// character is a blank.
std::string dropboxSearchName(std::string_view fileName);

// A name as the service takes it for a file: with "_" for each slash, backslash and control character,
// without white space at its ends, not longer than 255 characters; "unnamed" where nothing but dots remains.
std::string dropboxFileName(std::string_view name);

// A folder's path without "/" at its end; the root is empty.
std::string dropboxFolderPath(std::string_view path);

} // namespace zelto
