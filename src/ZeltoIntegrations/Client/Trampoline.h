#pragma once

#include <atomic>
#include <cstddef>

namespace zelto {

// Runs the rounds of a loop whose rounds end asynchronously: a round that ends before the call that began it
// returns is followed by the next from there, so the stack does not grow with their number. The end of each
// round, on any thread, asks for the next.
class Trampoline {
  public:
    // Runs the round now, or leaves it to the call that still runs the one before. This object lives until
    // the call returns.
    template <class Round> void run(const Round& round) {
        if (wanted_.fetch_add(1) > 0) {
            return;
        }
        do {
            round();
        } while (wanted_.fetch_sub(1) > 1);
    }

  private:
    std::atomic<std::size_t> wanted_ = 0; // rounds that were asked for and have not returned
};

} // namespace zelto
