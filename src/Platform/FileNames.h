#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zelto {

// The longest name, in bytes, that cleanedFileName gives: 15 bytes below what file systems take, for a "
// (12)" or a ".part" behind it.
inline constexpr std::size_t cleanedFileNameLimit = 240;

// A safe and visible file name, the nearest to a foreign one (of a mail's attachment, of a drive's file):
// what follows the last "/" or "\", repaired UTF-8, no control characters, no marks that turn the direction
// of writing or cannot be seen, "_" for each of <>:"|?*, no blanks or dots at the ends, no "-" in front, "_"
// before the names that Windows reserves ("CON", "nul.txt"), cut before the extension at a character. It is
// the fallback if nothing is left.
std::string cleanedFileName(std::string_view name, std::string_view fallback = "unnamed");

// The name cut to so many bytes: whole characters are taken away before the extension, which stays unless it
// is longer than 32 bytes or half of what may stay.
std::string fileNameCutTo(std::string_view name, std::size_t bytes);

} // namespace zelto
