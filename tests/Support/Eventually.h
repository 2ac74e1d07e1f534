#pragma once

#include <chrono>
#include <memory>
#include <thread>

namespace zelto {

// How long a test waits for what comes at once on an idle machine.
constexpr std::chrono::minutes maximumWait{2};

// Whether the condition comes true within that time, for what ends on other threads without telling.
template <class F> [[nodiscard]] bool eventually(F&& condition) {
    const auto deadline = std::chrono::steady_clock::now() + maximumWait;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

// Whether nobody holds the object any more, soon.
template <class T> [[nodiscard]] bool isGone(const std::weak_ptr<T>& object) {
    return eventually([&] { return object.expired(); });
}

} // namespace zelto
