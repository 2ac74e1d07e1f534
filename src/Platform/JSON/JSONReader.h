#pragma once

#include <Platform/Enum.h>
#include <Platform/JSON/DateStrategy.h>
#include <Platform/JSON/JSONTape.h>
#include <Platform/JSON/JSONTypes.h>

#include <concepts>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace zelto {

// One value of a parsed text, as passed to a type's decodeJSON: a cheap handle, passed by value, that must
// not outlive the call. A value that does not fit throws a DecodingError with the path to it; JSONDecoder
// catches these, but no other exception of a decodeJSON.
class JSONReader {
  public:
    class Elements;
    class Members;

    JSONReader(const JSONTape& tape, DateStrategy dateStrategy)
        : tape_(&tape), node_(tape.root()), dateStrategy_(dateStrategy) {}

    JSONKind kind() const { return node_->kind; }

    bool isNull() const { return kind() == JSONKind::null; }

    DateStrategy dateStrategy() const { return dateStrategy_; }

    bool boolean() const {
        expect(JSONKind::boolean, "a boolean");
        return node_->boolean;
    }

    // 1.0 and 1e3 are whole numbers, 1.5 is not. A number out of range is an error, and so is one with a
    // fraction or an exponent beyond 2^53, since it may not be exact.
    std::int64_t signedInteger(std::int64_t lowest, std::int64_t highest) const;
    std::uint64_t unsignedInteger(std::uint64_t highest) const;

    // The nearest double; a number beyond the range of double is an error.
    double number() const;

    // The text of a number of the kind `real`; empty if it was not read from a text.
    std::string_view numberText() const {
        expect(JSONKind::real, "a number");
        return {node_->size > 0 ? node_->string : "", node_->size};
    }

    // Valid as long as the reader.
    std::string_view string() const {
        expect(JSONKind::string, "a string");
        return node_->text();
    }

    // The number of an array's elements or an object's members.
    std::size_t count() const { return node_->isContainer() ? node_->count : 0; }

    // An array's elements, each as a JSONReader.
    Elements elements() const;

    // An object's members in the order of the text, as pairs of key and JSONReader; a repeated key comes
    // repeatedly.
    Members members() const;

    // An object's member, even if null; the last one of a repeated key.
    std::optional<JSONReader> find(std::string_view key) const;

    // For every type that has JSON.
    template <class T> void read(T& value) const;
    template <class T> T as() const;

    // Fails if the member is missing.
    template <class T> T required(std::string_view key) const {
        const auto member = find(key);
        if (!member) {
            failMissing(key);
        }
        return member->as<T>();
    }

    // A null reads as absent.
    template <class T> std::optional<T> optional(std::string_view key) const {
        const auto member = find(key);
        return member && !member->isNull() ? std::optional<T>(member->as<T>()) : std::nullopt;
    }

    // For a type's own rules. The text must not contain the value.
    [[noreturn]] void fail(std::string text) const;
    // "expected <what>, found a number": a value of the wrong kind.
    [[noreturn]] void failMismatch(std::string_view expected) const;
    // "expected <what>, found another value": the right kind, but no value of the type.
    [[noreturn]] void failValue(std::string_view expected) const;
    [[noreturn]] void failMissing(std::string_view key) const;

    // The last member of each key; null if there is none.
    void locate(std::span<const std::string_view> keys, const JSONNode** found) const;

    JSONReader at(const JSONNode* node) const {
        auto reader = *this;
        reader.node_ = node;
        return reader;
    }

  private:
    void expect(JSONKind wanted, std::string_view expected) const {
        if (node_->kind != wanted) [[unlikely]] {
            failMismatch(expected);
        }
    }

    std::optional<std::int64_t> wholeNumber() const;
    std::optional<double> real() const;
    Date date() const;

    const JSONTape* tape_;
    const JSONNode* node_;
    DateStrategy dateStrategy_;
};

