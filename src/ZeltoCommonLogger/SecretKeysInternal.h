#pragma once

// Only for the sources of the logger.

#include <ZeltoCommonLogger/SecretIndexInternal.h>

#include <string_view>
#include <vector>

namespace zelto {

// Finds the values of known secret keys: `key=value` of queries and form bodies, `"key":"value"` of JSON,
// header lines, "Bearer …" and the password of a URL. Time is linear in the length.
void findValuesOfSecretKeys(std::string_view text, std::vector<TextRange>& ranges);

} // namespace zelto
