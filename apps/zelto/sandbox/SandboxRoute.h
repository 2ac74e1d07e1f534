#pragma once

#include "base/Outcome.h"
#include "commandline/CommandLine.h"

#include <Platform/URL.h>

#include <atomic>
#include <optional>
#include <stop_token>
#include <thread>

namespace zelto::cli {

// $ZELTO_SANDBOX is used where --sandbox is not given.
void takeSandboxOfEnvironment(Invocation& invocation);

// Sends all requests of the process to the sandbox of --sandbox, if there is one. Before the first session is
// made. Wrong usage for anything but an http address of this machine.
Outcome<void> useSandbox(const Invocation& invocation);

// The address of the sandbox that is used, if there is one.
std::optional<URL> usedSandbox();

// Nobody listens at the sandbox's address.
Failure silentSandbox(const URL& sandbox);

// For a command that needs the sandbox though it may send it no request of its own: why it cannot go on.
Outcome<void> needSandbox();

// The failure to report: where a command needed the sandbox and nobody listens at its address, it is the
// sandbox's and not a service's.
Failure withSandbox(Failure failure, const Invocation& invocation);

// While an object exists, the end of the sandbox asks `ending` to stop. Does nothing without a sandbox.
class SandboxWatch {
  public:
    explicit SandboxWatch(std::stop_source& ending);

    bool sawItsEnd() const { return hasEnded_; }

  private:
    std::atomic<bool> hasEnded_ = false;
    std::jthread watching_;
};

} // namespace zelto::cli
