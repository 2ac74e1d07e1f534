#pragma once

// Only for the sources of the logger.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// A text with its escapes decoded, and where each byte of it came from.
struct DecodedText {
    std::string text;
    std::vector<std::size_t> positions; // the place of each byte in the original, then the original's end

    static DecodedText plain(std::string_view original);
};

// `nullopt` if there is no escape. Invalid escapes stay as they are.
std::optional<DecodedText> percentDecoded(const DecodedText& source);
std::optional<DecodedText> jsonUnescaped(const DecodedText& source);

} // namespace zelto
