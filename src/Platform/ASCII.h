#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace zelto {

// Letters, digits and case as protocols and formats mean them: of ASCII alone, whatever the locale.

constexpr bool isASCII(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

constexpr bool isASCIILetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool isASCIIDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool isASCIIAlphanumeric(char c) {
    return isASCIILetter(c) || isASCIIDigit(c);
}

constexpr char toASCIILower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string toASCIILower(std::string_view text) {
    std::string lower(text);
    for (char& each : lower) {
        each = toASCIILower(each);
    }
    return lower;
}

constexpr bool equalIgnoringASCIICase(std::string_view left, std::string_view right) {
    return std::ranges::equal(left, right, [](char a, char b) { return toASCIILower(a) == toASCIILower(b); });
}

} // namespace zelto
