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

// Converts to T only, so that a function for a type that T converts to does not count.
template <class T> struct JSONExactly {
    operator const T&() const; // declared only, for use in requirements
};

// An enumeration with ZELTO_JSON_CODED in its header codes itself; all others are coded as their numbers.
template <class T>
concept JSONSelfCodedEnum = std::is_enum_v<T> && requires(JSONWriter& writer, JSONExactly<T> value) {
    encodeJSON(writer, value);
};

template <class T>
concept JSONNumberedEnum = std::is_enum_v<T> && !JSONSelfCodedEnum<T>;

} // namespace zelto
