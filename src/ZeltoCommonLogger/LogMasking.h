#pragma once

#include <string>
#include <string_view>

namespace zelto {

// The text with "***" in place of each secret: the value of a known secret key (in URLs, form bodies, JSON
// and header lines) and every live secret of the SecretRegistry, plain, percent-encoded and in Base64. A text
// without a secret comes back unchanged. Linear in the text; any thread.
std::string maskSecrets(std::string_view text);

} // namespace zelto
