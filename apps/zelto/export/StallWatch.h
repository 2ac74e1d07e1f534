#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <stop_token>
#include <thread>

namespace zelto::cli {

// Watches work that may take as long as it likes while it gets on: it has stalled when for so long no step
// has ended and fewer than 64 KiB have moved over the network, as with a server that sends a byte now and
// then.
class StallWatch {
  public:
    // `progress` says how far the work is; `onStall` is called once. Both on a thread of the watch; without
    // one nothing is watched.
    StallWatch(std::chrono::milliseconds limit, std::function<double()> progress,
               std::function<void()> onStall);
    ~StallWatch();
    StallWatch(const StallWatch&) = delete;
    StallWatch& operator=(const StallWatch&) = delete;

    // Any thread.
    bool hasStalled() const { return hasStalled_; }

  private:
    using Clock = std::chrono::steady_clock;

    void watch(const std::stop_token& stop);
    // Whether the limit has passed since the last movement.
    bool isOverdue();

    const std::chrono::milliseconds limit_;
    const std::function<double()> progress_;
    const std::function<void()> onStall_;
    std::atomic<bool> hasStalled_ = false;
    Clock::time_point movedAt_ = Clock::now(); // these on the watch's thread
    std::uint64_t bytesThen_;
    double progressThen_;
    std::jthread thread_; // last: ends before the members that it uses
};

} // namespace zelto::cli
