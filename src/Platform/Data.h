#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace zelto {

// Arbitrary bytes: a body, a file, a value of a secret store. Text is std::string and always UTF-8.
using Data = std::vector<std::uint8_t>;

inline std::string_view viewOf(const Data& data) {
    return {reinterpret_cast<const char*>(data.data()), data.size()};
}

inline Data dataOf(std::string_view text) {
    return {text.begin(), text.end()};
}

} // namespace zelto
