#pragma once

#include "Support/Eventually.h"

#include <Platform/Completion.h>
#include <Platform/Operations/ContainedException.h>

#include <atomic>

namespace zelto {

// Counts the callbacks that are dropped uncalled while this lives; they then fail no test. One at a time.
class DroppedCallbacks {
  public:
    DroppedCallbacks() { count_ = 0; }

    ~DroppedCallbacks() { CallbackGuard::setDroppedHandler(before_); }

    DroppedCallbacks(const DroppedCallbacks&) = delete;
    DroppedCallbacks& operator=(const DroppedCallbacks&) = delete;

    int count() const { return count_; }

  private:
    static inline std::atomic<int> count_ = 0;
    const CallbackGuard::DroppedHandler before_ = CallbackGuard::setDroppedHandler([] { ++count_; });
};

// Counts the exceptions that are contained while this lives, instead of writing them to standard error. One
// at a time.
class ContainedExceptions {
  public:
    ContainedExceptions() { count_ = 0; }

    ~ContainedExceptions() { setContainedExceptionHandler(before_); }

    ContainedExceptions(const ContainedExceptions&) = delete;
    ContainedExceptions& operator=(const ContainedExceptions&) = delete;

    int count() const { return count_; }

    // Whether so many come, soon.
    bool haveCome(int count) const {
        return eventually([&] { return count_ >= count; });
    }

  private:
    static inline std::atomic<int> count_ = 0;
    const ContainedExceptionHandler before_ =
        setContainedExceptionHandler([](std::string_view, const std::exception_ptr&) { ++count_; });
};

} // namespace zelto
