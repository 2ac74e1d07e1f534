#pragma once

#include <Platform/JSON/JSONCoding.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

namespace zelto {

// A one-of-several choice in JSON is an object with exactly one key, the case's name. Its value is an object:
// the payload's own, or an empty one for a case without payload.

// The one key and its value; fails with "Invalid number of keys found, expected one.".
std::pair<std::string_view, JSONReader> readCase(const JSONReader& reader);

[[noreturn]] void failUnknownCase(const JSONReader& reader, std::span<const std::string_view> names);

// The value of a case without payload: an object, whatever it holds, or null.
void readNoPayload(const JSONReader& reader);

// Names stand in the order of the alternatives; an alternative without members needs no coding of its own.
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

// An enumeration whose cases are all without payload, in the same form: {"senderOnly":{}}.
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
        reader.fail("expected the name of a known case as the key, found another");
    }
    readNoPayload(payload);
    value = *known;
}

} // namespace zelto
