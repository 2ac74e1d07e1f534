#pragma once

#include <functional>
#include <memory>
#include <stop_token>
#include <system_error>

namespace zelto {

// Threads for work that waits for the outside (a foreign program), one for each piece. What the work throws
// is contained. Any thread may start some.
class StoppableThreads {
  public:
    using Work = std::move_only_function<void(std::stop_token)>;

    StoppableThreads();

    // Asks all work to stop and returns when it has ended, but for the one that it is called from.
    ~StoppableThreads();

    StoppableThreads(const StoppableThreads&) = delete;
    StoppableThreads& operator=(const StoppableThreads&) = delete;

    // An error if no thread can be made; the work has not been started then and is given up.
    std::error_code start(Work work);

  private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace zelto
