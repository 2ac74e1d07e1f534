#pragma once

#include <atomic>
#include <utility>

namespace zelto {

// Lets only the first call through, and ignores later ones, on any thread.
class OnceGate {
  public:
    // Whether this was the first call, and `execute` ran.
    template <class F> bool once(F&& execute) {
        if (passed_.exchange(true, std::memory_order_acq_rel)) {
            return false;
        }
        std::forward<F>(execute)();
        return true;
    }

  private:
    std::atomic<bool> passed_{false};
};

} // namespace zelto
