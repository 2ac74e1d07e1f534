#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zelto {

// The maximum length, in bytes, of what cleanedFileName gives: 15 bytes below what file systems allow, which
// leaves room for a suffix such as " (12)" or ".part".
inline constexpr std::size_t cleanedFileNameLimit = 240;

// A safe and readable file name, as close as possible to a foreign one (of a mail's attachment, of a drive's
// file): the part after the last "/" or "\", with repaired UTF-8; without control characters, invisible
// characters and marks of writing direction; "_" for each of <>:"|?*; no blanks or dots at the ends and no
// "-" in front; "_" before names that Windows reserves ("CON", "nul.txt"); cut at a character before the
// extension. The fallback if nothing remains.
std::string cleanedFileName(std::string_view name, std::string_view fallback = "unnamed");

// The name cut to that many bytes: whole characters are removed before the extension, which is kept unless it
// is longer than 32 bytes or than half of the limit.
std::string fileNameCutTo(std::string_view name, std::size_t bytes);

// The name with " (<number>)" before its extension, for when the name itself is taken; characters before it
// are removed where file systems would not allow the length.
std::string numberedFileName(std::string_view name, std::size_t number);

} // namespace zelto
