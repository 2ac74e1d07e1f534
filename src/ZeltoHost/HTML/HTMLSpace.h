#pragma once

#include <string_view>

namespace zelto {

// White space as defined by HTML and CSS.
constexpr bool isHTMLSpace(char c) {
    return c == ' ' || c == '\n' || c == '\t' || c == '\r' || c == '\f';
}

constexpr std::string_view trimmedHTMLSpace(std::string_view text) {
    while (!text.empty() && isHTMLSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isHTMLSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

} // namespace zelto
