#include <Platform/JSON/JSONLimits.h>
#include <Platform/JSON/JSONTape.h>

#include <boost/json/basic_parser_impl.hpp>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <new>
#include <optional>

namespace zelto {

namespace {

using ParserError = boost::json::error_code;
using Text = boost::json::string_view;

// Whether the absolute value is 1 or more, judged by the place of the first digit that is not 0. There is
// one, since 0 is never out of range.
bool isOneOrMore(std::string_view text) {
    const auto mark = text.find_first_of("eE");
    const auto digits = text.substr(0, mark);
    const auto first = digits.find_first_of("123456789");
    const auto point = std::min(digits.find('.'), digits.size());
    std::int64_t exponent = 0;
    if (mark != std::string_view::npos) {
        const auto* begin = text.data() + mark + (text[mark + 1] == '+' ? 2 : 1);
        std::from_chars(begin, text.data() + text.size(), exponent);
    }
    const auto place = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
    return exponent + place > 0;
}

} // namespace

std::optional<double> nearestDouble(std::string_view text) {
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::result_out_of_range) {
        // Too small is reported in the same way as too large.
        return isOneOrMore(text) ? std::nullopt : std::optional(text.front() == '-' ? -0.0 : 0.0);
    }
    return value;
}

struct TooManyValues {};

// The handler of Boost.JSON's parser.
class JSONTapeBuilder {
  public:
    constexpr static std::size_t max_object_size = std::numeric_limits<std::size_t>::max();
    constexpr static std::size_t max_array_size = max_object_size;
    constexpr static std::size_t max_key_size = max_object_size;
    constexpr static std::size_t max_string_size = max_object_size;

    JSONTapeBuilder(std::string_view source, char* inPlace) : source_(source), unescapedEnd_(inPlace) {
        grow(std::min(source.size() / 16 + 16, maximumJSONValueCount));
    }

    JSONTape take() && { return std::move(tape_); }

    bool on_document_begin(ParserError&) { return true; }

    bool on_document_end(ParserError&) { return true; }

    bool on_object_begin(ParserError&) { return begin(JSONKind::object); }

    bool on_object_end(std::size_t count, ParserError&) { return end(count); }

    bool on_array_begin(ParserError&) { return begin(JSONKind::array); }

    bool on_array_end(std::size_t count, ParserError&) { return end(count); }

    bool on_key_part(Text part, std::size_t, ParserError&) { return unescape(part); }

    bool on_key(Text finalPart, std::size_t size, ParserError&) { return string(finalPart, size); }

    bool on_string_part(Text part, std::size_t, ParserError&) { return unescape(part); }

    bool on_string(Text finalPart, std::size_t size, ParserError&) { return string(finalPart, size); }

    bool on_number_part(Text, ParserError&) { return true; }

    bool on_int64(std::int64_t value, Text text, ParserError&) {
        if (value == 0 && text.front() == '-') {
            return real(text);
        }
        auto& node = add();
        node.kind = JSONKind::int64;
        node.int64 = value;
        return true;
    }

    bool on_uint64(std::uint64_t value, Text, ParserError&) {
        auto& node = add();
        node.kind = JSONKind::uint64;
        node.uint64 = value;
        return true;
    }

    // The library's own double is not always the nearest one.
    bool on_double(double, Text text, ParserError&) { return real(text); }

    bool on_bool(bool value, ParserError&) {
        auto& node = add();
        node.kind = JSONKind::boolean;
        node.boolean = value;
        return true;
    }

    bool on_null(ParserError&) {
        add().kind = JSONKind::null;
        return true;
    }

    bool on_comment_part(Text, ParserError&) { return true; }

    bool on_comment(Text, ParserError&) { return true; }

  private:
    JSONNode& add() {
        if (count_ == capacity_) [[unlikely]] {
            if (count_ == maximumJSONValueCount) {
                throw TooManyValues{};
            }
            grow(std::min(capacity_ * 2, maximumJSONValueCount));
        }
        return tape_.nodes_.get()[count_++];
    }

