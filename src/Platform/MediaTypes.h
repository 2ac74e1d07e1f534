#pragma once

#include <optional>
#include <string_view>

namespace zelto {

// The media type of files with an extension, given without its ".", in any case: "image/heic" for "HEIC".
// Facts of the registry of IANA and of Debian's media-types. Nothing for an unknown one.
std::optional<std::string_view> mediaTypeForExtension(std::string_view extension);

// The usual extension of a media type, given in any case and with or without parameters: "jpg" for
// "image/jpeg".
std::optional<std::string_view> extensionForMediaType(std::string_view mediaType);

} // namespace zelto
