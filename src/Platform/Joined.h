#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace zelto {

// Joins the texts of a range's elements with a separator. `textOf` gives the text of an element that is not
// text itself.
template <class Range, class TextOf = std::identity>
std::string joined(Range&& range, std::string_view separator, TextOf textOf = {}) {
    std::string all;
    bool isFirst = true;
    for (const auto& each : range) {
        all.append(std::exchange(isFirst, false) ? std::string_view() : separator);
        all.append(std::invoke(textOf, each));
    }
    return all;
}

} // namespace zelto
