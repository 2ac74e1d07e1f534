#include <Platform/JSON/JSONWriter.h>

#include <Platform/ISO8601.h>
#include <Platform/JSON/JSONTape.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

namespace zelto {

namespace {

constexpr std::uint64_t everyByte = 0x0101010101010101;
constexpr std::uint64_t highBits = everyByte * 0x80;

// Sets the high bit of the lowest byte that cannot be copied as it is: a control character, a quote, a
// backslash, or a byte that is not ASCII. Bits above the lowest are not reliable.
std::uint64_t specialBytes(std::uint64_t word) {
    const auto below = [](std::uint64_t x, std::uint64_t limit) { return (x - everyByte * limit) & ~x; };
    return (below(word, 0x20) | below(word ^ (everyByte * '"'), 1) | below(word ^ (everyByte * '\\'), 1) |
            word) &
           highBits;
}

bool isSpecial(unsigned char c) {
    return c < 0x20 || c >= 0x80 || c == '"' || c == '\\';
}

// The length of the UTF-8 sequence at the beginning; 0 if it is invalid.
std::size_t sequenceLength(const unsigned char* text, std::size_t size) {
    const auto continues = [&](std::size_t index, unsigned low = 0x80, unsigned high = 0xBF) {
        return index < size && text[index] >= low && text[index] <= high;
    };
    const unsigned lead = text[0];
    if (lead >= 0xC2 && lead <= 0xDF) {
        return continues(1) ? 2 : 0;
    }
    if (lead >= 0xE0 && lead <= 0xEF) {
        const unsigned low = lead == 0xE0 ? 0xA0 : 0x80;
        const unsigned high = lead == 0xED ? 0x9F : 0xBF;
        return continues(1, low, high) && continues(2) ? 3 : 0;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const unsigned low = lead == 0xF0 ? 0x90 : 0x80;
        const unsigned high = lead == 0xF4 ? 0x8F : 0xBF;
        return continues(1, low, high) && continues(2) && continues(3) ? 4 : 0;
    }
    return 0;
}

char* writeEscape(char* out, unsigned char c) {
    constexpr std::string_view digits = "0123456789abcdef";
    *out++ = '\\';
    switch (c) {
    case '"':
    case '\\':
        *out++ = static_cast<char>(c);
        return out;
    case '\b':
        *out++ = 'b';
        return out;
    case '\f':
        *out++ = 'f';
        return out;
    case '\n':
        *out++ = 'n';
        return out;
    case '\r':
        *out++ = 'r';
        return out;
    case '\t':
        *out++ = 't';
        return out;
    default:
        std::memcpy(out, "u00", 3);
        out[3] = digits[c >> 4];
        out[4] = digits[c & 15];
        return out + 5;
    }
}

// The path of the place where an incomplete text ends.
std::string pathOfEnd(std::string_view json) {
    struct Level {
        bool isObject;
        std::optional<std::string_view> key; // of the member that was begun
        std::size_t index;
    };

    std::vector<Level> levels;
    for (std::size_t at = 0; at < json.size(); ++at) {
        const char c = json[at];
        if (c == '{' || c == '[') {
            levels.push_back({c == '{', {}, 0});
        } else if (c == '}' || c == ']') {
            levels.pop_back();
        } else if (c == ',') {
            levels.back().key.reset();
            ++levels.back().index;
        } else if (c == '"') {
            const auto begin = ++at;
            while (at < json.size() && json[at] != '"') {
                at += json[at] == '\\' ? 2 : 1;
            }
            if (at + 1 < json.size() && json[at + 1] == ':') {
                levels.back().key = json.substr(begin, at - begin);
            }
        }
    }
    std::string path;
    for (const auto& level : levels) {
        if (level.key) {
            appendKeyToPath(path, *level.key);
        } else if (!level.isObject) {
            appendIndexToPath(path, level.index);
        }
    }
    return path;
}

} // namespace

void JSONWriter::grow(std::size_t count) {
    const std::size_t used = static_cast<std::size_t>(end_ - buffer_.data());
    const std::size_t wanted = std::max({used + count, buffer_.size() * 2, std::size_t{256}});
    buffer_.resize_and_overwrite(wanted, [](char*, std::size_t size) { return size; });
    end_ = buffer_.data() + used;
    limit_ = buffer_.data() + buffer_.size();
}

std::string JSONWriter::take() {
    buffer_.resize(static_cast<std::size_t>(end_ - buffer_.data()));
    auto text = std::move(buffer_);
    buffer_ = {};
    end_ = limit_ = buffer_.data();
    return text;
}

void JSONWriter::fail(EncodingError::Reason reason) {
    throw EncodingError{reason, pathOfEnd({buffer_.data(), end_})};
}

void JSONWriter::number(double value) {
    if (!std::isfinite(value)) {
        comma();
        fail(EncodingError::Reason::nonFiniteNumber);
    }
    // to_chars would write 100000 as 1e+05.
    constexpr double everyIntegerBelow = 9007199254740992.0;
    if (std::abs(value) < everyIntegerBelow && std::trunc(value) == value &&
        !(value == 0 && std::signbit(value))) {
        return integer(static_cast<std::int64_t>(value));
    }
    reserve(maximumNumberLength);
    comma();
    end_ = std::to_chars(end_, end_ + maximumNumberLength, value).ptr;
}

void JSONWriter::date(Date value) {
    switch (dateStrategy_) {
    case DateStrategy::default_:
        return number(value.secondsSinceReference());
    case DateStrategy::iso8601:
        break;
    }
    const auto text = iso8601(value);
    if (text.empty()) {
        comma();
        fail(EncodingError::Reason::dateOutOfRange);
    }
    string(text);
}

void JSONWriter::string(std::string_view utf8) {
    reserve(1);
    comma();
    quoted(utf8);
}

void JSONWriter::key(std::string_view key) {
    reserve(1);
    comma();
    quoted(key);
    reserve(1);
    *end_++ = ':';
}

void JSONWriter::quoted(std::string_view utf8) {
    constexpr std::size_t word = sizeof(std::uint64_t);
    // Space for the quotes, and for a word or an escape that is written past the end.
    constexpr std::size_t slack = 2 + word;
    reserve(utf8.size() + slack);
    const auto* from = reinterpret_cast<const unsigned char*>(utf8.data());
    const auto* const end = from + utf8.size();
    char* out = end_;
    *out++ = '"';
    while (from != end) {
        while (static_cast<std::size_t>(end - from) >= word) {
            std::uint64_t bytes;
            std::memcpy(&bytes, from, word);
            std::memcpy(out, &bytes, word);
            if constexpr (std::endian::native == std::endian::big) {
                bytes = std::byteswap(bytes);
            }
            const auto special = specialBytes(bytes);
            const auto plain = special ? static_cast<std::size_t>(std::countr_zero(special)) / 8 : word;
            from += plain;
            out += plain;
            if (special) {
                break;
            }
        }
        while (from != end && !isSpecial(*from)) {
            *out++ = static_cast<char>(*from++);
        }
        while (from != end && *from >= 0x80) {
            const auto length = sequenceLength(from, static_cast<std::size_t>(end - from));
            if (length == 0) {
                fail(EncodingError::Reason::invalidUTF8);
            }
            for (std::size_t index = 0; index < length; ++index) {
                *out++ = static_cast<char>(*from++);
            }
        }
        while (from != end && *from < 0x80 && isSpecial(*from)) {
            out = writeEscape(out, *from++);
            end_ = out;
            reserve(static_cast<std::size_t>(end - from) + slack);
            out = end_;
        }
    }
    *out++ = '"';
    end_ = out;
}

} // namespace zelto
