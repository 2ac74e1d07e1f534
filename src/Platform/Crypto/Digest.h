#pragma once

#include <Platform/Data.h>

#include <array>
#include <cstdint>
#include <string_view>

namespace zelto {

using SHA256Digest = std::array<std::uint8_t, 32>;
using SHA1Digest = std::array<std::uint8_t, 20>;

// FIPS 180-4.
SHA256Digest sha256(std::string_view bytes);

// RFC 2104 with SHA-1, which OAuth 1.0a signs with. Not for new uses.
SHA1Digest hmacSHA1(std::string_view key, std::string_view bytes);

// Whether both are the same, in a time that does not depend on where they differ. Their lengths are not kept
// secret.
bool equalInConstantTime(std::string_view left, std::string_view right);

inline std::string_view viewOf(const SHA256Digest& digest) {
    return {reinterpret_cast<const char*>(digest.data()), digest.size()};
}

inline std::string_view viewOf(const SHA1Digest& digest) {
    return {reinterpret_cast<const char*>(digest.data()), digest.size()};
}

} // namespace zelto
