#include <Platform/MediaTypes.h>

#include <Platform/MediaTypeTableInternal.h>

#include <algorithm>
#include <string>

namespace zelto {

namespace {

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& each : lower) {
        each = each >= 'A' && each <= 'Z' ? static_cast<char>(each | 0x20) : each;
    }
    return lower;
}

template <class Row, class Key>
const Row* rowWith(std::span<const Row> sorted, std::string_view wanted, Key Row::*key) {
    const auto found = std::ranges::lower_bound(sorted, wanted, {}, key);
    return found != sorted.end() && (*found).*key == wanted ? &*found : nullptr;
}

} // namespace

std::optional<std::string_view> mediaTypeForExtension(std::string_view extension) {
    const auto* row =
        rowWith(mediaTypesOfExtensions(), lowerCase(extension), &MediaTypeOfExtension::extension);
    return row != nullptr ? std::optional(row->type) : std::nullopt;
}

std::optional<std::string_view> extensionForMediaType(std::string_view mediaType) {
    mediaType = mediaType.substr(0, mediaType.find(';'));
    mediaType = mediaType.substr(0, mediaType.find_last_not_of(" \t") + 1);
    const auto wanted = lowerCase(mediaType);
    if (const auto* row = rowWith(preferredExtensions(), wanted, &ExtensionOfMediaType::type)) {
        return row->extension;
    }
    for (const auto& row : mediaTypesOfExtensions()) {
        if (row.type.size() == wanted.size() && lowerCase(row.type) == wanted) {
            return row.extension;
        }
    }
    return std::nullopt;
}

} // namespace zelto
