#pragma once

#include <string>
#include <string_view>

namespace zelto {

// Text in a mail's charset as UTF-8, with "\n" for line breaks, without a byte order mark and without NUL. If
// the charset is absent or unknown, that of an HTML document's own declaration is used, then UTF-8 if the
// text is valid UTF-8, else windows-1252. Bytes that the charset does not have become U+FFFD.
std::string toUTF8(std::string_view bytes, std::string_view charset, bool isHTML);

} // namespace zelto
