#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zelto {

// Base64 of RFC 4648 section 4, with padding and without line breaks.
constexpr std::uint64_t base64Length(std::uint64_t byteCount) {
    return (byteCount / 3 + (byteCount % 3 != 0 ? 1 : 0)) * 4;
}

// Writes base64Length(bytes.size()) characters to `text`. A long input can be encoded in pieces: all but the
// last must be multiples of 3 bytes.
void writeBase64(std::span<const std::uint8_t> bytes, std::uint8_t* text);

std::string base64Encoded(std::string_view bytes);

// With "-" and "_" in place of "+" and "/", and without padding (RFC 4648 section 5), as in PKCE.
std::string base64URLEncoded(std::string_view bytes);

// Decodes either alphabet, with or without padding; white space is skipped. `nullopt` for any other text.
std::optional<std::string> base64Decoded(std::string_view text);

} // namespace zelto
