#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>
#include <system_error>
#include <variant>
#include <vector>

namespace zelto {

// What a program that we run may take; what is absent is not limited. Each limit holds for one process of the
// program's group, as setrlimit(2) counts, but for `wallTime`, which ends the whole group.
struct ProcessLimits {
    std::optional<std::chrono::milliseconds> wallTime;
    std::optional<std::uint64_t> cpuSeconds;   // ends it with SIGXCPU
    std::optional<std::uint64_t> addressSpace; // bytes
    std::optional<std::uint64_t> fileSize;     // bytes of any one file that it writes; ends it with SIGXFSZ
};

// One run of a foreign program: its arguments go to it as they stand, no shell sees them. It gets a process
// group of its own, no open file but the three standard ones, default signals and no core file.
struct ProcessRequest {
    std::vector<std::string> arguments;                  // the first is the program's absolute path
    std::optional<std::vector<std::string>> environment; // each "NAME=value"; absent: the caller's
    std::filesystem::path workingDirectory;              // empty: the caller's
    std::string input;                                   // what standard input gives; empty: /dev/null
    ProcessLimits limits;
    // Bytes kept of the end of each of its two outputs. Zero sends them to /dev/null, which is the choice for
    // a program that leaves another one running: that one could not write to a pipe that nobody reads.
    std::size_t keptOutput = 64 * 1024;
    // Whether it lives on when the thread that waits for it dies; else it is killed then.
    bool outlivesUs = false;
};

struct ProcessExited {
    int status;
    bool operator==(const ProcessExited&) const = default;
};

struct ProcessSignaled {
    int signal;
    bool operator==(const ProcessSignaled&) const = default;
};

// The wall time ran out; the group was killed.
struct ProcessTimedOut {
    bool operator==(const ProcessTimedOut&) const = default;
};

// The caller asked for an end; the group was killed.
struct ProcessStopped {
    bool operator==(const ProcessStopped&) const = default;
};

// It could not be started, or not be watched.
struct ProcessFailedToStart {
    std::error_code reason;
    bool operator==(const ProcessFailedToStart&) const = default;
};

using ProcessEnd =
    std::variant<ProcessExited, ProcessSignaled, ProcessTimedOut, ProcessStopped, ProcessFailedToStart>;

struct ProcessResult {
    ProcessEnd end;
    std::string output; // bytes as they came, hostile until checked
    std::string errorOutput;

    bool succeeded() const { return end == ProcessEnd(ProcessExited{0}); }
};

// How it ended, as the rest of a sentence that begins with the program: "ended with status 3".
std::string describe(const ProcessEnd& end);

// Runs the program and waits for its end; a request to stop kills it. Returns when the program itself has
// ended, also if others that it started live on. Any thread, several at once.
ProcessResult runProcess(const ProcessRequest& request, const std::stop_token& stop = {});

} // namespace zelto
