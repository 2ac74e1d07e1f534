#pragma once

// For sources only: brings in POSIX.

#include <ZeltoHost/Process/Process.h>

#include <optional>

#include <sys/types.h>

namespace zelto {

// What a forked child writes, each in one message.
struct ChildReport {
    enum class Kind : int {
        failedToStart, // with the error number
        ended,         // the supervised program, with the status of waitpid(2)
    };

    Kind kind;
    int value;
};

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
    int report;                  // where ChildReport is written
    std::optional<pid_t> parent; // the process whose death kills it
    long openFilesLimit;
};

// All to be called in a forked child, with all signals blocked.
[[noreturn]] void becomeProgram(const ChildSetup& setup) noexcept;

// No signal is ignored, nor handled by the caller's handlers.
void takeDefaultActions() noexcept;

// Writes errno and ends the process.
[[noreturn]] void reportStartError(const ChildSetup& setup) noexcept;

} // namespace zelto
