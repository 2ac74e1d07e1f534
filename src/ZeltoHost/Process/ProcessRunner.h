#pragma once

#include <ZeltoHost/Process/Process.h>

#include <Platform/Completion.h>

#include <memory>

namespace zelto {

// Runs programs without holding up the caller, each watched by a thread of its own. Any thread.
class ProcessRunner {
  public:
    ProcessRunner();

    // Stops what still runs and returns when all completions have come, but for one that it is called from.
    ~ProcessRunner();

    ProcessRunner(const ProcessRunner&) = delete;
    ProcessRunner& operator=(const ProcessRunner&) = delete;

    // The completion runs on the thread that watched the program.
    void start(ProcessRequest request, Callback<ProcessResult> completion);

  private:
    struct Watchers;
    std::shared_ptr<Watchers> watchers_;
};

} // namespace zelto
