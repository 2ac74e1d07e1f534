#pragma once

#include <span>
#include <string_view>
#include <type_traits>

// ZELTO_JSON_KEYS(T); beside the ZELTO_JSON_CODED(T); of a record that ZELTO_JSON_RECORD describes declares
// jsonKeys(std::type_identity<T>()): the keys that it may have, in their order.
#define ZELTO_JSON_KEYS(T) std::span<const std::string_view> jsonKeys(std::type_identity<T>)
