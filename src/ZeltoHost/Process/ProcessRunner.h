#pragma once

#include <ZeltoHost/Process/Process.h>
#include <ZeltoHost/Process/StoppableThreads.h>

#include <Platform/Completion.h>

namespace zelto {

// Runs programs without blocking the caller, each watched by its own thread. Any thread. Destroying it stops
// the programs and waits until all completions have been called, except one that it is destroyed from.
class ProcessRunner {
  public:
    // The completion is called on the thread that watched the program.
    void start(ProcessRequest request, Callback<ProcessResult> completion);

  private:
    StoppableThreads threads_;
};

} // namespace zelto
