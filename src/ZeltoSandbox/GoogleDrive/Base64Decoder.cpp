#include <ZeltoSandbox/GoogleDrive/Base64Decoder.h>

#include <algorithm>
#include <array>

namespace zelto::sandbox {

namespace {

constexpr std::uint8_t notBase64 = 64;
constexpr std::uint8_t lineBreak = 65;
constexpr std::uint8_t padding = 66;

// What each character stands for: a number below 64, or one of the above.
constexpr auto base64Values = [] {
    constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::array<std::uint8_t, 256> values{};
    values.fill(notBase64);
    for (std::size_t i = 0; i < alphabet.size(); ++i) {
        values[static_cast<unsigned char>(alphabet[i])] = static_cast<std::uint8_t>(i);
    }
    values['\r'] = values['\n'] = lineBreak;
    values['='] = padding;
    return values;
}();

} // namespace

bool Base64Decoder::put(std::string_view text, std::string& bytes) {
    for (std::size_t position = 0; position < text.size();) {
        const auto taken = putGroups(text.substr(position), bytes);
        position += taken;
        if (taken == 0 && !putOne(text[position++], bytes)) {
            return false;
        }
    }
    return true;
}

std::size_t Base64Decoder::putGroups(std::string_view text, std::string& bytes) const {
    if (count_ > 0 || padding_ > 0) {
        return 0;
    }
    std::array<char, 3072> groups;
    auto* to = groups.data();
    const auto* const values = base64Values.data();
    const auto* from = reinterpret_cast<const unsigned char*>(text.data());
    const auto* const end = from + std::min(text.size(), groups.size() / 3 * 4);
    for (; end - from >= 4; from += 4) {
        const unsigned a = values[from[0]];
        const unsigned b = values[from[1]];
        const unsigned c = values[from[2]];
        const unsigned d = values[from[3]];
        if ((a | b | c | d) >= notBase64) {
            break;
        }
        *to++ = static_cast<char>(a << 2 | b >> 4);
        *to++ = static_cast<char>(b << 4 | c >> 2);
        *to++ = static_cast<char>(c << 6 | d);
    }
    const auto count = static_cast<std::size_t>(to - groups.data());
    bytes.append(groups.data(), count);
    return count / 3 * 4;
}

bool Base64Decoder::putOne(char c, std::string& bytes) {
    const auto value = base64Values[static_cast<unsigned char>(c)];
    if (value == lineBreak) {
        return true;
    }
    const bool isPadding = value == padding;
    if (value == notBase64 || (isPadding ? count_ < 2 : padding_ > 0)) {
        return false;
    }
    padding_ += isPadding ? 1 : 0;
    bits_ = bits_ << 6 | (isPadding ? 0U : value);
    if (++count_ == 4) {
        const char group[] = {static_cast<char>(bits_ >> 16), static_cast<char>(bits_ >> 8),
                              static_cast<char>(bits_)};
        bytes.append(group, 3 - padding_);
        count_ = 0;
    }
    return true;
}

} // namespace zelto::sandbox
