#pragma once

#include <string>
#include <string_view>

namespace zelto {

// A header field's value in which each sequence of adjacent encoded words of one charset (RFC 2047) is
// replaced by one Base64 word of UTF-8. A decoder that decodes each word on its own would break a character
// that is split between two; one that takes charset names literally would lose characters that mails include
// under them (Shift_JIS, ISO-8859-1).
std::string withUTF8Words(std::string_view value);

} // namespace zelto
