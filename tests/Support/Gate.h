#pragma once

#include "Support/Event.h"

namespace zelto {

// Holds up every thread that passes it until it is opened. Held by a shared pointer, so that it outlives the
// test that it belongs to.
class Gate {
  public:
    void pass() {
        reached_.set();
        opened_.wait();
    }

    // Until a thread is held up.
    void waitUntilReached() const { reached_.wait(); }

    void open() { opened_.set(); }

  private:
    Event reached_;
    Event opened_;
};

} // namespace zelto
