#include <ZeltoHost/Process/ProcessRunner.h>

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <thread>

namespace zelto {

struct ProcessRunner::Watchers {
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

    void watch(const ProcessRequest& request, Callback<ProcessResult> completion) {
        current = this;
        completion(runProcess(request, stop.get_token()));
        current = nullptr;
        leave();
    }

    static thread_local const Watchers* current; // of the completion that runs on this thread
};

thread_local const ProcessRunner::Watchers* ProcessRunner::Watchers::current = nullptr;

ProcessRunner::ProcessRunner() : watchers_(std::make_shared<Watchers>()) {}

ProcessRunner::~ProcessRunner() {
    watchers_->stop.request_stop();
    const std::size_t own = Watchers::current == watchers_.get() ? 1 : 0;
    std::unique_lock lock(watchers_->mutex);
    watchers_->changed.wait(lock, [&] { return watchers_->running <= own; });
}

void ProcessRunner::start(ProcessRequest request, Callback<ProcessResult> completion) {
    // Shared, so that they are still here if no thread can be made.
    auto pending = std::make_shared<Callback<ProcessResult>>(std::move(completion));
    watchers_->enter();
    try {
        std::thread([watchers = watchers_, pending, request = std::move(request)] {
            watchers->watch(request, std::move(*pending));
        }).detach();
    } catch (const std::system_error& error) {
        watchers_->leave();
        (*pending)({ProcessFailedToStart{error.code()}, {}, {}});
    }
}

} // namespace zelto
