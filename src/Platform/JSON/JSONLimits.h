#pragma once

#include <Platform/JSON/JSONError.h>

#include <cstddef>

namespace zelto {

// The maximum number of values and keys in a text that is read. A value takes some twenty times the space of
// "0,".
inline constexpr std::size_t maximumJSONValueCount = std::size_t{8} << 20;

// Whether a text was refused because it has more. Any thread.
bool exceedsMaximumJSONValueCount(const DecodingError& error);

} // namespace zelto
