#pragma once

#include "Support/Eventually.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <future>
#include <memory>
#include <source_location>

namespace zelto {

// Is set once, for all who wait then or later. It may be destroyed as soon as a wait has returned.
class Event {
  public:
    Event() = default;
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    // Repeated calls have no effect.
    void set() {
        const auto state = state_;
        if (!state->isSet.exchange(true)) {
            state->promise.set_value();
        }
    }

    // A wait that takes too long fails the test and ends the program, since a hanging test would hang its own
    // end too.
    void wait(std::source_location place = std::source_location::current()) const {
        const auto state = state_;
        if (state->future.wait_for(maximumWait) != std::future_status::ready) {
            ADD_FAILURE_AT(place.file_name(), static_cast<int>(place.line())) << "it did not come";
            std::abort();
        }
    }

  private:
    struct State {
        std::atomic<bool> isSet = false;
        std::promise<void> promise;
        const std::shared_future<void> future = promise.get_future();
    };

    const std::shared_ptr<State> state_ = std::make_shared<State>();
};

} // namespace zelto
