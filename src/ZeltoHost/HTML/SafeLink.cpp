#include <ZeltoHost/HTML/SafeLink.h>

#include <ZeltoHost/Platform/EmailValidator.h>

#include <Platform/ASCII.h>

#include <algorithm>
#include <array>

namespace zelto {

namespace {

constexpr std::array<std::string_view, 5> safeSchemes{"http", "https", "mailto", "tel", "mid"};

// No program opens longer ones.
constexpr std::size_t lengthLimit = 65536;

bool needsEncoding(char c) {
    constexpr std::string_view forbidden = "\"<>\\^`{|}";
    return !isVisibleASCII(c) || forbidden.find(c) != std::string_view::npos;
}

bool isEscape(std::string_view text) {
    return text.size() >= 3 && hexDigitValue(text[1]) >= 0 && hexDigitValue(text[2]) >= 0;
}

std::string encoded(std::string_view href) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    bool fragment = false;
    for (std::size_t at = 0; at < href.size(); ++at) {
        const char c = href[at];
        if (c == '\n' || c == '\r' || c == '\t') {
            continue;
        }
        const bool secondHash = c == '#' && fragment;
        fragment = fragment || c == '#';
        if (needsEncoding(c) || secondHash || (c == '%' && !isEscape(href.substr(at)))) {
            const auto byte = static_cast<unsigned char>(c);
            text += {'%', digits[byte >> 4], digits[byte & 15]};
        } else {
            text += c;
        }
    }
    return text;
}

bool isTelephoneNumber(std::string_view text) {
    constexpr std::string_view between = " -.()/";
    constexpr auto minimumDigits = 7;
    if (text.starts_with('+')) {
        text.remove_prefix(1);
    }
    return std::ranges::count_if(text, isASCIIDigit) >= minimumDigits &&
           std::ranges::all_of(text, [&](char c) { return isASCIIDigit(c) || between.contains(c); });
}

// The scheme of a bare address, which a browser would take for a relative reference.
std::string_view missingScheme(std::string_view href) {
    if (isEmailAddress(href)) {
        return "mailto:";
    }
    return isTelephoneNumber(href) ? "tel:" : "";
}

} // namespace

std::optional<URL> safeLink(std::string_view href) {
    while (!href.empty() && static_cast<unsigned char>(href.front()) <= 0x20) {
        href.remove_prefix(1);
    }
    while (!href.empty() && static_cast<unsigned char>(href.back()) <= 0x20) {
        href.remove_suffix(1);
    }
    if (href.empty() || href.size() > lengthLimit) {
        return std::nullopt;
    }
    auto url = URL::parse(std::string(missingScheme(href)) + encoded(href));
    if (!url || std::ranges::find(safeSchemes, url->scheme()) == safeSchemes.end()) {
        return std::nullopt;
    }
    return url;
}

} // namespace zelto
