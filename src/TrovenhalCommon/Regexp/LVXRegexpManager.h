#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

namespace zelto {

enum class LVXRegexpPatterns {
    // An e-mail address as people write it: dotted atoms before the "@" (RFC 5322, at most 64 bytes), after
    // it at least two host name labels, of which the last consists of letters. Letters of any script. No
    // quoted local part, no address literal.
    email,
    // 5 to 15 digits, optionally a "+" or "(" in front, up to three blanks, dots, hyphens, slashes or
    // parentheses between two digits, optionally an extension at the end ("ext. 12", "x12", "#12"). No letter
    // directly before or after it.
    phoneNumber,
};

// A match, as a view of the searched text and in its UTF-16 code units.
struct LVXTextMatch {
    std::string_view text;
    std::size_t utf16Location = 0;
    std::size_t utf16Length = 0;

    bool operator==(const LVXTextMatch&) const = default;
};

// Finds patterns in text, by hand-written scanners in linear time. Any thread.
struct LVXRegexpManager {
    LVXRegexpManager() = delete;

    static std::optional<LVXTextMatch> firstMatch(LVXRegexpPatterns pattern, std::string_view text);

    // From left to right, without overlaps.
    static std::vector<LVXTextMatch> matches(LVXRegexpPatterns pattern, std::string_view text);
};

} // namespace zelto
