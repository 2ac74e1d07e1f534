#pragma once

#include <string>
#include <string_view>

namespace zelto {

// Text in a mail's charset as UTF-8, with "\n" for line breaks, without a byte order mark and without NUL. A
// charset that is absent or unknown is taken as UTF-8 if the text is that, else as windows-1252; for HTML one
// that the document names comes before that. Bytes that the charset does not have become U+FFFD.
std::string toUTF8(std::string_view bytes, std::string_view charset, bool isHTML);

} // namespace zelto
