#pragma once

#include "commandline/CommandLine.h"

#include <string>
#include <string_view>
#include <vector>

namespace zelto::cli {

// What is wrong with the words of a command line, reported as wrong usage. The command is null where none is
// known.

// The command that shows the help for it.
std::string helpCommand(const CommandSpec* command);

// Words that belong to no option and no argument; there is at least one.
std::unexpected<Failure> unexpectedArgument(const CommandSpec* command,
                                            const std::vector<std::string>& words);
std::unexpected<Failure> missingValue(const CommandSpec* command, std::string_view option);

// Flags that are given a value, which they do not take. Before the line is parsed: the parser takes some
// values, and ends the program at others.
Outcome<void> checkFlags(const std::vector<std::string>& arguments);

// Arguments that are missing, options that stand twice, values that are none of the choices.
Outcome<void> checkInvocation(const Invocation& invocation);

} // namespace zelto::cli
