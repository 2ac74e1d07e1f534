#pragma once

// Only for the sources of the patterns: brings in ICU.

#include <cstddef>
#include <optional>
#include <string_view>

#include <unicode/uchar.h>
#include <unicode/utf8.h>

namespace zelto {

struct FoundText {
    std::size_t begin = 0;
    std::size_t end = 0;
};

// The first match at or after `from`.
std::optional<FoundText> findEmail(std::string_view text, std::size_t from);
std::optional<FoundText> findPhoneNumber(std::string_view text, std::size_t from);

// A code point and the position after it (or before it, backwards). Negative where the text ends or is not
// UTF-8.
struct CodePointStep {
    UChar32 value = U_SENTINEL;
    std::size_t position = 0;
};

inline CodePointStep codePointAt(std::string_view text, std::size_t at) {
    CodePointStep step{U_SENTINEL, at};
    if (at < text.size()) {
        U8_NEXT(text.data(), step.position, text.size(), step.value);
    }
    return step;
}

inline CodePointStep codePointBefore(std::string_view text, std::size_t at) {
    CodePointStep step{U_SENTINEL, at};
    if (at > 0) {
        // The macro takes a signed position; it reads at most four bytes.
        const std::size_t start = at > 4 ? at - 4 : 0;
        auto offset = static_cast<int>(at - start);
        U8_PREV(text.data() + start, 0, offset, step.value);
        step.position = start + static_cast<std::size_t>(offset);
    }
    return step;
}

inline bool isLetterOrMark(UChar32 c) {
    return c >= 0 && (U_GET_GC_MASK(c) & (U_GC_L_MASK | U_GC_M_MASK)) != 0;
}

inline bool isDecimalDigit(UChar32 c) {
    return c >= 0 && u_charType(c) == U_DECIMAL_DIGIT_NUMBER;
}

} // namespace zelto
