#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>

namespace zelto {

// A system call that a traced process is about to make.
struct TracedCall {
    std::uint64_t number; // SYS_…
    std::array<std::uint64_t, 6> arguments;

    // Whether it changes the file system: a kill at another call is the same as one at the next that does.
    bool changesFiles() const;
    // Whether it needs free space on the disk.
    bool needsSpace() const;
    // Whether it reads from files or folders.
    bool readsFiles() const;
    // Whether it opens a file to write to it.
    bool opensForWriting() const;

  private:
    bool isOneOf(std::initializer_list<long> calls) const;
    bool opensFor(int flags) const;
};

// What becomes of the call.
struct TracedDecision {
    bool isKilled = false;
    int error = 0; // of errno, in place of the call

    static constexpr TracedDecision goOn() { return {}; }

    static constexpr TracedDecision kill() { return {.isKilled = true}; }

    static constexpr TracedDecision fail(int error) { return {.error = error}; }
};

// Runs the function in a forked process, and lets the other one decide on each system call of its main
// thread. Gives the function's result; `nullopt` if the process was killed. Throws where the process cannot
// be traced or ends otherwise. Nothing that does not survive a fork may be open.
std::optional<int> runTraced(const std::function<int()>& body,
                             const std::function<TracedDecision(const TracedCall&)>& decide);

// Whether calls can be made to fail on this machine's kind of processor.
#ifdef __x86_64__
inline constexpr bool canFailCalls = true;
#else
inline constexpr bool canFailCalls = false;
#endif

} // namespace zelto
