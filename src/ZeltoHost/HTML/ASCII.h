#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace zelto {

// What HTML and CSS call letters, digits and white space: ASCII alone, whatever the locale.

constexpr bool isASCIILetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool isASCIIDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool isHTMLSpace(char c) {
    return c == ' ' || c == '\n' || c == '\t' || c == '\r' || c == '\f';
}

constexpr char toASCIILower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string toASCIILower(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char c) { return toASCIILower(c); });
    return lower;
}

constexpr bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, [](char x, char y) { return toASCIILower(x) == toASCIILower(y); });
}

constexpr std::string_view trimmedHTMLSpace(std::string_view text) {
    while (!text.empty() && isHTMLSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isHTMLSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

} // namespace zelto
