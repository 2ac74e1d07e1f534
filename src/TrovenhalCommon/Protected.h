#pragma once

#include <TrovenhalCommon/LVXUnfairLock.h>

#include <functional>

namespace zelto {

// A value that is reached under its lock alone. The callbacks run under the lock: keep them short, call
// nothing foreign from them, and give no reference to the value out.
template <class T> class Protected {
  public:
    Protected() = default;

    explicit Protected(T value) : value_(std::move(value)) {}

    template <class F> auto read(F&& function) const {
        return sync(lock_, [&] { return std::invoke(std::forward<F>(function), std::as_const(value_)); });
    }

    template <class F> auto modify(F&& function) {
        return sync(lock_, [&] { return std::invoke(std::forward<F>(function), value_); });
    }

    // A copy.
    T value() const {
        return sync(lock_, [&] { return value_; });
    }

    // The value before, which is thus destroyed outside of the lock.
    T exchange(T value) {
        return sync(lock_, [&] { return std::exchange(value_, std::move(value)); });
    }

  private:
    mutable LVXUnfairLock lock_;
    T value_{};
};

} // namespace zelto
