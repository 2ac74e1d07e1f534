#pragma once

#include <Platform/JSON/JSONCoding.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace zelto {

// In JSON, a choice of one among several is an object with exactly one key, the case's name. Its value is an
// object: the payload's own, or an empty one for a case without payload.

// The one key and its value; fails with "Invalid number of keys found, expected one.".
std::pair<std::string_view, JSONReader> readCase(const JSONReader& reader);

[[noreturn]] void failUnknownCase(const JSONReader& reader, std::span<const std::string_view> names);

// Reads the value of a case without payload: an object, whose content is ignored, or null.
void readNoPayload(const JSONReader& reader);

// The names are in the order of the alternatives; an alternative without members needs no JSON coding of its
// own.
template <class... Cases>
void writeCase(JSONWriter& writer, const std::variant<Cases...>& value,
               const std::array<std::string_view, sizeof...(Cases)>& names) {
    writer.beginObject();
    writer.key(names[value.index()]);
    std::visit(
        [&]<class Case>(const Case& payload) {
            if constexpr (std::is_empty_v<Case>) {
                writer.beginObject();
                writer.endObject();
            } else {
                writer.write(payload);
            }
        },
        value);
    writer.endObject();
}

template <class... Cases>
void readCase(const JSONReader& reader, std::variant<Cases...>& value,
              const std::array<std::string_view, sizeof...(Cases)>& names) {
    const auto [name, payload] = readCase(reader);
    std::size_t index = 0;
    const auto readIf = [&]<class Case>(std::type_identity<Case>) {
        if (names[index++] != name) {
            return false;
        }
        if constexpr (std::is_empty_v<Case>) {
            readNoPayload(payload);
            value = Case{};
        } else {
            value = payload.template as<Case>();
        }
        return true;
    };
    if (!(readIf(std::type_identity<Cases>()) || ...)) {
        failUnknownCase(reader, names);
    }
}

template <Enumeration E> void writeCase(JSONWriter& writer, E value) {
    writer.beginObject();
    writer.key(nameOf(value));
    writer.beginObject();
    writer.endObject();
    writer.endObject();
}

template <Enumeration E> void readCase(const JSONReader& reader, E& value) {
    const auto [name, payload] = readCase(reader);
    const auto known = fromName<E>(name);
    if (!known) {
        std::vector<std::string_view> names;
        for (const auto& each : casesOf<E>()) {
            names.push_back(each.name);
        }
        failUnknownCase(reader, names);
    }
    readNoPayload(payload);
    value = *known;
}

template <Enumeration E> using EnumText = std::pair<E, std::string_view>;

template <Enumeration E> void writeText(JSONWriter& writer, E value, std::span<const EnumText<E>> texts) {
    writer.string(std::ranges::find(texts, value, &EnumText<E>::first)->second);
}

template <Enumeration E>
void readText(const JSONReader& reader, E& value, std::span<const EnumText<E>> texts) {
    const auto found = std::ranges::find(texts, reader.string(), &EnumText<E>::second);
    if (found == texts.end()) {
        reader.failValue("the text of a known case");
    }
    value = found->first;
}

} // namespace zelto

// For sources, as ZELTO_JSON_RECORD, for a type with ZELTO_JSON_CODED in its header.

// For a struct or class T whose std::variant `member` holds the choice. The names are in the order of its
// alternatives.
#define ZELTO_JSON_CASES(T, member, ...)                                                                     \
    void encodeJSON(::zelto::JSONWriter& writer, const T& value) {                                           \
        ::zelto::writeCase(writer, value.member, {__VA_ARGS__});                                             \
    }                                                                                                        \
    void decodeJSON(const ::zelto::JSONReader& reader, T& value) {                                           \
        ::zelto::readCase(reader, value.member, {__VA_ARGS__});                                              \
    }                                                                                                        \
    static_assert(true)

// For an enumeration with ZELTO_ENUM, in the same form: {"senderOnly":{}}.
#define ZELTO_JSON_ENUM_CASES(E)                                                                             \
    void encodeJSON(::zelto::JSONWriter& writer, const E& value) {                                           \
        ::zelto::writeCase(writer, value);                                                                   \
    }                                                                                                        \
    void decodeJSON(const ::zelto::JSONReader& reader, E& value) {                                           \
        ::zelto::readCase(reader, value);                                                                    \
    }                                                                                                        \
    static_assert(true)

// For an enumeration that JSON holds as text: ZELTO_JSON_ENUM_TEXTS(Status, {Status::inProgress,
// "IN_PROGRESS"}, ...), with every case in the list.
#define ZELTO_JSON_ENUM_TEXTS(E, ...)                                                                        \
    static std::span<const ::zelto::EnumText<E>> jsonTextsOf(std::type_identity<E>) {                        \
        static constexpr ::zelto::EnumText<E> texts[] = {__VA_ARGS__};                                       \
        return texts;                                                                                        \
    }                                                                                                        \
    void encodeJSON(::zelto::JSONWriter& writer, const E& value) {                                           \
        ::zelto::writeText(writer, value, jsonTextsOf(std::type_identity<E>()));                             \
    }                                                                                                        \
    void decodeJSON(const ::zelto::JSONReader& reader, E& value) {                                           \
        ::zelto::readText(reader, value, jsonTextsOf(std::type_identity<E>()));                              \
    }                                                                                                        \
    static_assert(true)
