#pragma once

#include <future>
#include <memory>
#include <utility>

namespace zelto::cli {

// Calls an asynchronous operation and waits for what it completes with.
template <class T, class F> T waitFor(F operation) {
    // Shared, since the caller may go on while the completion's thread is still on its way out of it.
    const auto promise = std::make_shared<std::promise<T>>();
    auto future = promise->get_future();
    operation([promise](T value) { promise->set_value(std::move(value)); });
    return future.get();
}

} // namespace zelto::cli
