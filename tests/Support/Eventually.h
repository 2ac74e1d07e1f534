#pragma once

#include <chrono>
#include <thread>

namespace zelto {

// Whether the condition comes true within a minute, for what ends on other threads without telling.
template <class F> bool eventually(F&& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::yield();
    }
    return true;
}

} // namespace zelto
