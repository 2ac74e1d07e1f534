#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace zelto {

// A property that a fuzz target checks: the fuzzer keeps the input for which it does not hold.
inline void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

// Shows the text for which it does not.
inline void require(bool holds, const char* what, const std::string& text) {
    if (!holds) {
        std::fprintf(stderr, "%s:\n%s\n", what, text.c_str());
        std::abort();
    }
}

} // namespace zelto
