#pragma once

// For the sources of the logger only.

#include <string_view>

namespace zelto {

// What a key says about its value.
enum class SecretKeyKind {
    none,
    certain,   // never anything but a secret: also masked in "key: value" prose
    usual,     // a secret behind "=" and in JSON
    ambiguous, // a secret in a query or a form; in JSON only where the value looks like one ("code")
    header,    // a header field: its whole line
};

// `key` in any case, with or without "_" and "-".
SecretKeyKind secretKeyKind(std::string_view key);

} // namespace zelto
