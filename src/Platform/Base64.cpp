#include <Platform/Base64.h>

#include <algorithm>
#include <array>

namespace zelto {

namespace {

constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::uint8_t letter(std::uint32_t sixBits) {
    return static_cast<std::uint8_t>(alphabet[sixBits & 0x3F]);
}

constexpr std::uint8_t noLetter = 0xFF;

// The six bits that each character stands for.
constexpr auto letterValues = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(noLetter);
    for (std::uint8_t bits = 0; bits < 64; ++bits) {
        values[static_cast<unsigned char>(alphabet[bits])] = bits;
    }
    values['-'] = values['+'];
    values['_'] = values['/'];
    return values;
}();

bool isWhiteSpace(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

} // namespace

void writeBase64(std::span<const std::uint8_t> bytes, std::uint8_t* text) {
    while (bytes.size() >= 3) {
        const std::uint32_t group = bytes[0] << 16 | bytes[1] << 8 | bytes[2];
        *text++ = letter(group >> 18);
        *text++ = letter(group >> 12);
        *text++ = letter(group >> 6);
        *text++ = letter(group);
        bytes = bytes.subspan(3);
    }
    if (bytes.empty()) {
        return;
    }
    const std::uint32_t group = bytes[0] << 16 | (bytes.size() == 2 ? bytes[1] << 8 : 0);
    *text++ = letter(group >> 18);
    *text++ = letter(group >> 12);
    *text++ = bytes.size() == 2 ? letter(group >> 6) : '=';
    *text++ = '=';
}

std::string base64Encoded(std::string_view bytes) {
    std::string text(base64Length(bytes.size()), '\0');
    writeBase64({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()},
                reinterpret_cast<std::uint8_t*>(text.data()));
    return text;
}

std::string base64URLEncoded(std::string_view bytes) {
    auto text = base64Encoded(bytes);
    text.resize(text.find_last_not_of('=') + 1);
    std::ranges::replace(text, '+', '-');
    std::ranges::replace(text, '/', '_');
    return text;
}

std::optional<std::string> base64Decoded(std::string_view text) {
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3 + 3);
    std::uint32_t group = 0;
    int bits = 0;
    std::size_t letters = 0;
    std::size_t padding = 0;
    for (const char c : text) {
        const auto value = letterValues[static_cast<unsigned char>(c)];
        if (value != noLetter && padding == 0) {
            group = group << 6 | value;
            bits += 6;
            ++letters;
            if (bits >= 8) {
                bits -= 8;
                bytes += static_cast<char>(group >> bits & 0xFF);
            }
        } else if (c == '=') {
            ++padding;
        } else if (!isWhiteSpace(c)) {
            return std::nullopt;
        }
    }
    const bool isPadded = padding > 0 && (letters % 4 < 2 || letters % 4 + padding != 4);
    if (letters % 4 == 1 || isPadded) {
        return std::nullopt;
    }
    return bytes;
}

} // namespace zelto
