#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zelto {

// Whether the bytes are well-formed UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isValidUTF8(std::string_view bytes) noexcept;

// How many bytes at the start are well-formed UTF-8; all of them if the whole text is.
std::size_t validUTF8Length(std::string_view bytes) noexcept;

// The length of the ill-formed piece at the front of bytes that are not empty and do not begin with a
// well-formed sequence: the longest beginning of a valid sequence, or one byte.
std::size_t illFormedLength(std::string_view bytes) noexcept;

// Replaces each ill-formed piece by one U+FFFD, as the Unicode standard recommends (the longest beginning of
// a valid sequence counts as one piece).
std::string repairedUTF8(std::string_view bytes);

// The code point at the front of well-formed, non-empty text, and its length in bytes.
struct DecodedCodePoint {
    char32_t value = 0;
    std::size_t length = 0;
};

DecodedCodePoint firstCodePoint(std::string_view wellFormed) noexcept;

void appendUTF8(std::string& text, char32_t codePoint);

} // namespace zelto
