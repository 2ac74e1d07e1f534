#pragma once

// For sources only: brings in POSIX.

#include <ZeltoHost/Process/Process.h>

#include <optional>

#include <sys/types.h>

namespace zelto {

// Everything that a forked child needs to become the program, prepared before the fork: after it nothing may
// be allocated, since another thread may have held the heap's lock.
struct ChildSetup {
    char* const* arguments;
    char* const* environment;
    const char* workingDirectory; // null: the caller's
    const ProcessLimits& limits;
    int input;
    int output;
    int errorOutput;
    int startError;              // where the error number is written if this fails
    std::optional<pid_t> parent; // the process whose death kills it
    long openFilesLimit;
};

// To be called in a forked child, with all signals blocked.
[[noreturn]] void becomeProgram(const ChildSetup& setup) noexcept;

} // namespace zelto
