#pragma once

// Internal to MediaTypes: the two tables that the build makes of MediaTypes.txt.

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

// Sorted by extension.
std::span<const MediaTypeOfExtension> mediaTypesOfExtensions();
// Sorted by type, in lower case: the types whose usual extension is not the first one with that type in the
// other table, and those that no extension has.
std::span<const ExtensionOfMediaType> preferredExtensions();

} // namespace zelto
