#pragma once

#include <Platform/Date.h>

#include <concepts>
#include <map>
#include <optional>
#include <string>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

namespace zelto {

class JSONReader;
class JSONWriter;

template <class T> inline constexpr bool isJSONOptional = false;
template <class T> inline constexpr bool isJSONOptional<std::optional<T>> = true;
template <class T> inline constexpr bool isJSONVector = false;
template <class T, class A> inline constexpr bool isJSONVector<std::vector<T, A>> = true;
template <class T> inline constexpr bool isJSONMap = false;
template <class T, class... R> inline constexpr bool isJSONMap<std::map<std::string, T, R...>> = true;
template <class T, class... R>
inline constexpr bool isJSONMap<std::unordered_map<std::string, T, R...>> = true;

template <class T>
concept JSONOptional = isJSONOptional<T>;
template <class T>
concept JSONVector = isJSONVector<T>;
template <class T>
concept JSONMap = isJSONMap<T>;

// Converts to T alone, so that no function counts that takes something T converts to.
template <class T> struct JSONExactly {
    operator const T&() const; // NOLINT: only named in requirements
};

// An enumeration that its header declared with ZELTO_JSON_CODED codes itself; all others are their numbers.
template <class T>
concept JSONSelfCodedEnum = std::is_enum_v<T> && requires(JSONWriter& writer, JSONExactly<T> value) {
    encodeJSON(writer, value);
};

template <class T>
concept JSONNumberedEnum = std::is_enum_v<T> && !JSONSelfCodedEnum<T>;

} // namespace zelto
