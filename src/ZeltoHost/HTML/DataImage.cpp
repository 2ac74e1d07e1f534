#include <ZeltoHost/HTML/DataImage.h>

#include <Platform/ASCII.h>

#include <ZeltoHost/HTML/HTMLSpace.h>

#include <algorithm>
#include <array>

namespace zelto {

namespace {

constexpr std::array<std::string_view, 9> rasterTypes{
    "image/png",   "image/jpeg",   "image/jpg",
    "image/pjpeg", "image/gif",    "image/webp",
    "image/bmp",   "image/x-icon", "image/vnd.microsoft.icon"};

bool isAllowed(char c) {
    constexpr std::string_view signs = ":/;,=+-_.%~!*$&?@";
    return isASCIILetter(c) || isASCIIDigit(c) || signs.find(c) != std::string_view::npos;
}

} // namespace

std::optional<std::string> rasterDataURL(std::string_view address) {
    constexpr std::string_view scheme = "data:";
    address = trimmedHTMLSpace(address);
    if (!equalIgnoringASCIICase(address.substr(0, scheme.size()), scheme)) {
        return std::nullopt;
    }
    const auto typeEnd = address.find_first_of(";,", scheme.size());
    if (typeEnd == std::string_view::npos || address.find(',', typeEnd) == std::string_view::npos) {
        return std::nullopt;
    }
    const auto type = toASCIILower(trimmedHTMLSpace(address.substr(scheme.size(), typeEnd - scheme.size())));
    if (std::ranges::find(rasterTypes, type) == rasterTypes.end()) {
        return std::nullopt;
    }
    auto url = std::string(scheme) + type;
    for (const char c : address.substr(typeEnd)) {
        if (isHTMLSpace(c)) {
            continue;
        }
        if (!isAllowed(c)) {
            return std::nullopt;
        }
        url += c;
    }
    return url;
}

} // namespace zelto
