#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace zelto {

// The number that the whole text is, in the decimal form of the "C" locale; `nullopt` for any other text, for
// one with a blank or a "+", and for a number out of the type's range. For floating-point types "inf" and
// "nan" are numbers.
template <class Number> std::optional<Number> numberIn(std::string_view text) {
    Number number{};
    const auto* const end = text.data() + text.size();
    const auto [read, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && read == end ? std::optional(number) : std::nullopt;
}

} // namespace zelto
