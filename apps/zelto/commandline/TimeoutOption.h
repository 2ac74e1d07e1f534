#pragma once

#include "base/Outcome.h"
#include "commandline/CommandLine.h"

#include <chrono>
#include <string>

namespace zelto::cli {

// The value of --timeout, in seconds, or what holds without it.
Outcome<std::chrono::milliseconds> timeoutOf(const Invocation& invocation, const std::string& standard);

// The same command with twice that time.
NextCommand longerTimeout(std::chrono::milliseconds timeout);

} // namespace zelto::cli
