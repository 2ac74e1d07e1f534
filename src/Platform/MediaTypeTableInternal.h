#pragma once

// For MediaTypes alone: the facts, as of 2025, of IANA's registry and of Debian's media-types package, and
// the types in use for what neither knows.

#include <span>
#include <string_view>

namespace zelto {

struct MediaTypeOfExtension {
    std::string_view extension;
    std::string_view type;
};

struct ExtensionOfMediaType {
    std::string_view type;
    std::string_view extension;
};

std::span<const MediaTypeOfExtension> mediaTypesOfExtensions();
std::span<const ExtensionOfMediaType> preferredExtensions();

} // namespace zelto
