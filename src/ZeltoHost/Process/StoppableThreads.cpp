#include <ZeltoHost/Process/StoppableThreads.h>

#include <Platform/Operations/ContainedException.h>

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <thread>

namespace zelto {

struct StoppableThreads::State {
    std::mutex mutex;
    std::condition_variable changed;
    std::size_t running = 0;
    std::stop_source stop;

    void enter() {
        const std::lock_guard lock(mutex);
        ++running;
    }

    void leave() {
        const std::lock_guard lock(mutex);
        --running;
        changed.notify_all();
    }

    void run(Work work) {
        current = this;
        containingExceptions("Work on a thread of its own", [&] { work(stop.get_token()); });
        work = nullptr; // its captures are destroyed while it still counts as running
        current = nullptr;
        leave();
    }

    static thread_local const State* current; // the one whose work this thread does
};

thread_local const StoppableThreads::State* StoppableThreads::State::current = nullptr;

StoppableThreads::StoppableThreads() : state_(std::make_shared<State>()) {}

StoppableThreads::~StoppableThreads() {
    state_->stop.request_stop();
    const std::size_t own = State::current == state_.get() ? 1 : 0;
    std::unique_lock lock(state_->mutex);
    state_->changed.wait(lock, [&] { return state_->running <= own; });
}

std::error_code StoppableThreads::start(Work work) {
    state_->enter();
    try {
        std::thread([state = state_, work = std::move(work)]() mutable {
            state->run(std::move(work));
        }).detach();
    } catch (const std::system_error& error) {
        state_->leave();
        return error.code();
    }
    return {};
}

} // namespace zelto
