#pragma once

#include "Support/Eventually.h"

#include <Platform/Completion.h>

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <memory>
#include <optional>
#include <stdexcept>

namespace zelto {

// Receives one completion and waits for it, with a deadline that fails loudly.
template <class T> class Completed {
  public:
    template <class C> C callback() {
        return [promise = promise_](T value) { promise->set_value(std::move(value)); };
    }

    bool hasCome() const { return future_.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }

    // Throws if nothing came within maximumWait.
    T value() {
        if (future_.wait_for(maximumWait) != std::future_status::ready) {
            ADD_FAILURE() << "the completion did not come";
            throw std::runtime_error("the completion did not come");
        }
        return future_.get();
    }

  private:
    std::shared_ptr<std::promise<T>> promise_ = std::make_shared<std::promise<T>>();
    std::shared_future<T> future_ = promise_->get_future().share();
};

} // namespace zelto
