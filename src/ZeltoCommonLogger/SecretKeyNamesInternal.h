#pragma once

// Only for the sources of the logger.

#include <string_view>

namespace zelto {

// What a key implies about its value.
enum class SecretKeyKind {
    none,
    certain,   // always a secret: also masked in "key: value" prose
    usual,     // a secret after "=" and in JSON
    ambiguous, // a secret in a query or a form; in JSON only if the value looks like one ("code")
    header,    // a header field: the whole line is masked
};

// `key` in any case, with or without "_" and "-".
SecretKeyKind secretKeyKind(std::string_view key);

} // namespace zelto
