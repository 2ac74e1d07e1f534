#pragma once

// For sources only: brings in Boost.Preprocessor.

#include <Platform/JSON/JSONCoding.h>

#include <boost/preprocessor/control/iif.hpp>
#include <boost/preprocessor/facilities/empty.hpp>
#include <boost/preprocessor/punctuation/comma_if.hpp>
#include <boost/preprocessor/punctuation/is_begin_parens.hpp>
#include <boost/preprocessor/punctuation/remove_parens.hpp>
#include <boost/preprocessor/seq/for_each_i.hpp>
#include <boost/preprocessor/stringize.hpp>
#include <boost/preprocessor/tuple/rem.hpp>
#include <boost/preprocessor/variadic/to_seq.hpp>

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string_view>
#include <tuple>
#include <utility>

// ZELTO_JSON_RECORD(T, fields...); is used in the namespace of T, in the source of T, which declared
// ZELTO_JSON_CODED(T). Fields are written in this order; a member that is not named has no JSON. A field is
//     name                             key "name"; the underscore of `default_` is dropped
//     (name, "key")                    a key of its own
//     (name, defaulted)                may be missing or null, and then keeps the default of T{}
//     (name, "key", defaulted)
// A std::optional may always be missing; every other field is required. ZELTO_JSON_KEYS makes the keys
// public.
#define ZELTO_JSON_RECORD(T, ...)                                                                            \
    [[maybe_unused]] static consteval auto describeJSON(const T*) {                                          \
        using namespace ::zelto::jsonrecord;                                                                 \
        return std::make_tuple(__VA_OPT__(                                                                   \
            BOOST_PP_SEQ_FOR_EACH_I(ZELTO_JSON_FIELD, T, BOOST_PP_VARIADIC_TO_SEQ(__VA_ARGS__))));           \
    }                                                                                                        \
    void encodeJSON(::zelto::JSONWriter& writer, const T& value) {                                           \
        writer.beginObject();                                                                                \
        ::zelto::jsonrecord::writeFields(writer, value);                                                     \
        writer.endObject();                                                                                  \
    }                                                                                                        \
    void decodeJSON(const ::zelto::JSONReader& reader, T& value) {                                           \
        ::zelto::jsonrecord::readFields(reader, value);                                                      \
    }                                                                                                        \
    [[maybe_unused]] ::std::span<const ::std::string_view> jsonKeys(::std::type_identity<T>) {               \
        return ::zelto::jsonrecord::Description<T>::keys;                                                    \
    }                                                                                                        \
    static_assert(true)

#define ZELTO_JSON_FIELD(r, T, index, item)                                                                  \
    BOOST_PP_COMMA_IF(index)                                                                                 \
    BOOST_PP_IIF(BOOST_PP_IS_BEGIN_PARENS(item), ZELTO_JSON_FIELD_WITH, ZELTO_JSON_FIELD_PLAIN)(T, item)
#define ZELTO_JSON_FIELD_PLAIN(T, name) field(&T::name, #name)
#define ZELTO_JSON_FIELD_WITH(T, item) ZELTO_JSON_APPLY(ZELTO_JSON_FIELD_UNPACKED, T, BOOST_PP_REM item)
#define ZELTO_JSON_APPLY(macro, ...) macro(__VA_ARGS__)
#define ZELTO_JSON_FIELD_UNPACKED(T, name, ...) field(&T::name, #name, __VA_ARGS__)

namespace zelto::jsonrecord {

struct Defaulted {};

inline constexpr Defaulted defaulted;

// A key with the punctuation around it in JSON: `,"name":`.
template <std::size_t Capacity> struct Key {
    std::array<char, Capacity + 4> written{};
    std::size_t size = 0;

    consteval explicit Key(std::string_view key) {
        append(",\"");
        append(key);
        append("\":");
        if (std::ranges::any_of(key, [](char c) { return c == '"' || c == '\\' || c < ' ' || c > '~'; })) {
            throw "a described key must not need an escape";
        }
    }

    consteval void append(std::string_view text) {
        for (const char c : text) {
            written[size++] = c;
        }
    }

    constexpr std::string_view inJSON() const { return {written.data(), size}; }

    constexpr std::string_view name() const { return {written.data() + 2, size - 4}; }
};

template <class Owner, class M, std::size_t Capacity> struct Field {
    using Type = M;
    M Owner::*member;
    Key<Capacity> key;
    bool isDefaulted;
};

consteval std::string_view withoutUnderscore(std::string_view name) {
    return name.ends_with('_') ? name.substr(0, name.size() - 1) : name;
}

template <class Owner, class M, std::size_t N> consteval auto field(M Owner::*member, const char (&name)[N]) {
    return Field<Owner, M, N>{member, Key<N>(withoutUnderscore(name)), false};
}

template <class Owner, class M, std::size_t N>
consteval auto field(M Owner::*member, const char (&name)[N], Defaulted) {
    return Field<Owner, M, N>{member, Key<N>(withoutUnderscore(name)), true};
}

template <class Owner, class M, std::size_t N, std::size_t K>
consteval auto field(M Owner::*member, const char (&)[N], const char (&key)[K]) {
    return Field<Owner, M, K>{member, Key<K>(key), false};
}

template <class Owner, class M, std::size_t N, std::size_t K>
consteval auto field(M Owner::*member, const char (&)[N], const char (&key)[K], Defaulted) {
    return Field<Owner, M, K>{member, Key<K>(key), true};
}

template <class T> struct Description {
    static constexpr auto fields = describeJSON(static_cast<const T*>(nullptr));
    static constexpr std::size_t count = std::tuple_size_v<decltype(fields)>;
    static constexpr auto keys = std::apply(
        [](const auto&... each) { return std::array<std::string_view, count>{each.key.name()...}; }, fields);
};

template <class M> void writeField(JSONWriter& writer, std::string_view key, const M& value) {
    if constexpr (JSONOptional<M>) {
        if (value) {
            writeField(writer, key, *value);
        }
    } else {
        writer.describedKey(key);
        writer.write(value);
    }
}

// Only the members, for an encodeJSON that adds others to the same object.
template <class T> void writeFields(JSONWriter& writer, const T& value) {
    std::apply([&](const auto&... each) { (writeField(writer, each.key.inJSON(), value.*each.member), ...); },
               Description<T>::fields);
}

template <class M>
void readField(const JSONReader& object, const JSONNode* node, std::string_view key, bool isDefaulted,
               M& value) {
    if (node) {
        const auto reader = object.at(node);
        if (!isDefaulted || !reader.isNull()) {
            reader.read(value);
        }
    } else if (!isDefaulted && !JSONOptional<M>) {
        object.failMissing(key);
    }
}

template <class T> void readFields(const JSONReader& reader, T& value) {
    using D = Description<T>;
    std::array<const JSONNode*, D::count> found;
    reader.locate(D::keys, found.data());
    auto node = found.begin();
    std::apply(
        [&](const auto&... each) {
            (readField(reader, *node++, each.key.name(), each.isDefaulted, value.*each.member), ...);
        },
        D::fields);
}

} // namespace zelto::jsonrecord
