#pragma once

#include <Platform/Operations/BlockOperation.h>
#include <Platform/Operations/OperationQueue.h>

#include <Support/Eventually.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace zelto {

inline std::shared_ptr<Operation> makeBlock(std::move_only_function<void()> block = [] {}) {
    return std::make_shared<BlockOperation>(std::move(block));
}

// Executes until it is told to finish.
class WaitingOperation : public Operation {
  public:
    explicit WaitingOperation(std::function<void()> begun = [] {}) : begun_(std::move(begun)) {}

    bool isAsynchronous() const noexcept override { return true; }

    using Operation::finish;

    std::atomic<int> endedBeforeStart = 0;

  protected:
    void main() override { begun_(); }

    void endBeforeStart() override { ++endedBeforeStart; }

  private:
    std::function<void()> begun_;
};

// Ends as soon as it is cancelled, also before it has begun.
class ObedientOperation : public WaitingOperation {
  public:
    void cancel() override {
        WaitingOperation::cancel();
        finish();
    }
};

// Opens once; whoever waits too long fails. It may be destroyed as soon as a wait has returned.
class Event {
  public:
    void set() {
        const auto promise = promise_;
        promise->set_value();
    }

    void wait() const {
        if (future_.wait_for(std::chrono::seconds(60)) != std::future_status::ready) {
            ADD_FAILURE() << "what was waited for did not come";
            std::abort();
        }
    }

  private:
    std::shared_ptr<std::promise<void>> promise_ = std::make_shared<std::promise<void>>();
    std::shared_future<void> future_ = promise_->get_future();
};

// The condition becomes true on another thread, and soon.
inline void expectSoon(const std::function<bool()>& condition) {
    if (!eventually(condition)) {
        ADD_FAILURE() << "what was waited for did not come";
        std::abort();
    }
}

// What happened, in order.
class Journal {
  public:
    void note(int what) {
        const std::lock_guard lock(mutex_);
        notes_.push_back(what);
    }

    std::vector<int> notes() const {
        const std::lock_guard lock(mutex_);
        return notes_;
    }

  private:
    mutable std::mutex mutex_;
    std::vector<int> notes_;
};

} // namespace zelto
