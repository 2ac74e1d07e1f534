#include <TrovenhalCommon/Regexp/TextScannersInternal.h>

#include <Platform/ASCII.h>

#include <algorithm>
#include <array>

namespace zelto {

namespace {

constexpr int fewestDigits = 5;
constexpr int maximumDigits = 15; // ITU-T E.164
constexpr int maximumSeparators = 3;
constexpr int maximumExtensionDigits = 7;

bool isBlank(UChar32 c) {
    return c == ' ' || c == 0xA0 || c == 0x2009 || c == 0x202F;
}

bool isSeparator(UChar32 c) {
    return isBlank(c) || c == '-' || c == '.' || c == '/' || c == '(' || c == ')' ||
           (c >= 0x2010 && c <= 0x2013);
}

bool isLetterOrDigit(UChar32 c) {
    return isLetterOrMark(c) || isDecimalDigit(c);
}

// The end of a group of adjacent digits, and the number of digits up to it.
struct Group {
    std::size_t end = 0;
    int digits = 0;
};

// A sequence after a first digit that reads like one number.
struct Run {
    std::array<Group, maximumDigits> groups{};
    int groupCount = 0;
    std::size_t end = 0; // of the whole sequence, where the search continues
    bool isTooLong = false;
};

Run runAt(std::string_view text, std::size_t at) {
    Run run;
    int digits = 0;
    int separators = 0;
    bool isInGroup = false;
    for (;;) {
        const auto [c, position] = codePointAt(text, at);
        if (isDecimalDigit(c)) {
            run.isTooLong = run.isTooLong || ++digits > maximumDigits;
            if (!run.isTooLong) {
                run.groupCount += isInGroup ? 0 : 1;
                run.groups[static_cast<std::size_t>(run.groupCount - 1)] = {position, digits};
            }
            isInGroup = true;
            separators = 0;
        } else if (isSeparator(c) && separators < maximumSeparators) {
            ++separators;
            isInGroup = false;
        } else {
            run.end = at;
            return run;
        }
        at = position;
    }
}

bool hasBalancedParentheses(std::string_view text) {
    int open = 0;
    for (const char c : text) {
        open += c == '(' ? 1 : c == ')' ? -1 : 0;
        if (open < 0 || open > 1) {
            return false;
        }
    }
    return open == 0;
}

// The end of the extension at `at`; `at` itself if there is none.
std::size_t extensionEnd(std::string_view text, std::size_t at) {
    auto position = std::min(text.find_first_not_of(" ,;", at), text.size());
    const auto remaining = text.substr(position, 10);
    const auto begins = [&](std::string_view mark) {
        return equalIgnoringASCIICase(remaining.substr(0, mark.size()), mark);
    };
    constexpr std::array<std::string_view, 6> marks = {"extension", "ext.", "ext=", "ext", "x", "#"};
    const auto mark = std::ranges::find_if(marks, begins);
    if (mark == marks.end() || position - at > 2) {
        return at;
    }
    position += mark->size();
    position += position < text.size() && text[position] == ' ' ? 1 : 0;
    int digits = 0;
    for (auto step = codePointAt(text, position); isDecimalDigit(step.value);
         step = codePointAt(text, position)) {
        position = step.position;
        if (++digits > maximumExtensionDigits) {
            return at;
        }
    }
    return digits > 0 && !isLetterOrDigit(codePointAt(text, position).value) ? position : at;
}

// The longest number at `begin` without an adjacent letter or digit.
std::optional<FoundText> numberIn(std::string_view text, std::size_t begin, const Run& run) {
    for (int index = run.groupCount - 1; index >= 0 && !run.isTooLong; --index) {
        const auto& group = run.groups[static_cast<std::size_t>(index)];
        if (group.digits < fewestDigits) {
            return std::nullopt;
        }
        const auto end = extensionEnd(text, group.end);
        const bool touchesLetter = end == group.end && isLetterOrDigit(codePointAt(text, end).value);
        if (!touchesLetter && hasBalancedParentheses(text.substr(begin, group.end - begin))) {
            return FoundText{begin, end};
        }
    }
    return std::nullopt;
}

// The first digit of a number that could begin at `at`, with a digit, "+" or "(".
std::optional<std::size_t> firstDigit(std::string_view text, std::size_t at) {
    for (int marks = 0; marks < 3; ++marks) {
        const auto [c, position] = codePointAt(text, at);
        if (isDecimalDigit(c)) {
            return at;
        }
        if (c != '+' && c != '(') {
            return std::nullopt;
        }
        at = position;
    }
    return std::nullopt;
}

} // namespace

std::optional<FoundText> findPhoneNumber(std::string_view text, std::size_t from) {
    auto previous = codePointBefore(text, from).value;
    for (auto at = from; at < text.size();) {
        const auto [c, position] = codePointAt(text, at);
        const auto digit = isLetterOrDigit(previous) ? std::nullopt : firstDigit(text, at);
        if (!digit) {
            previous = c;
            at = position;
            continue;
        }
        const auto run = runAt(text, *digit);
        // "(030) 1" begins with its parenthesis; "(call 0301234567)" and "(0301234567)" do not.
        for (auto begin = at; begin <= *digit; ++begin) {
            if (const auto found = numberIn(text, begin, run)) {
                return found;
            }
        }
        previous = codePointBefore(text, run.end).value;
        at = run.end;
    }
    return std::nullopt;
}

} // namespace zelto
