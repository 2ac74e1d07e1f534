#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace zelto::cli {

// Calls an asynchronous operation and waits for its result. Not by a future: while one waits, a thread
// sanitizer defers the signal of a Ctrl-C.
template <class T, class F> T waitFor(F operation) {
    struct Completed {
        std::mutex lock;
        std::condition_variable isThere;
        std::optional<T> value;
    };

    // Shared, since the caller may go on before the completion has returned.
    const auto completed = std::make_shared<Completed>();
    operation([completed](T value) {
        const std::lock_guard guard(completed->lock);
        completed->value.emplace(std::move(value));
        completed->isThere.notify_one();
    });
    std::unique_lock lock(completed->lock);
    completed->isThere.wait(lock, [&] { return completed->value.has_value(); });
    return *std::move(completed->value);
}

} // namespace zelto::cli
