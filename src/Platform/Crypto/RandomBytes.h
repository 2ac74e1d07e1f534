#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace zelto {

// From the kernel, fit for cryptographic keys. Any thread.
void fillWithRandomBytes(std::span<std::uint8_t> bytes);
std::string randomBytes(std::size_t count);

// That many random bytes as base64url text (letters, digits, "-" and "_"): for what must not be guessed. 32
// bytes give 43 characters.
std::string randomToken(std::size_t byteCount = 32);

} // namespace zelto
