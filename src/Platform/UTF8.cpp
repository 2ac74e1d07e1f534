#include <Platform/UTF8.h>

#include <cstdint>
#include <cstring>

namespace zelto {

namespace {

constexpr std::uint64_t highBits = 0x8080808080808080;

bool isContinuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

std::size_t asciiLength(const char* data, std::size_t size) {
    std::size_t at = 0;
    // Eight words at a time, which is faster for long texts.
    for (std::uint64_t words[8]; at + sizeof words <= size; at += sizeof words) {
        std::memcpy(words, data + at, sizeof words);
        const auto all =
            (words[0] | words[1]) | (words[2] | words[3]) | (words[4] | words[5]) | (words[6] | words[7]);
        if ((all & highBits) != 0) {
            break;
        }
    }
    for (std::uint64_t word = 0; at + sizeof word <= size; at += sizeof word) {
        std::memcpy(&word, data + at, sizeof word);
        if ((word & highBits) != 0) {
            break;
        }
    }
    while (at < size && static_cast<unsigned char>(data[at]) < 0x80) {
        ++at;
    }
    return at;
}

// What the first byte of a multi-byte sequence requires: the number of continuation bytes, and the range of
// the first of them (table 3-7 of the Unicode standard). Zero continuation bytes: the byte does not begin a
// sequence.
struct Lead {
    unsigned continuations = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
};

Lead leadOf(unsigned char byte) {
    if (byte >= 0xC2 && byte <= 0xDF) {
        return {1};
    }
    if (byte >= 0xE0 && byte <= 0xEF) {
        return {2, static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80),
                static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF)};
    }
    if (byte >= 0xF0 && byte <= 0xF4) {
        return {3, static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80),
                static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF)};
    }
    return {};
}

struct Sequence {
    std::size_t length = 0;
    bool whole = false;
};

// The longest beginning of a valid sequence at the front; at least one byte.
Sequence sequenceAt(const unsigned char* data, std::size_t size) {
    const auto lead = leadOf(data[0]);
    if (lead.continuations == 0 || size < 2 || data[1] < lead.low || data[1] > lead.high) {
        return {1, false};
    }
    std::size_t length = 2;
    while (length <= lead.continuations && length < size && isContinuation(data[length])) {
        ++length;
    }
    return {length, length == lead.continuations + 1};
}

} // namespace

std::size_t validUTF8Length(std::string_view bytes) noexcept {
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
    std::size_t at = 0;
    while (at < bytes.size()) {
        if (data[at] < 0x80) {
            at += asciiLength(bytes.data() + at, bytes.size() - at);
            continue;
        }
        const auto sequence = sequenceAt(data + at, bytes.size() - at);
        if (!sequence.whole) {
            return at;
        }
        at += sequence.length;
    }
    return at;
}

bool isValidUTF8(std::string_view bytes) noexcept {
    return validUTF8Length(bytes) == bytes.size();
}

std::size_t illFormedLength(std::string_view bytes) noexcept {
    return sequenceAt(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()).length;
}

std::string repairedUTF8(std::string_view bytes) {
    std::string repaired;
    repaired.reserve(bytes.size());
    for (;;) {
        const auto valid = validUTF8Length(bytes);
        repaired += bytes.substr(0, valid);
        bytes.remove_prefix(valid);
        if (bytes.empty()) {
            return repaired;
        }
        repaired += "\xEF\xBF\xBD";
        bytes.remove_prefix(illFormedLength(bytes));
    }
}

DecodedCodePoint firstCodePoint(std::string_view text) noexcept {
    const auto at = [&](std::size_t index) {
        return static_cast<char32_t>(static_cast<unsigned char>(text[index]));
    };
    const auto tail = [&](std::size_t index) { return at(index) & 0x3F; };
    const auto first = at(0);
    if (first < 0x80) {
        return {first, 1};
    }
    if (first < 0xE0) {
        return {(first & 0x1F) << 6 | tail(1), 2};
    }
    if (first < 0xF0) {
        return {(first & 0x0F) << 12 | tail(1) << 6 | tail(2), 3};
    }
    return {(first & 0x07) << 18 | tail(1) << 12 | tail(2) << 6 | tail(3), 4};
}

void appendUTF8(std::string& text, char32_t codePoint) {
    const auto tail = [&](int shift) { text += static_cast<char>(0x80 | (codePoint >> shift & 0x3F)); };
    if (codePoint < 0x80) {
        text += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        text += static_cast<char>(0xC0 | codePoint >> 6);
        tail(0);
    } else if (codePoint < 0x10000) {
        text += static_cast<char>(0xE0 | codePoint >> 12);
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0 | codePoint >> 18);
        tail(12);
        tail(6);
        tail(0);
    }
}

} // namespace zelto
