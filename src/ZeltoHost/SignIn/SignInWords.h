#pragma once

#include <string>

namespace zelto {

// A sentence about a refusal with the service's own words behind it, in quotes; unchanged without any.
std::string withWords(std::string sentence, const std::string& words);

} // namespace zelto
