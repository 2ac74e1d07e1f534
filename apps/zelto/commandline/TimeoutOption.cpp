#include "commandline/TimeoutOption.h"

#include <Platform/Numbers.h>

namespace zelto::cli {

Outcome<std::chrono::milliseconds> timeoutOf(const Invocation& invocation, const std::string& standard) {
    constexpr double maximum = 7 * 24 * 3600.0;
    const auto seconds = numberIn<double>(invocation.value("--timeout").value_or(standard));
    if (!seconds || !(*seconds >= 0.001) || *seconds > maximum) {
        return wrongUsage("--timeout is a number of seconds from 0.001 to 604800.");
    }
    return std::chrono::ceil<std::chrono::milliseconds>(std::chrono::duration<double>(*seconds));
}

} // namespace zelto::cli
