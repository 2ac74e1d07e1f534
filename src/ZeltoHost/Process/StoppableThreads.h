#pragma once

#include <functional>
#include <memory>
#include <stop_token>
#include <system_error>

namespace zelto {

// Threads for work that waits for something outside the process (an external program), one per piece of work.
// Exceptions from the work are contained. Any thread may start work.
class StoppableThreads {
  public:
    using Work = std::move_only_function<void(std::stop_token)>;

    StoppableThreads();

    // Requests all work to stop and returns when it has ended, except work that it is called from.
    ~StoppableThreads();

    StoppableThreads(const StoppableThreads&) = delete;
    StoppableThreads& operator=(const StoppableThreads&) = delete;

    // An error if no thread can be created; the work has not begun then, and is destroyed.
    std::error_code start(Work work);

  private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace zelto
