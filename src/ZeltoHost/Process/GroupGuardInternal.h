#pragma once

// For sources only: brings in POSIX.

#include <Platform/FileDescriptor.h>

#include <sys/types.h>

namespace zelto {

// A process that kills a process group if this one ends before the guard is dismissed, however it ends: a
// program that dies with us by PR_SET_PDEATHSIG leaves those that it has started.
class GroupGuard {
  public:
    // Without a guard if there are no resources for one.
    static GroupGuard of(pid_t group);

    GroupGuard() = default;

    GroupGuard(GroupGuard&& other) noexcept;
    GroupGuard& operator=(GroupGuard&& other) noexcept;

    // Dismisses it.
    ~GroupGuard();

    void dismiss();

  private:
    pid_t pid_ = -1;
    FileDescriptor signal_; // the guard reads a byte when it is dismissed, and the end when we are gone
};

} // namespace zelto
