#include <Platform/Text.h>
#include <Platform/UTF8.h>

#include <algorithm>
#include <array>
#include <charconv>

namespace zelto {

namespace {

// Whether one to three bytes are a character of white space in UTF-8.
bool isWhiteSpace(std::string_view sequence) {
    if (sequence.size() == 1) {
        return sequence[0] == ' ' || (sequence[0] >= '\t' && sequence[0] <= '\r');
    }
    return sequence == "\u0085" || sequence == "\u00A0" || (sequence >= "\u2000" && sequence <= "\u200A") ||
           sequence == "\u1680" || sequence == "\u2028" || sequence == "\u2029" || sequence == "\u202F" ||
           sequence == "\u205F" || sequence == "\u3000";
}

std::size_t whiteSpaceAtFront(std::string_view text) {
    for (std::size_t length = 1; length <= std::min(text.size(), std::size_t{3}); ++length) {
        if (isWhiteSpace(text.substr(0, length))) {
            return length;
        }
    }
    return 0;
}

std::size_t whiteSpaceAtBack(std::string_view text) {
    for (std::size_t length = 1; length <= std::min(text.size(), std::size_t{3}); ++length) {
        if (isWhiteSpace(text.substr(text.size() - length))) {
            return length;
        }
    }
    return 0;
}

std::string_view withoutWhiteSpaceAtFront(std::string_view text) {
    while (const auto length = whiteSpaceAtFront(text)) {
        text.remove_prefix(length);
    }
    return text;
}

bool isHarmlessASCII(char byte) {
    return byte >= 0x20 && byte < 0x7F;
}

struct Range {
    char32_t first;
    char32_t last;
};

// Control characters, and what changes the direction or the lines of the text around it: ALM, LRM and RLM,
// line and paragraph separator, embeddings and overrides, isolates, the byte order mark, interlinear
// annotation, language tag.
constexpr std::array escapedRanges{Range{0x00, 0x1F},     Range{0x7F, 0x9F},     Range{0x61C, 0x61C},
                                   Range{0x200E, 0x200F}, Range{0x2028, 0x202E}, Range{0x2066, 0x206F},
                                   Range{0xFEFF, 0xFEFF}, Range{0xFFF9, 0xFFFB}, Range{0xE0001, 0xE0001}};

bool isEscaped(char32_t codePoint) {
    return std::ranges::any_of(escapedRanges,
                               [&](Range each) { return codePoint >= each.first && codePoint <= each.last; });
}

std::string upperHex(char32_t number) {
    std::array<char, 8> digits{};
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), static_cast<unsigned>(number), 16).ptr;
    std::string text(digits.data(), end);
    for (char& digit : text) {
        digit = digit >= 'a' ? static_cast<char>(digit - 'a' + 'A') : digit;
    }
    return text;
}

std::string escaped(char32_t codePoint) {
    switch (codePoint) {
    case U'\n':
        return "\\n";
    case U'\r':
        return "\\r";
    case U'\t':
        return "\\t";
    default:
        return "\\u{" + upperHex(codePoint) + "}";
    }
}

} // namespace

std::string_view trimmed(std::string_view text) {
    text = withoutWhiteSpaceAtFront(text);
    while (const auto length = whiteSpaceAtBack(text)) {
        text.remove_suffix(length);
    }
    return text;
}

bool isBlank(std::string_view text) {
    return withoutWhiteSpaceAtFront(text).empty();
}

std::string escapeControlCharacters(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const auto harmless =
            static_cast<std::size_t>(std::ranges::find_if_not(text, isHarmlessASCII) - text.begin());
        result += text.substr(0, harmless);
        text.remove_prefix(harmless);
        if (text.empty()) {
            break;
        }
        if (validUTF8Length(text.substr(0, 4)) == 0) {
            result += "\\x" + upperHex(static_cast<unsigned char>(text.front()));
            text.remove_prefix(1);
            continue;
        }
        const auto [codePoint, length] = firstCodePoint(text);
        if (isEscaped(codePoint)) {
            result += escaped(codePoint);
        } else {
            result += text.substr(0, length);
        }
        text.remove_prefix(length);
    }
    return result;
}

} // namespace zelto
