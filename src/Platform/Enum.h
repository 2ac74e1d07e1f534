#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>

namespace zelto {

template <class E> struct EnumCase {
    E value;
    std::string_view name;
};

// The cases of an enumeration in declared order. ZELTO_ENUM(E) follows the declaration of E in its header;
// ZELTO_DESCRIBE_ENUM (<Platform/EnumDescription.h>) lists the cases in its source.
template <class E> std::span<const EnumCase<E>> casesOf();

#define ZELTO_ENUM(E) template <> std::span<const ::zelto::EnumCase<E>> casesOf<E>()

template <class E>
concept Enumeration = std::is_enum_v<E>;

template <Enumeration E> constexpr std::underlying_type_t<E> rawValue(E value) {
    return static_cast<std::underlying_type_t<E>>(value);
}

// `nullopt` for a number that is not the value of a case.
template <Enumeration E> std::optional<E> fromRawValue(std::int64_t raw) {
    for (const auto& each : casesOf<E>()) {
        if (static_cast<std::int64_t>(rawValue(each.value)) == raw) {
            return each.value;
        }
    }
    return std::nullopt;
}

// The case's name as in the source, without the trailing underscore that avoids a keyword.
template <Enumeration E> std::string_view nameOf(E value) {
    for (const auto& each : casesOf<E>()) {
        if (each.value == value) {
            return each.name;
        }
    }
    return {};
}

template <Enumeration E> std::optional<E> fromName(std::string_view name) {
    for (const auto& each : casesOf<E>()) {
        if (each.name == name) {
            return each.value;
        }
    }
    return std::nullopt;
}

} // namespace zelto
