#pragma once

// For sources only: brings in POSIX.

#include <ZeltoHost/Process/Process.h>

#include <Platform/FileDescriptor.h>
#include <Platform/Result.h>

#include <sys/types.h>

namespace zelto {

// A program that has been started and whose end has not been collected. For runProcess.
class ChildProcess {
  public:
    static Result<ChildProcess, std::error_code> start(const ProcessRequest& request);

    ChildProcess(ChildProcess&&) = default;
    ChildProcess& operator=(ChildProcess&&) = delete;

    // Becomes readable when the program ends; invalid where the system has no such thing.
    const FileDescriptor& endSignal() const { return endSignal_; }

    // The reading ends of its outputs, non-blocking; invalid if they are not kept.
    FileDescriptor& output() { return output_; }

    FileDescriptor& errorOutput() { return errorOutput_; }

    // How it ended; nothing while it runs.
    std::optional<ProcessEnd> collect();

    // Ends the whole group.
    void kill();

  private:
    ChildProcess() = default;

    pid_t pid_ = -1;
    FileDescriptor endSignal_;
    FileDescriptor output_;
    FileDescriptor errorOutput_;
    FileDescriptor startError_; // holds the error number of a start that failed
};

} // namespace zelto
