#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// What stays as it is when text is percent-encoded; every other byte becomes %XX with upper-case digits.
// Letters and digits are those of ASCII.
enum class AllowedCharacters {
    alphanumerics, // letters and digits alone: values of URL schemes and of form bodies
    unreserved,    // unreserved of RFC 3986: the values that OAuth 1 signs
    pathSegment,   // pchar of RFC 3986 without ";", which some servers split at; no "/"
    path,          // the same and "/"
    queryItem,     // name or value of a query item: no "&", "=", "+", ";", "#"
    fragment,      // fragment of RFC 3986
};

// Nothing if the text is not UTF-8.
std::optional<std::string> percentEncode(std::string_view text,
                                         AllowedCharacters allowed = AllowedCharacters::alphanumerics);

// For bytes of any kind, file paths for one.
std::string percentEncodeBytes(std::string_view bytes, AllowedCharacters allowed);

// Nothing if an escape is broken or the result is not UTF-8. "+" stays "+".
std::optional<std::string> percentDecode(std::string_view text);

// Nothing if an escape is broken.
std::optional<std::string> percentDecodeBytes(std::string_view text);

} // namespace zelto
