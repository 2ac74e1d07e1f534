#pragma once

#include <source_location>
#include <string_view>

namespace zelto {

// For conditions that should hold, but whose failure is tolerable: logs the message as an error and
// continues, in every build. Gives the condition.
bool skippableAssert(bool condition, std::string_view message,
                     const std::source_location& location = std::source_location::current());

} // namespace zelto
