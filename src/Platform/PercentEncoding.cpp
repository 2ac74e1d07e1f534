#include <Platform/PercentEncoding.h>

#include <Platform/ASCII.h>
#include <Platform/UTF8.h>

#include <array>
#include <cstring>
#include <numeric>

namespace zelto {

namespace {

constexpr std::string_view upperDigits = "0123456789ABCDEF";

// What a byte becomes, and its length: itself or its escape.
struct Replacement {
    std::array<char, 3> text;
    unsigned char length;
};

using Table = std::array<Replacement, 256>;

constexpr Table tableAllowing(std::string_view others) {
    Table table{};
    for (unsigned index = 0; index < table.size(); ++index) {
        const auto byte = static_cast<unsigned char>(index);
        const auto character = static_cast<char>(byte);
        if (isASCIIAlphanumeric(character) || others.find(character) != std::string_view::npos) {
            table[index] = {{character, 0, 0}, 1};
        } else {
            table[index] = {{'%', upperDigits[byte >> 4], upperDigits[byte & 15]}, 3};
        }
    }
    return table;
}

constexpr Table alphanumerics = tableAllowing("");
constexpr Table unreserved = tableAllowing("-._~");
constexpr Table pathSegment = tableAllowing("-._~!$&'()*+,=:@");
constexpr Table path = tableAllowing("-._~!$&'()*+,=:@/");
constexpr Table queryItem = tableAllowing("-._~!$'()*,:@/?");
constexpr Table fragment = tableAllowing("-._~!$&'()*+,;=:@/?");

const Table& tableOf(AllowedCharacters allowed) {
    switch (allowed) {
    case AllowedCharacters::alphanumerics:
        return alphanumerics;
    case AllowedCharacters::unreserved:
        return unreserved;
    case AllowedCharacters::pathSegment:
        return pathSegment;
    case AllowedCharacters::path:
        return path;
    case AllowedCharacters::queryItem:
        return queryItem;
    case AllowedCharacters::fragment:
        return fragment;
    }
    return alphanumerics;
}

} // namespace

std::string percentEncodeBytes(std::string_view bytes, AllowedCharacters allowed) {
    const Table& table = tableOf(allowed);
    const auto lengthOf = [&](std::size_t sum, char byte) {
        return sum + table[static_cast<unsigned char>(byte)].length;
    };
    const auto size = std::accumulate(bytes.begin(), bytes.end(), std::size_t{0}, lengthOf);
    std::string encoded;
    // Three bytes are copied whatever the length, which avoids a branch: hence two spare bytes.
    encoded.resize_and_overwrite(size + 2, [&](char* out, std::size_t) {
        for (const char byte : bytes) {
            const auto& replacement = table[static_cast<unsigned char>(byte)];
            std::memcpy(out, replacement.text.data(), replacement.text.size());
            out += replacement.length;
        }
        return size;
    });
    return encoded;
}

std::optional<std::string> percentEncode(std::string_view text, AllowedCharacters allowed) {
    if (!isValidUTF8(text)) {
        return std::nullopt;
    }
    return percentEncodeBytes(text, allowed);
}

std::optional<std::string> percentDecodeBytes(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (;;) {
        const auto escape = text.find('%');
        decoded += text.substr(0, escape);
        if (escape == std::string_view::npos) {
            return decoded;
        }
        text.remove_prefix(escape);
        const int high = text.size() > 2 ? hexDigitValue(text[1]) : -1;
        const int low = text.size() > 2 ? hexDigitValue(text[2]) : -1;
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        decoded += static_cast<char>(high << 4 | low);
        text.remove_prefix(3);
    }
}

std::optional<std::string> percentDecode(std::string_view text) {
    auto decoded = percentDecodeBytes(text);
    if (decoded && !isValidUTF8(*decoded)) {
        return std::nullopt;
    }
    return decoded;
}

} // namespace zelto
