#include <Platform/Base64.h>

#include <algorithm>

namespace zelto {

namespace {

constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::uint8_t letter(std::uint32_t sixBits) {
    return static_cast<std::uint8_t>(alphabet[sixBits & 0x3F]);
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

} // namespace zelto
