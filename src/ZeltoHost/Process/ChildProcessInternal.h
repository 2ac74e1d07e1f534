#pragma once

// For sources only: brings in POSIX.

#include <ZeltoHost/Process/ChildSetupInternal.h>
#include <ZeltoHost/Process/Process.h>

#include <Platform/FileDescriptor.h>
#include <Platform/Result.h>

#include <sys/types.h>

namespace zelto {

// A started program whose end has not been collected. It is run by a supervisor, unless it may outlive us.
// Used by runProcess.
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

    // How it ended; `nullopt` while it runs, or while what it has started is being killed.
    std::optional<ProcessEnd> collect();

    // Kills it and all that it has started; of one that may outlive us, its process group.
    void kill();

  private:
    ChildProcess() = default;

    std::optional<ChildReport> nextReport() const;

    pid_t pid_ = -1; // of the supervisor if there is one
    bool isSupervised_ = false;
    FileDescriptor endSignal_;
    FileDescriptor output_;
    FileDescriptor errorOutput_;
    FileDescriptor report_;
};

} // namespace zelto
