#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace zelto {

// Letters, digits and case as protocols and formats define them: in ASCII only, whatever the locale.

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

// Neither a blank nor a control character.
constexpr bool isVisibleASCII(char c) {
    return c > ' ' && c <= '~';
}

constexpr char toASCIILower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr char toASCIIUpper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

inline std::string toASCIILower(std::string_view text) {
    std::string lower(text);
    for (char& each : lower) {
        each = toASCIILower(each);
    }
    return lower;
}

inline std::string toASCIIUpper(std::string_view text) {
    std::string upper(text);
    for (char& each : upper) {
        each = toASCIIUpper(each);
    }
    return upper;
}

constexpr bool equalIgnoringASCIICase(std::string_view left, std::string_view right) {
    return std::ranges::equal(left, right, [](char a, char b) { return toASCIILower(a) == toASCIILower(b); });
}

// The value of a hexadecimal digit of either case; -1 for any other character.
constexpr int hexDigitValue(char c) {
    if (isASCIIDigit(c)) {
        return c - '0';
    }
    const char lower = toASCIILower(c);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

// Without the blanks and tabs at both ends, as header fields are read.
constexpr std::string_view trimmedBlanks(std::string_view text) {
    constexpr std::string_view blanks = " \t";
    const auto first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

} // namespace zelto
