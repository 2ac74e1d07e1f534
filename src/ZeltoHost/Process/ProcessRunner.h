#pragma once

#include <ZeltoHost/Process/Process.h>
#include <ZeltoHost/Process/StoppableThreads.h>

#include <Platform/Completion.h>

namespace zelto {

// Runs programs without holding up the caller, each watched by a thread of its own. Any thread. Its end stops
// what still runs and waits until all completions have come, but for one that it is called from.
class ProcessRunner {
  public:
    // The completion runs on the thread that watched the program.
    void start(ProcessRequest request, Callback<ProcessResult> completion);

  private:
    StoppableThreads threads_;
};

} // namespace zelto
