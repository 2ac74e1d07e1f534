#pragma once

#include <optional>
#include <string_view>

namespace zelto {

// The media type of files with an extension, given without its ".", in any case: "image/heic" for "HEIC".
// `nullopt` for an unknown extension. MediaTypes.txt lists what is known.
std::optional<std::string_view> mediaTypeForExtension(std::string_view extension);

// The usual extension of a media type, given in any case and with or without parameters: "jpg" for
// "image/jpeg". `nullopt` for an unknown type.
std::optional<std::string_view> extensionForMediaType(std::string_view mediaType);

} // namespace zelto
