#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace zelto {

// From the kernel, fit for keys. Any thread.
void fillWithRandomBytes(std::span<std::uint8_t> bytes);
std::string randomBytes(std::size_t count);

// So many random bytes as text of letters, digits, "-" and "_" (base64url): for what must not be guessed. 32
// bytes give 43 characters.
std::string randomToken(std::size_t byteCount = 32);

} // namespace zelto
