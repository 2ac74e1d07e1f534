#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace zelto {

enum class LVXRegexpPatterns {
    // An address as people write it: dotted atoms before the "@" (RFC 5322, 64 bytes at most), behind it two
    // host name labels at least, the last one of letters. Letters of any script. No quoted local part, no
    // address literal.
    email,
    // 5 to 15 digits, a "+" or "(" in front if any, up to three blanks, dots, hyphens, slashes or parentheses
    // between two digits, an extension ("ext. 12", "x12", "#12") behind. Neither side touches a letter.
    phoneNumber,
};

// A match, as a view into the text that was searched and in UTF-16 code units of it.
struct LVXTextMatch {
    std::string_view text;
    std::size_t utf16Location = 0;
    std::size_t utf16Length = 0;

    bool operator==(const LVXTextMatch&) const = default;
};

// Finds patterns in text. Hand-written scanners: the time is linear in any text. Any thread.
struct LVXRegexpManager {
    LVXRegexpManager() = delete;

    static std::optional<LVXTextMatch> firstMatch(LVXRegexpPatterns pattern, std::string_view text);

    // From left to right, none overlapping another.
    static std::vector<LVXTextMatch> matches(LVXRegexpPatterns pattern, std::string_view text);
};

} // namespace zelto
