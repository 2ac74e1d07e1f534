#pragma once

#include <TrovenhalCommon/LVXUnfairLock.h>

#include <functional>

namespace zelto {

// A value that is only accessible under its lock. Callbacks run under the lock: they must be short, must not
// call unknown code, and must not let a reference to the value escape.
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

    // Gives the previous value, which is thus destroyed outside the lock.
    T exchange(T value) {
        return sync(lock_, [&] { return std::exchange(value_, std::move(value)); });
    }

  private:
    mutable LVXUnfairLock lock_;
    T value_{};
};

} // namespace zelto
