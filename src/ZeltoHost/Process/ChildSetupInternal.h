#pragma once

// For sources only: brings in POSIX.

#include <ZeltoHost/Process/Process.h>

#include <optional>

#include <sys/types.h>

namespace zelto {

// All that a forked child needs to turn into the program, made before the fork: behind it nothing may be
// allocated, since another thread may have held the heap's lock.
struct ChildSetup {
    char* const* arguments;
    char* const* environment;
    const char* workingDirectory; // null: the caller's
    const ProcessLimits& limits;
    int input;
    int output;
    int errorOutput;
    int startError;              // where the error number goes if this fails
    std::optional<pid_t> parent; // the process that it dies with
    long openFilesLimit;
};

// For the child of a fork, with all signals blocked.
[[noreturn]] void becomeProgram(const ChildSetup& setup) noexcept;

} // namespace zelto
