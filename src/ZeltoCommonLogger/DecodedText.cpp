#include <ZeltoCommonLogger/DecodedTextInternal.h>

#include <Platform/ASCII.h>
#include <Platform/UTF8.h>

#include <cstdint>
#include <numeric>

namespace zelto {

namespace {

std::optional<std::uint32_t> hexNumber(std::string_view text, std::size_t at, std::size_t digits) {
    if (at + digits > text.size()) {
        return std::nullopt;
    }
    std::uint32_t number = 0;
    for (std::size_t index = at; index < at + digits; ++index) {
        const int value = hexDigitValue(text[index]);
        if (value < 0) {
            return std::nullopt;
        }
        number = number << 4 | static_cast<std::uint32_t>(value);
    }
    return number;
}

// The bytes that an escape stands for, and its length; 0 if there is no escape.
struct Escape {
    std::string bytes;
    std::size_t length = 0;
};

Escape percentEscape(std::string_view text, std::size_t at) {
    const auto byte = hexNumber(text, at + 1, 2);
    return byte ? Escape{std::string(1, static_cast<char>(*byte)), 3} : Escape{};
}

Escape unicodeEscape(std::string_view text, std::size_t at) {
    auto c = hexNumber(text, at + 2, 4);
    if (!c) {
        return {};
    }
    std::size_t length = 6;
    if (*c >= 0xD800 && *c < 0xDC00 && text.substr(at + 6).starts_with("\\u")) {
        const auto low = hexNumber(text, at + 8, 4);
        if (low && *low >= 0xDC00 && *low < 0xE000) {
            *c = 0x10000 + ((*c - 0xD800) << 10) + (*low - 0xDC00);
            length = 12;
        }
    }
    if (*c >= 0xD800 && *c < 0xE000) {
        return {};
    }
    Escape escape{{}, length};
    appendUTF8(escape.bytes, *c);
    return escape;
}

Escape jsonEscape(std::string_view text, std::size_t at) {
    constexpr std::string_view letters = "\"\\/bfnrt";
    constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
    if (at + 1 >= text.size()) {
        return {};
    }
    if (text[at + 1] == 'u') {
        return unicodeEscape(text, at);
    }
    const auto letter = letters.find(text[at + 1]);
    return letter == std::string_view::npos ? Escape{} : Escape{std::string(1, meanings[letter]), 2};
}

template <class F> std::optional<DecodedText> resolved(const DecodedText& source, char mark, F escapeAt) {
    const std::string_view text = source.text;
    if (text.find(mark) == std::string_view::npos) {
        return std::nullopt;
    }
    DecodedText result;
    result.text.reserve(text.size());
    result.positions.reserve(text.size() + 1);
    for (std::size_t at = 0; at < text.size();) {
        const Escape escape = text[at] == mark ? escapeAt(text, at) : Escape{};
        if (escape.length == 0) {
            result.text.push_back(text[at]);
            result.positions.push_back(source.positions[at]);
            ++at;
            continue;
        }
        result.text += escape.bytes;
        result.positions.insert(result.positions.end(), escape.bytes.size(), source.positions[at]);
        at += escape.length;
    }
    if (result.text.size() == text.size()) {
        return std::nullopt;
    }
    result.positions.push_back(source.positions.back());
    return result;
}

} // namespace

DecodedText DecodedText::plain(std::string_view original) {
    DecodedText result{std::string(original), std::vector<std::size_t>(original.size() + 1)};
    std::iota(result.positions.begin(), result.positions.end(), std::size_t{0});
    return result;
}

std::optional<DecodedText> percentDecoded(const DecodedText& source) {
    return resolved(source, '%', percentEscape);
}

std::optional<DecodedText> jsonUnescaped(const DecodedText& source) {
    return resolved(source, '\\', jsonEscape);
}

} // namespace zelto
