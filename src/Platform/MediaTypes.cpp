#include <Platform/MediaTypes.h>

#include <Platform/ASCII.h>
#include <Platform/MediaTypeTableInternal.h>

#include <algorithm>
#include <string>

namespace zelto {

namespace {

template <class Row, class Key>
const Row* rowWith(std::span<const Row> sorted, std::string_view wanted, Key Row::*key) {
    const auto found = std::ranges::lower_bound(sorted, wanted, {}, key);
    return found != sorted.end() && (*found).*key == wanted ? &*found : nullptr;
}

} // namespace

std::optional<std::string_view> mediaTypeForExtension(std::string_view extension) {
    const auto* row =
        rowWith(mediaTypesOfExtensions(), toASCIILower(extension), &MediaTypeOfExtension::extension);
    return row != nullptr ? std::optional(row->type) : std::nullopt;
}

std::optional<std::string_view> extensionForMediaType(std::string_view mediaType) {
    mediaType = mediaType.substr(0, mediaType.find(';'));
    mediaType = mediaType.substr(0, mediaType.find_last_not_of(" \t") + 1);
    const auto wanted = toASCIILower(mediaType);
    if (const auto* row = rowWith(preferredExtensions(), wanted, &ExtensionOfMediaType::type)) {
        return row->extension;
    }
    for (const auto& row : mediaTypesOfExtensions()) {
        if (row.type.size() == wanted.size() && toASCIILower(row.type) == wanted) {
            return row.extension;
        }
    }
    return std::nullopt;
}

} // namespace zelto
