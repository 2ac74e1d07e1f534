#pragma once

#include <string>
#include <string_view>

namespace zelto {

// A header field's value with each run of adjacent encoded words of one charset (RFC 2047) made one Base64
// word of UTF-8. A decoder that takes each word alone would break a character that is split between two, and
// one that takes charsets by their letter would lose what mails mean by their names (Shift_JIS, ISO-8859-1).
std::string withUTF8Words(std::string_view value);

} // namespace zelto
