#pragma once

#include "base/ProgressBar.h"
#include "commandline/CommandLine.h"

namespace zelto::cli {

// What --progress and --quiet say.
ProgressStyle progressStyle(const Invocation& invocation);

} // namespace zelto::cli
