#pragma once

// For the sources of the logger only.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// A text with its escapes resolved, and where each byte of it came from.
struct DecodedText {
    std::string text;
    std::vector<std::size_t>
        positions; // of each byte in the original, and behind the last the original's end

    static DecodedText plain(std::string_view original);
};

// Nothing where there is no escape to resolve. Broken escapes stay as they are.
std::optional<DecodedText> percentDecoded(const DecodedText& source);
std::optional<DecodedText> jsonUnescaped(const DecodedText& source);

} // namespace zelto
