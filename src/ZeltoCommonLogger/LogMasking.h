#pragma once

#include <string>
#include <string_view>

namespace zelto {

// The text with "***" in place of each secret: the values of known secret keys (in URLs, form bodies, JSON
// and header lines), and every live secret of the SecretRegistry, plain, percent-encoded and in Base64. A
// text without a secret is unchanged. Time is linear in the length; any thread.
std::string maskSecrets(std::string_view text);

} // namespace zelto
