#pragma once

#include <atomic>
#include <utility>

namespace zelto {

// A lock of four bytes for short critical sections. Waiting threads sleep in the kernel, and get the lock in
// no particular order. Works with std::lock_guard. Not recursive.
class LVXUnfairLock {
  public:
    LVXUnfairLock() = default;
    LVXUnfairLock(const LVXUnfairLock&) = delete;
    LVXUnfairLock& operator=(const LVXUnfairLock&) = delete;

    void lock() noexcept {
        int expected = free;
        if (state_.compare_exchange_strong(expected, held, std::memory_order_acquire)) {
            return;
        }
        while (state_.exchange(awaited, std::memory_order_acquire) != free) {
            state_.wait(awaited, std::memory_order_relaxed);
        }
    }

    bool try_lock() noexcept {
        int expected = free;
        return state_.compare_exchange_strong(expected, held, std::memory_order_acquire);
    }

    void unlock() noexcept {
        if (state_.exchange(free, std::memory_order_release) == awaited) {
            state_.notify_one();
        }
    }

  private:
    static constexpr int free = 0;
    static constexpr int held = 1;
    static constexpr int awaited = 2;

    std::atomic<int> state_{free};
};

// Runs `function` under the lock and gives its result.
template <class Lock, class F> decltype(auto) sync(Lock& lock, F&& function) {
    struct Guard {
        explicit Guard(Lock& each) : lock_(each) { lock_.lock(); }

        ~Guard() { lock_.unlock(); }

        Lock& lock_;
    } guard(lock);

    return std::forward<F>(function)();
}

} // namespace zelto
