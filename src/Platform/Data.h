#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace zelto {

// Bytes of unknown meaning: a body, a file, a secret store's value. Text is std::string and always UTF-8.
using Data = std::vector<std::uint8_t>;

inline std::string_view viewOf(const Data& data) {
    return {reinterpret_cast<const char*>(data.data()), data.size()};
}

inline Data dataOf(std::string_view text) {
    return {text.begin(), text.end()};
}

} // namespace zelto
