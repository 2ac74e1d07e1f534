#pragma once

// For sources only: brings in POSIX.

#include <ZeltoHost/Process/GroupGuardInternal.h>
#include <ZeltoHost/Process/Process.h>

#include <Platform/FileDescriptor.h>
#include <Platform/Result.h>

#include <sys/types.h>

namespace zelto {

// A started program whose end has not been collected. Used by runProcess.
class ChildProcess {
  public:
    static Result<ChildProcess, std::error_code> start(const ProcessRequest& request);

    ChildProcess(ChildProcess&&) = default;
    ChildProcess& operator=(ChildProcess&&) = delete;

    // Becomes readable when the program ends; invalid if the system has no such descriptor.
    const FileDescriptor& endSignal() const { return endSignal_; }

    // The reading ends of its outputs, non-blocking; invalid if output is not kept.
    FileDescriptor& output() { return output_; }

    FileDescriptor& errorOutput() { return errorOutput_; }

    // How it ended; `nullopt` while it runs. What is left of its group is killed, unless it may outlive us.
    std::optional<ProcessEnd> collect();

    // Kills the whole process group.
    void kill();

  private:
    ChildProcess() = default;

    bool hasEnded() const;

    pid_t pid_ = -1;
    bool outlivesUs_ = false;
    GroupGuard guard_;
    FileDescriptor endSignal_;
    FileDescriptor output_;
    FileDescriptor errorOutput_;
    FileDescriptor startError_; // delivers the error number if the start fails
};

} // namespace zelto
