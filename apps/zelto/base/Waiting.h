#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace zelto::cli {

// Calls an asynchronous operation and waits for what it completes with. Not by a future: while one waits, a
// thread sanitizer holds back the signal of a Ctrl-C.
template <class T, class F> T waitFor(F operation) {
    struct Answer {
        std::mutex lock;
        std::condition_variable came;
        std::optional<T> value;
    };

    // Shared, since the caller may go on while the completion's thread is still on its way out of it.
    const auto answer = std::make_shared<Answer>();
    operation([answer](T value) {
        const std::lock_guard guard(answer->lock);
        answer->value.emplace(std::move(value));
        answer->came.notify_one();
    });
    std::unique_lock lock(answer->lock);
    answer->came.wait(lock, [&] { return answer->value.has_value(); });
    return *std::move(answer->value);
}

} // namespace zelto::cli
