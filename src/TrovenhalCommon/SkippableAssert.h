#pragma once

#include <source_location>
#include <string_view>

namespace zelto {

// For what must not be, but can be lived with: logs the message as an error and goes on, in every build.
// Gives the condition.
bool skippableAssert(bool condition, std::string_view message,
                     const std::source_location& location = std::source_location::current());

} // namespace zelto
