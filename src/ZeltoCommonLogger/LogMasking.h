#pragma once

#include <string>
#include <string_view>

namespace zelto {

// The text with "***" in place of each secret: the values of known secret keys (in URLs, form bodies, JSON
// and header lines), and every live secret of the SecretRegistry, plain, percent-encoded and in Base64. A
// text without a secret is unchanged. Time is linear in the length; any thread.
std::string maskSecrets(std::string_view text);

// Whether a value under this key counts as a secret: "access_token", "cookie". The key may be written in any
// case, with or without "_" and "-".
bool isSecretKey(std::string_view key);

} // namespace zelto
