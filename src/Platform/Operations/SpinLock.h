#pragma once

#include <atomic>
#include <thread>

namespace zelto {

// A lock of one byte, for objects of which there are many and sections of a few instructions: whoever finds
// it taken gives up the processor until it is free. For anything longer std::mutex is the right one.
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
