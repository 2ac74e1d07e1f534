#include "commandline/TimeoutOption.h"

#include <Platform/Numbers.h>

#include <algorithm>

namespace zelto::cli {

namespace {

constexpr std::chrono::hours maximumTimeout{7 * 24};

} // namespace

Outcome<std::chrono::milliseconds> timeoutOf(const Invocation& invocation, const std::string& standard) {
    constexpr double maximum = std::chrono::duration<double>(maximumTimeout).count();
    const auto seconds = numberIn<double>(invocation.value("--timeout").value_or(standard));
    if (!seconds || !(*seconds >= 0.001) || *seconds > maximum) {
        return wrongUsage("--timeout is a number of seconds from 0.001 to 604800.");
    }
    return std::chrono::ceil<std::chrono::milliseconds>(std::chrono::duration<double>(*seconds));
}

NextCommand longerTimeout(std::chrono::milliseconds timeout) {
    const auto longer = std::min<std::chrono::milliseconds>(2 * timeout, maximumTimeout);
    return NextCommand::again("--timeout",
                              std::to_string(std::chrono::ceil<std::chrono::seconds>(longer).count()));
}

} // namespace zelto::cli
