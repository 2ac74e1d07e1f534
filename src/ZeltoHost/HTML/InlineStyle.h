#pragma once

#include <optional>
#include <string_view>

namespace zelto {

// What the style attribute of an element says about its text; absent where it says nothing.
struct InlineStyle {
    std::optional<bool> bold;
    std::optional<bool> italic;
    std::optional<bool> underline; // only true counts: an inner element cannot remove an outer one's line
    std::optional<bool> preformatted;
    std::optional<bool> invisible; // of size zero, unless an inner element has another size
    bool hidden = false;           // with all of its content
    bool withoutMarkers = false;   // of a list
};

InlineStyle inlineStyle(std::string_view style);

} // namespace zelto
