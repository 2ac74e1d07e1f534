#include <TrovenhalCommon/Regexp/TextScannersInternal.h>

namespace zelto {

namespace {

// Limits of RFC 5321, in bytes.
constexpr std::size_t maximumLocalPartLength = 64;
constexpr std::size_t maximumDomainLength = 253;
constexpr std::size_t maximumLabelLength = 63;

bool isAtomCharacter(UChar32 c) {
    constexpr std::string_view others = "!#$%&'*+-/=?^_`{|}~";
    if (c >= 0 && c < 0x80) {
        return u_isalnum(c) || others.find(static_cast<char>(c)) != std::string_view::npos;
    }
    return isLetterOrMark(c) || isDecimalDigit(c);
}

bool isLabelCharacter(UChar32 c) {
    return c == '-' || isLetterOrMark(c) || isDecimalDigit(c);
}

// Where the local part before `at` begins; `nullopt` if there is none.
std::optional<std::size_t> localPartBegin(std::string_view text, std::size_t from, std::size_t at) {
    std::size_t begin = at;
    UChar32 following = '.'; // an address has no dot before its "@"
    while (begin > from) {
        const auto [c, position] = codePointBefore(text, begin);
        if (!isAtomCharacter(c) && (c != '.' || following == '.')) {
            break;
        }
        if (at - position > maximumLocalPartLength) {
            return std::nullopt;
        }
        following = c;
        begin = position;
    }
    if (begin < at && text[begin] == '.') {
        ++begin;
    }
    return begin < at ? std::optional(begin) : std::nullopt;
}

bool canEndDomain(std::string_view label) {
    if (label.starts_with("xn--")) {
        return true;
    }
    std::size_t letters = 0;
    for (std::size_t at = 0; at < label.size(); ++letters) {
        const auto [c, position] = codePointAt(label, at);
        if (!isLetterOrMark(c)) {
            return false;
        }
        at = position;
    }
    return letters >= 2;
}

// The label at `at`, without hyphens at its end. Empty if there is none.
std::string_view labelAt(std::string_view text, std::size_t at) {
    auto end = at;
    for (;;) {
        const auto [c, position] = codePointAt(text, end);
        if (!isLabelCharacter(c) || position - at > maximumLabelLength + 1) {
            break;
        }
        end = position;
    }
    while (end > at && text[end - 1] == '-') {
        --end;
    }
    const auto label = text.substr(at, end - at);
    return label.size() > maximumLabelLength || label.starts_with('-') ? std::string_view() : label;
}

std::optional<std::size_t> domainEnd(std::string_view text, std::size_t begin) {
    std::optional<std::size_t> end;
    auto at = begin;
    for (int labels = 1;; ++labels) {
        const auto label = labelAt(text, at);
        const auto labelEnd = at + label.size();
        if (label.empty() || labelEnd - begin > maximumDomainLength) {
            return end;
        }
        if (labels >= 2 && canEndDomain(label)) {
            end = labelEnd;
        }
        if (labelEnd >= text.size() || text[labelEnd] != '.') {
            return end;
        }
        at = labelEnd + 1;
    }
}

} // namespace

std::optional<FoundText> findEmail(std::string_view text, std::size_t from) {
    for (auto at = text.find('@', from); at != std::string_view::npos; at = text.find('@', at + 1)) {
        const auto begin = localPartBegin(text, from, at);
        const auto end = begin ? domainEnd(text, at + 1) : std::nullopt;
        if (end) {
            return FoundText{*begin, *end};
        }
    }
    return std::nullopt;
}

} // namespace zelto
