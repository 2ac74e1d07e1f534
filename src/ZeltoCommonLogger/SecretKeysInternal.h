#pragma once

// For the sources of the logger only.

#include <ZeltoCommonLogger/SecretIndexInternal.h>

#include <string_view>
#include <vector>

namespace zelto {

// Finds the values that stand behind known secret keys: `key=value` of queries and form bodies,
// `"key":"value"` of JSON, header lines, "Bearer …" and the password of a URL. Linear in the text.
void findValuesOfSecretKeys(std::string_view text, std::vector<TextRange>& ranges);

} // namespace zelto
