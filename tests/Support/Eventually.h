#pragma once

#include <chrono>
#include <memory>
#include <thread>

namespace zelto {

// How long a test waits for what takes no time on an idle machine.
constexpr std::chrono::minutes maximumWait{2};

// Whether the condition becomes true within maximumWait, for changes on other threads that cannot be waited
// for.
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

// Whether the object is destroyed within maximumWait.
template <class T> [[nodiscard]] bool isGone(const std::weak_ptr<T>& object) {
    return eventually([&] { return object.expired(); });
}

} // namespace zelto
