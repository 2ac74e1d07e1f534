#pragma once

#include <atomic>
#include <thread>

namespace zelto {

// A lock of one byte, for objects of which there are many and critical sections of a few instructions: a
// thread that finds it taken yields until it is free. For anything longer use std::mutex.
class SpinLock {
  public:
    void lock() noexcept {
        while (taken_.test_and_set(std::memory_order_acquire)) {
            std::this_thread::yield();
        }
    }

    void unlock() noexcept { taken_.clear(std::memory_order_release); }

  private:
    std::atomic_flag taken_;
};

} // namespace zelto
