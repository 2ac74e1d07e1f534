#pragma once

#include "base/NextCommand.h"
#include "commandline/CommandLine.h"

#include <string>

namespace zelto::cli {

// The line that a shell runs as it stands; `typed` is the command that failed. A secret of it is not
// repeated: the line takes it from standard input, or is that of the help where there is no such way.
std::string lineOf(const NextCommand& next, const Invocation& typed);

} // namespace zelto::cli
