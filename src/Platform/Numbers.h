#pragma once

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace zelto {

// The number that the whole text is, in the "C" locale's decimal form; nothing for any other text, one with a
// blank or a "+" among them, and for a number that the type cannot hold. Of a floating-point type "inf" and
// "nan" are numbers too.
template <class Number> std::optional<Number> numberIn(std::string_view text) {
    Number number{};
    const auto* const end = text.data() + text.size();
    const auto [read, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && read == end ? std::optional(number) : std::nullopt;
}

} // namespace zelto
