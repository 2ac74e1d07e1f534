#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

namespace zelto {

// Reserves room for that many more bytes. A large text grows in large steps: memory that is never written to
// costs less than moving the text.
inline void reserveFor(std::size_t more, std::string& text) {
    constexpr std::size_t large = std::size_t{1} << 20;
    if (text.size() >= large && text.capacity() - text.size() < more) {
        text.reserve(std::max(4 * text.capacity(), text.size() + more));
    }
}

} // namespace zelto
