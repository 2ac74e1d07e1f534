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

// Limits of a program that we run; an absent one does not apply. Each holds per process of the program's
// tree, as for setrlimit(2), except `wallTime`, which ends them all.
struct ProcessLimits {
    std::optional<std::chrono::milliseconds> wallTime;
    std::optional<std::uint64_t> cpuSeconds;   // exceeding it ends the process with SIGXCPU
    std::optional<std::uint64_t> addressSpace; // bytes
    std::optional<std::uint64_t>
        fileSize; // bytes of any one file that it writes; exceeding it ends the process with SIGXFSZ
};

// One run of an external program. Arguments are passed unchanged, without a shell. It gets its own process
// group, no open files but the three standard ones, default signal handling and no core file.
struct ProcessRequest {
    std::vector<std::string> arguments;                  // the first is the program's absolute path
    std::optional<std::vector<std::string>> environment; // each "NAME=value"; absent: the caller's
    std::filesystem::path workingDirectory;              // empty: the caller's
    std::string input;                                   // the content of standard input; empty: /dev/null
    ProcessLimits limits;
    // How many bytes are kept of the end of each output. Zero redirects them to /dev/null, as is necessary
    // for a program that leaves another one running: that one could not write to a pipe without a reader.
    std::size_t keptOutput = 64 * 1024;
    // Whether what it has started continues when it ends, and all of it when the thread that waits for it
    // dies. Otherwise everything is killed then, also what has left the program's group or session, and also
    // if this process is killed itself. What others start on its behalf (a service manager), or what runs as
    // another user, is beyond our reach; so is, where the kernel has no /proc/*/task/*/children, what has
    // left the group.
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

// The wall time was exceeded; all of it was killed.
struct ProcessTimedOut {
    bool operator==(const ProcessTimedOut&) const = default;
};

// The caller requested a stop; all of it was killed.
struct ProcessStopped {
    bool operator==(const ProcessStopped&) const = default;
};

// It could not be started or watched.
struct ProcessFailedToStart {
    std::error_code reason;
    bool operator==(const ProcessFailedToStart&) const = default;
};

using ProcessEnd =
    std::variant<ProcessExited, ProcessSignaled, ProcessTimedOut, ProcessStopped, ProcessFailedToStart>;

struct ProcessResult {
    ProcessEnd end;
    std::string output; // raw bytes, hostile until checked
    std::string errorOutput;

    bool succeeded() const { return end == ProcessEnd(ProcessExited{0}); }
};

// How it ended, as the end of a sentence that begins with the program's name: "ended with status 3".
std::string describe(const ProcessEnd& end);

// Runs the program and waits for its end; a stop request kills it. When the program itself has ended, what it
// started is killed too, unless the request `outlivesUs`. The caller's other children are not concerned. Any
// thread, several at once.
ProcessResult runProcess(const ProcessRequest& request, const std::stop_token& stop = {});

} // namespace zelto
