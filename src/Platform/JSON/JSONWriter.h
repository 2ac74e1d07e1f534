#pragma once

#include <Platform/Enum.h>
#include <Platform/JSON/DateStrategy.h>
#include <Platform/JSON/JSONError.h>
#include <Platform/JSON/JSONTypes.h>

#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>

namespace zelto {

// Builds one JSON text, without blanks, for a type's encodeJSON. Commas and colons are added automatically;
// each begin needs its end, and an object's members are keys and values alternately. What has no JSON throws
// an EncodingError, which JSONEncoder catches.
class JSONWriter {
  public:
    explicit JSONWriter(DateStrategy dateStrategy) : dateStrategy_(dateStrategy) {}

    DateStrategy dateStrategy() const { return dateStrategy_; }

    void null() { literal("null"); }

    void boolean(bool value) { literal(value ? std::string_view("true") : std::string_view("false")); }

    template <std::integral I> void integer(I value) {
        reserve(maximumNumberLength);
        comma();
        end_ = std::to_chars(end_, end_ + maximumNumberLength, value).ptr;
    }

    // In the shortest form that reads back as the same double; 3600.0 is written as 3600.
    void number(double value);

    // A number in JSON's form.
    void number(std::string_view written) { literal(written); }

    void string(std::string_view utf8);

    void beginObject() { begin('{'); }

    void endObject() { end('}'); }

    void beginArray() { begin('['); }

    void endArray() { end(']'); }

    void key(std::string_view key);

    // A key that needs no escape, with the punctuation around it: `,"name":`.
    void describedKey(std::string_view written) {
        reserve(written.size());
        const std::size_t skipped = needsComma() ? 0 : 1;
        std::memcpy(end_, written.data() + skipped, written.size() - skipped);
        end_ += written.size() - skipped;
    }

    // For every type that has JSON; an absent optional is null.
    template <class T> void write(const T& value);

    // A member of an object; an absent optional is left out.
    template <class T> void field(std::string_view name, const T& value) {
        if constexpr (JSONOptional<T>) {
            if (value) {
                field(name, *value);
            }
        } else {
            key(name);
            write(value);
        }
    }

    // Takes the text; the writer is empty after it.
    std::string take();

    [[noreturn]] void fail(EncodingError::Reason reason);

  private:
    static constexpr std::ptrdiff_t maximumNumberLength = 32;

    void reserve(std::size_t count) {
        // One more for the comma.
        if (static_cast<std::size_t>(limit_ - end_) <= count) [[unlikely]] {
            grow(count + 1);
        }
    }

    bool needsComma() const {
        // Finished values never end with one of these.
        return end_ != buffer_.data() && end_[-1] != '{' && end_[-1] != '[' && end_[-1] != ':';
    }

    void comma() {
        if (needsComma()) {
            *end_++ = ',';
        }
    }

    void literal(std::string_view text) {
        reserve(text.size());
        comma();
        std::memcpy(end_, text.data(), text.size());
        end_ += text.size();
    }

    void begin(char bracket) {
        reserve(1);
        comma();
        if (++depth_ > jsonDepthLimit) [[unlikely]] {
            fail(EncodingError::Reason::tooDeep);
        }
        *end_++ = bracket;
    }

    void end(char bracket) {
        --depth_;
        reserve(1);
        *end_++ = bracket;
    }

    void grow(std::size_t count);
    void quoted(std::string_view utf8);
    void date(Date value);

    std::string buffer_;
    char* end_ = buffer_.data();
    char* limit_ = buffer_.data();
    int depth_ = 0;
    DateStrategy dateStrategy_;

  public:
    JSONWriter(const JSONWriter&) = delete;
    JSONWriter& operator=(const JSONWriter&) = delete;
};

template <class T> void JSONWriter::write(const T& value) {
    if constexpr (std::same_as<T, bool>) {
        boolean(value);
    } else if constexpr (std::integral<T>) {
        integer(value);
    } else if constexpr (std::same_as<T, double>) {
        number(value);
    } else if constexpr (std::convertible_to<const T&, std::string_view>) {
        string(value);
    } else if constexpr (std::same_as<T, Date>) {
        date(value);
    } else if constexpr (JSONNumberedEnum<T>) {
        integer(rawValue(value));
    } else if constexpr (JSONOptional<T>) {
        if (value) {
            write(*value);
        } else {
            null();
        }
    } else if constexpr (JSONVector<T>) {
        beginArray();
        for (const auto& each : value) {
            write<typename T::value_type>(each);
        }
        endArray();
    } else if constexpr (JSONMap<T>) {
        beginObject();
        for (const auto& [name, each] : value) {
            key(name);
            write(each);
        }
        endObject();
    } else {
        encodeJSON(*this, value);
    }
}

} // namespace zelto
