#pragma once

#include <string>
#include <string_view>

namespace zelto {

// A header field's value with each run of adjacent Base64 words of one charset (RFC 2047) made one word: a
// decoder that takes a run for one Base64 text would stop at the padding of the first, and one that takes
// each alone would break a character that is split between two.
std::string joiningEncodedWords(std::string_view value);

} // namespace zelto