    void grow(std::size_t capacity) {
        auto* nodes = static_cast<JSONNode*>(std::realloc(tape_.nodes_.get(), capacity * sizeof(JSONNode)));
        if (!nodes) {
            throw std::bad_alloc();
        }
        static_cast<void>(tape_.nodes_.release());
        tape_.nodes_.reset(nodes);
        capacity_ = capacity;
    }

    bool begin(JSONKind kind) {
        // Until its end is known, a container's node stores which container it is in.
        auto& node = add();
        node.kind = kind;
        node.count = open_;
        open_ = static_cast<std::uint32_t>(count_ - 1);
        return true;
    }

    bool end(std::size_t count) {
        auto& node = tape_.nodes_.get()[open_];
        node.size = static_cast<std::uint32_t>(count_ - open_);
        open_ = static_cast<std::uint32_t>(node.count);
        node.count = count;
        return true;
    }

    bool real(Text text) {
        auto& node = add();
        node.kind = JSONKind::real;
        node.size = static_cast<std::uint32_t>(text.size());
        node.string = text.data();
        keep(text);
        return true;
    }

    // When parsing in place, the source may be overwritten up to the current position, except for what nodes
    // refer to.
    void keep(Text text) {
        if (!tape_.unescaped_ && unescapedEnd_) {
            unescapedEnd_ = std::max(unescapedEnd_, const_cast<char*>(text.data() + text.size()));
        }
    }

    bool unescape(Text part) {
        if (!unescapedEnd_) {
            // Unescaping never makes text longer. Pages that stay unused cost nothing.
            tape_.unescaped_ = std::make_unique_for_overwrite<char[]>(source_.size());
            unescapedEnd_ = tape_.unescaped_.get();
        }
        std::memmove(unescapedEnd_, part.data(), part.size());
        unescapedEnd_ += part.size();
        return true;
    }

    bool string(Text finalPart, std::size_t size) {
        auto& node = add();
        node.kind = JSONKind::string;
        node.size = static_cast<std::uint32_t>(size);
        if (finalPart.size() == size && finalPart.data() >= source_.data() &&
            finalPart.data() <= source_.data() + source_.size()) {
            node.string = finalPart.data();
            keep(finalPart);
        } else {
            unescape(finalPart);
            node.string = unescapedEnd_ - size;
        }
        return true;
    }

    std::string_view source_;
    JSONTape tape_;
    std::size_t count_ = 0;
    std::size_t capacity_ = 0;
    std::uint32_t open_ = 0;
    char* unescapedEnd_;
};

namespace {

// A handler that does nothing, used to find where an error is.
struct Nobody {
    constexpr static std::size_t max_object_size = std::numeric_limits<std::size_t>::max();
    constexpr static std::size_t max_array_size = max_object_size;
    constexpr static std::size_t max_key_size = max_object_size;
    constexpr static std::size_t max_string_size = max_object_size;

    bool on_document_begin(ParserError&) { return true; }

    bool on_document_end(ParserError&) { return true; }

    bool on_object_begin(ParserError&) { return true; }

    bool on_object_end(std::size_t, ParserError&) { return true; }

    bool on_array_begin(ParserError&) { return true; }

    bool on_array_end(std::size_t, ParserError&) { return true; }

    bool on_key_part(Text, std::size_t, ParserError&) { return true; }

    bool on_key(Text, std::size_t, ParserError&) { return true; }

    bool on_string_part(Text, std::size_t, ParserError&) { return true; }

    bool on_string(Text, std::size_t, ParserError&) { return true; }

    bool on_number_part(Text, ParserError&) { return true; }

    bool on_int64(std::int64_t, Text, ParserError&) { return true; }

    bool on_uint64(std::uint64_t, Text, ParserError&) { return true; }

    bool on_double(double, Text, ParserError&) { return true; }

    bool on_bool(bool, ParserError&) { return true; }

    bool on_null(ParserError&) { return true; }

    bool on_comment_part(Text, ParserError&) { return true; }

