#pragma once

#include <optional>
#include <string_view>

namespace zelto {

// What the style attribute of an element says about how its text is shown; nothing where it says nothing.
struct InlineStyle {
    std::optional<bool> bold;
    std::optional<bool> italic;
    std::optional<bool>
        underline; // only true counts: an inner element does not take an outer one's line away
    std::optional<bool> preformatted;
    std::optional<bool> invisible; // of no size, until an inner element has one
    bool hidden = false;           // with all that is in it
    bool withoutMarkers = false;   // of a list
};

InlineStyle inlineStyle(std::string_view style);

} // namespace zelto
