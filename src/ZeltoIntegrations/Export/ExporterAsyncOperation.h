#pragma once

#include <TrovenhalCommon/Operations/LVXAsyncOperation.h>

#include <Platform/Completion.h>

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace zelto {

// A step of an export or import: it ends when its callback is called, and keeps the value that it was called
// with for the steps after it. One that is cancelled while it runs ends at once, and what its task still
// does has no effect on the queue.
template <class R> class ExporterAsyncOperation : public LVXAsyncOperation {
  public:
    using Task = std::move_only_function<void(Callback<R>)>;

    explicit ExporterAsyncOperation(Task task) : task_(std::move(task)) {}

    void cancel() override {
        LVXAsyncOperation::cancel();
        finish();
    }

    // No value before the callback was called, and for a step that was cancelled before it began.
    std::optional<R> result() const {
        const std::lock_guard guard(lock_);
        return result_;
    }

  protected:
    void asyncMain(std::function<void()> onComplete) override {
        auto task = std::exchange(task_, nullptr);
        task([weakly = std::weak_ptr(std::static_pointer_cast<ExporterAsyncOperation>(shared_from_this())),
              onComplete = std::move(onComplete)](R value) mutable {
            if (const auto operation = weakly.lock()) {
                operation->keep(std::move(value));
            }
            onComplete();
        });
    }

    void endBeforeStart() override { task_ = nullptr; }

  private:
    void keep(R value) {
        const std::lock_guard guard(lock_);
        result_ = std::move(value);
    }

    Task task_;
    mutable std::mutex lock_;
    std::optional<R> result_;
};

} // namespace zelto