    bool on_comment(Text, ParserError&) { return true; }
};

boost::json::parse_options options() {
    boost::json::parse_options all;
    all.max_depth = jsonDepthLimit;
    return all;
}

// Boost.JSON does not say where it stopped. The text is parsed again in pieces, and the piece with the error
// byte by byte.
std::size_t offsetOfFault(std::string_view source) {
    constexpr std::size_t piece = 4096;
    boost::json::basic_parser<Nobody> coarse(options());
    ParserError error;
    std::size_t begin = 0;
    for (; begin < source.size(); begin += piece) {
        const auto text = source.substr(begin, piece);
        coarse.write_some(true, text.data(), text.size(), error);
        if (error) {
            break;
        }
    }
    if (!error) {
        return source.size();
    }
    boost::json::basic_parser<Nobody> fine(options());
    error = {};
    fine.write_some(true, source.data(), begin, error);
    const auto isFaulty = [&](const char& byte) {
        fine.write_some(true, &byte, 1, error);
        return error.failed();
    };
    return static_cast<std::size_t>(std::find_if(source.begin() + begin, source.end(), isFaulty) -
                                    source.begin());
}

// The parser reports a leading surrogate that stands alone as a syntax error behind it.
bool standsBehindSurrogate(std::string_view source, std::size_t offset) {
    constexpr std::size_t escape = std::string_view("\\ud800").size();
    for (const std::size_t end : {offset, offset - 1}) {
        if (end < source.size() && end >= escape) {
            const auto text = source.substr(end - escape, escape);
            if (text.starts_with("\\u") && (text[2] | 0x20) == 'd' && text[3] >= '8' &&
                (text[3] | 0x20) <= 'b') {
                return true;
            }
        }
    }
    return false;
}

std::string textOf(boost::json::error error) {
    switch (error) {
    case boost::json::error::incomplete:
        return "the text ends too early";
    case boost::json::error::extra_data:
        return "there is text behind the value";
    case boost::json::error::too_deep:
        return "nested deeper than " + std::to_string(jsonDepthLimit) + " levels";
    case boost::json::error::exponent_overflow:
        return "the number is too large";
    case boost::json::error::illegal_leading_surrogate:
    case boost::json::error::illegal_trailing_surrogate:
        return "a surrogate stands alone in an escape";
    case boost::json::error::expected_hex_digit:
        return "an escape needs four hexadecimal digits";
    default:
        return "an unexpected byte, or text that is not UTF-8";
    }
}

std::string tooManyValues() {
    return "more than " + std::to_string(maximumJSONValueCount) + " values and keys";
}

Result<JSONTape, DecodingError> syntaxError(std::size_t offset, std::string text) {
    return failure(DecodingError{DecodingError::Reason::syntax, {}, std::move(text), offset});
}

} // namespace

bool exceedsMaximumJSONValueCount(const DecodingError& error) {
    return error.reason == DecodingError::Reason::syntax && error.text == tooManyValues();
}

Result<JSONTape, DecodingError> JSONTape::parse(std::string_view source) {
    return parse(source, nullptr);
}

Result<JSONTape, DecodingError> JSONTape::parseInPlace(std::span<char> source) {
    return parse({source.data(), source.size()}, source.data());
}

Result<JSONTape, DecodingError> JSONTape::parse(std::string_view source, char* inPlace) {
    if (source.starts_with("\xEF\xBB\xBF")) {
        return syntaxError(0, "a byte order mark stands before the value");
    }
    if (source.size() > std::numeric_limits<std::uint32_t>::max()) {
        return syntaxError(0, "the text is longer than 4 GiB");
    }
    boost::json::basic_parser<JSONTapeBuilder> parser(options(), source, inPlace);
    ParserError error;
    std::size_t used = 0;
    try {
        used = parser.write_some(false, source.data(), source.size(), error);
    } catch (const TooManyValues&) {
        return syntaxError(0, tooManyValues());
    }
    if (error) {
        auto reason = static_cast<boost::json::error>(error.value());
        const auto offset = inPlace ? used : offsetOfFault(source);
        if (reason == boost::json::error::syntax && standsBehindSurrogate(source, offset)) {
            reason = boost::json::error::illegal_leading_surrogate;
        }
        return syntaxError(offset, textOf(reason));
    }
    if (used < source.size()) {
        return syntaxError(used, textOf(boost::json::error::extra_data));
    }
    return std::move(parser.handler()).take();
}

} // namespace zelto