class JSONReader::Elements {
  public:
    class Iterator {
      public:
        explicit Iterator(JSONReader reader) : reader_(reader) {}

        const JSONReader& operator*() const { return reader_; }

        Iterator& operator++() {
            reader_.node_ = reader_.node_->next();
            return *this;
        }

        bool operator==(const Iterator& other) const { return reader_.node_ == other.reader_.node_; }

      private:
        JSONReader reader_;
    };

    explicit Elements(JSONReader array) : array_(array) {}

    Iterator begin() const { return Iterator(array_.at(array_.node_ + 1)); }

    Iterator end() const { return Iterator(array_.at(array_.node_->next())); }

  private:
    JSONReader array_;
};

class JSONReader::Members {
  public:
    class Iterator {
      public:
        explicit Iterator(JSONReader key) : key_(key) {}

        std::pair<std::string_view, JSONReader> operator*() const {
            return {key_.node_->text(), key_.at(key_.node_ + 1)};
        }

        Iterator& operator++() {
            key_.node_ = (key_.node_ + 1)->next();
            return *this;
        }

        bool operator==(const Iterator& other) const { return key_.node_ == other.key_.node_; }

      private:
        JSONReader key_;
    };

    explicit Members(JSONReader object) : object_(object) {}

    Iterator begin() const { return Iterator(object_.at(object_.node_ + 1)); }

    Iterator end() const { return Iterator(object_.at(object_.node_->next())); }

  private:
    JSONReader object_;
};

inline JSONReader::Elements JSONReader::elements() const {
    expect(JSONKind::array, "an array");
    return Elements(*this);
}

inline JSONReader::Members JSONReader::members() const {
    expect(JSONKind::object, "an object");
    return Members(*this);
}

template <class T> T JSONReader::as() const {
    if constexpr (std::default_initializable<T>) {
        T value{};
        read(value);
        return value;
    } else {
        return makeFromJSON(*this, std::type_identity<T>());
    }
}

template <class T> void JSONReader::read(T& value) const {
    if constexpr (std::same_as<T, bool>) {
        value = boolean();
    } else if constexpr (std::signed_integral<T>) {
        using Limits = std::numeric_limits<T>;
        value = static_cast<T>(signedInteger(Limits::min(), Limits::max()));
    } else if constexpr (std::unsigned_integral<T>) {
        value = static_cast<T>(unsignedInteger(std::numeric_limits<T>::max()));
    } else if constexpr (std::same_as<T, double>) {
        value = number();
    } else if constexpr (std::same_as<T, std::string>) {
        value = string();
    } else if constexpr (std::same_as<T, Date>) {
        value = date();
    } else if constexpr (JSONNumberedEnum<T>) {
        const auto known = fromRawValue<T>(signedInteger(std::numeric_limits<std::int64_t>::min(),
                                                         std::numeric_limits<std::int64_t>::max()));
        if (!known) {
            failValue("the number of a known case");
        }
        value = *known;
    } else if constexpr (JSONOptional<T>) {
        if (isNull()) {
            value.reset();
        } else if constexpr (std::default_initializable<typename T::value_type>) {
            read(value.emplace());
        } else {
            value.emplace(as<typename T::value_type>());
        }
    } else if constexpr (JSONVector<T>) {
        const auto all = elements();
        value.clear();
        value.reserve(count());
        for (const auto& each : all) {
            if constexpr (std::default_initializable<typename T::value_type> &&
                          !std::same_as<T, std::vector<bool>>) {
                each.read(value.emplace_back());
            } else {
                value.push_back(each.as<typename T::value_type>());
            }
        }
    } else if constexpr (JSONMap<T>) {
        value.clear();
        for (const auto& [key, each] : members()) {
            value.insert_or_assign(std::string(key), each.template as<typename T::mapped_type>());
        }
    } else if constexpr (std::default_initializable<T>) {
        decodeJSON(*this, value);
    } else {
        value = as<T>();
    }
}

} // namespace zelto
