#pragma once

#include <regex>
#include <string>
#include <vector>

namespace zelto {

// The requests without the lengths of their bodies, which are compared where a client is tested.
inline std::vector<std::string> withoutLengths(std::vector<std::string> requests) {
    static const std::regex pattern("Content-Length: [0-9]+\n");
    for (auto& text : requests) {
        text = std::regex_replace(text, pattern, "");
    }
    return requests;
}

} // namespace zelto
