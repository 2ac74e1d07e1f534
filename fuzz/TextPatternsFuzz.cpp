// The patterns for e-mail addresses and telephone numbers find disjoint matches, from left to right, and
// give their places in the text, whatever it is.

#include "Require.h"

#include <Platform/Text.h>
#include <TrovenhalCommon/Regexp/LVXRegexpManager.h>

#include <algorithm>
#include <cstdint>

using namespace zelto;

namespace {

constexpr std::size_t maximumLocalPart = 64;

bool isEmail(std::string_view text) {
    const auto at = text.find('@');
    return at != text.npos && at > 0 && at <= maximumLocalPart && text.find('@', at + 1) == text.npos &&
           text.find('.', at) != text.npos && text.front() != '.' && text.back() != '.' &&
           text.find("..") == text.npos;
}

bool isPhoneNumber(std::string_view text) {
    // Digits of other scripts take more than one byte each.
    const auto digits = std::ranges::count_if(text, [](char c) { return c >= '0' && c <= '9'; });
    const bool isASCII = std::ranges::all_of(text, [](char c) { return c >= 0; });
    return text.find_first_of("\r\n") == text.npos && (!isASCII || digits >= 5);
}

bool fits(LVXRegexpPatterns pattern, std::string_view text) {
    return pattern == LVXRegexpPatterns::email ? isEmail(text) : isPhoneNumber(text);
}

void check(LVXRegexpPatterns pattern, std::string_view text) {
    const auto matches = LVXRegexpManager::matches(pattern, text);
    const auto first = LVXRegexpManager::firstMatch(pattern, text);
    require(first ? !matches.empty() && *first == matches.front() : matches.empty());
    std::size_t end = 0;
    for (const auto& match : matches) {
        const auto begin = static_cast<std::size_t>(match.text.data() - text.data());
        require(!match.text.empty() && begin >= end && fits(pattern, match.text));
        require(match.utf16Location == utf16Length(text.substr(0, begin)));
        require(match.utf16Length == utf16Length(match.text));
        end = begin + match.text.size();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    check(LVXRegexpPatterns::email, text);
    check(LVXRegexpPatterns::phoneNumber, text);
    return 0;
}
