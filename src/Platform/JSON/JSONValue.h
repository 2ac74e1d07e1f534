#pragma once

#include <Platform/JSON/JSONCoding.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace zelto {

class JSONValue;

// The members of a JSON object in their order. Keys are unique. Two objects are equal if they have equal
// members, in whatever order.
class JSONObject {
  public:
    using Member = std::pair<std::string, JSONValue>;

    JSONObject();
    JSONObject(std::initializer_list<Member> members);
    JSONObject(const JSONObject& other);
    JSONObject(JSONObject&& other) noexcept;
    JSONObject& operator=(const JSONObject& other);
    JSONObject& operator=(JSONObject&& other) noexcept;
    ~JSONObject();

    std::size_t size() const;
    bool empty() const;
    // Null if there is no such member.
    const JSONValue* find(std::string_view key) const;
    JSONValue* find(std::string_view key);
    // Replaces the value in its place, or appends a member.
    JSONValue& set(std::string_view key, JSONValue value);
    // False if there was no such member.
    bool erase(std::string_view key);

    const Member* begin() const;
    const Member* end() const;

    bool operator==(const JSONObject& other) const;

  private:
    friend void decodeJSON(const JSONReader& reader, JSONValue& value);

    std::vector<Member> members_;
};

// Any JSON value. Numbers are int64 where they fit, else uint64, else real: numbers written as 1.5, 1e3, 1.0
// or -0, and whole numbers of more than 64 bits. A real that was read keeps its text, and is written with it,
// however large, small or long it is. Of a key that is repeated in a text, the last value counts, in the
// place of the first. Numbers are equal by value, whatever their kind; reals by their nearest doubles, those
// beyond the range of double by their texts.
class JSONValue {
    struct WrittenNumber {
        std::string text;
        bool operator==(const WrittenNumber&) const = default;
    };

  public:
    using Array = std::vector<JSONValue>;

    JSONValue() = default;

    JSONValue(std::nullptr_t) {}

    JSONValue(std::same_as<bool> auto value) : value_(value) {}

    template <std::integral I>

    requires(!std::same_as<I, bool>) JSONValue(I value) {
        if (std::in_range<std::int64_t>(value)) {
            value_ = static_cast<std::int64_t>(value);
        } else {
            value_ = static_cast<std::uint64_t>(value);
        }
    }

    JSONValue(double value) : value_(value) {}

    JSONValue(std::string value) : value_(std::move(value)) {}

    JSONValue(std::string_view value) : value_(std::string(value)) {}

    JSONValue(const char* value) : value_(std::string(value)) {}

    JSONValue(Array value) : value_(std::move(value)) {}

    JSONValue(JSONObject value) : value_(std::move(value)) {}

    static Result<JSONValue, DecodingError> parse(std::string_view text);
    // Errors are those of JSONEncoder.
    Result<std::string, EncodingError> text(int indent = 0) const;

    // As JSONEncoder encodes any type with JSON, and as JSONDecoder decodes this value.
    template <class T>
    static Result<JSONValue, EncodingError> of(const T& value,
                                               DateStrategy dateStrategy = DateStrategy::default_);
    template <class T> Result<T, DecodingError> as(DateStrategy dateStrategy = DateStrategy::default_) const;

    JSONKind kind() const { return isWritten() ? JSONKind::real : static_cast<JSONKind>(value_.index()); }

    bool isNull() const { return kind() == JSONKind::null; }

    // `nullopt` if the value is of another kind. A number converts to an integer of the same value; asDouble
    // gives the nearest double, `nullopt` for a number beyond the range of double.
    std::optional<bool> asBool() const;
    std::optional<std::int64_t> asInt64() const;
    std::optional<std::uint64_t> asUInt64() const;
    std::optional<double> asDouble() const;

    // The JSON text that a real was read from; null for other values.
    const std::string* writtenNumber() const {
        const auto* number = std::get_if<WrittenNumber>(&value_);
        return number ? &number->text : nullptr;
    }

    // Null if the value is of another kind.
    const std::string* asString() const { return std::get_if<std::string>(&value_); }

    const Array* asArray() const { return std::get_if<Array>(&value_); }

    Array* asArray() { return std::get_if<Array>(&value_); }

    const JSONObject* asObject() const { return std::get_if<JSONObject>(&value_); }

    JSONObject* asObject() { return std::get_if<JSONObject>(&value_); }

    // An object's member; null if there is none, and for other kinds.
    const JSONValue* find(std::string_view key) const;
    // Turns a value that is not an object into one.
    JSONValue& set(std::string_view key, JSONValue value);

    bool operator==(const JSONValue& other) const;

  private:
    friend void decodeJSON(const JSONReader& reader, JSONValue& value);

    std::optional<double> asReal() const;

    bool isWritten() const { return std::holds_alternative<WrittenNumber>(value_); }

    // In the order of JSONKind, except for the last.
    std::variant<std::nullptr_t, bool, std::int64_t, std::uint64_t, double, std::string, Array, JSONObject,
                 WrittenNumber>
        value_;
};

ZELTO_JSON_CODED(JSONValue);

template <class T> Result<JSONValue, EncodingError> JSONValue::of(const T& value, DateStrategy dateStrategy) {
    const auto text = JSONEncoder{.dateStrategy = dateStrategy}.encode(value);
    if (!text) {
        return failure(text.error());
    }
    return *parse(*text);
}

template <class T> Result<T, DecodingError> JSONValue::as(DateStrategy dateStrategy) const {
    if (const auto tape = JSONTape::of(*this)) {
        return JSONDecoder{dateStrategy}.read<T>(*tape);
    }
    const auto json = text();
    if (!json) {
        const auto& error = json.error();
        auto reason = EncodingError{error.reason, {}}.message();
        return failure(DecodingError{DecodingError::Reason::custom, error.path, std::move(reason)});
    }
    return JSONDecoder{dateStrategy}.decode<T>(*json);
}

} // namespace zelto
