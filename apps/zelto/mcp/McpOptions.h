#pragma once

#include "base/Outcome.h"
#include "commandline/CommandLine.h"

#include <Platform/URL.h>

#include <chrono>
#include <map>
#include <string>

namespace zelto::cli {

// What the commands to a Model Context Protocol server have in common.
struct McpOptions {
    URL server;
    std::map<std::string, std::string> headers;
    int repeat = 1;
    bool showsRate = false;
    std::chrono::milliseconds timeout{0};

    // Reads standard input for --header-stdin.
    static Outcome<McpOptions> from(const Invocation& invocation);
};

// The arguments of --args; nullopt where it is not given.
Outcome<std::optional<JSONValue>> toolArguments(const Invocation& invocation);

} // namespace zelto::cli
