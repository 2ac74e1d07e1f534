#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// What is not percent-encoded; every other byte becomes %XX with upper-case digits. Letters and digits are
// those of ASCII.
enum class AllowedCharacters {
    alphanumerics, // only letters and digits: values of URL schemes and of form bodies
    unreserved,    // unreserved of RFC 3986: the values that OAuth 1 signs
    pathSegment,   // pchar of RFC 3986 without ";", which some servers split at; no "/"
    path,          // the same and "/"
    queryItem,     // name or value of a query item: no "&", "=", "+", ";", "#"
    fragment,      // fragment of RFC 3986
};

// `nullopt` if the text is not UTF-8.
std::optional<std::string> percentEncode(std::string_view text,
                                         AllowedCharacters allowed = AllowedCharacters::alphanumerics);

// For bytes of any kind, such as file paths.
std::string percentEncodeBytes(std::string_view bytes, AllowedCharacters allowed);

// `nullopt` if an escape is invalid or the result is not UTF-8. "+" stays "+".
std::optional<std::string> percentDecode(std::string_view text);

// `nullopt` if an escape is invalid.
std::optional<std::string> percentDecodeBytes(std::string_view text);

} // namespace zelto
