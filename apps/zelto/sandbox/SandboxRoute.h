#pragma once

#include "base/Outcome.h"
#include "commandline/CommandLine.h"

namespace zelto::cli {

// $ZELTO_SANDBOX is used where --sandbox is not given.
void takeSandboxOfEnvironment(Invocation& invocation);

// Sends all requests of the process to the sandbox of --sandbox, if there is one. Before the first session is
// made. Wrong usage for anything but an http address of this machine.
Outcome<void> useSandbox(const Invocation& invocation);

} // namespace zelto::cli
