#pragma once

#include "Support/Event.h"
#include "Support/Eventually.h"

#include <Platform/Operations/BlockOperation.h>
#include <Platform/Operations/OperationQueue.h>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace zelto {

inline std::shared_ptr<Operation> makeBlock(std::move_only_function<void()> block = [] {}) {
    return std::make_shared<BlockOperation>(std::move(block));
}

// Executes until a test finishes it.
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

// Ends as soon as it is cancelled, even before it has begun.
class ObedientOperation : public WaitingOperation {
  public:
    void cancel() override {
        WaitingOperation::cancel();
        finish();
    }
};

// Records events, in order.
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
