#pragma once

#include <algorithm>
#include <cstddef>
#include <string>

namespace zelto {

// Makes room for that many bytes more; for a large text in large steps, since memory that is not written to
// costs less than moving what is there.
inline void reserveFor(std::size_t more, std::string& text) {
    constexpr std::size_t large = std::size_t{1} << 20;
    if (text.size() >= large && text.capacity() - text.size() < more) {
        text.reserve(std::max(4 * text.capacity(), text.size() + more));
    }
}

} // namespace zelto
