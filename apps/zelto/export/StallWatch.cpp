#include "export/StallWatch.h"

#include <Platform/HTTP/Traffic.h>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <utility>

namespace zelto::cli {

namespace {

constexpr std::uint64_t leastMovement = 64 * 1024;
constexpr std::chrono::milliseconds maximumPause{1000};

} // namespace

StallWatch::StallWatch(std::chrono::milliseconds limit, std::function<double()> progress,
                       std::function<void()> onStall)
    : limit_(limit), progress_(std::move(progress)), onStall_(std::move(onStall)),
      bytesThen_(movedByteCount()), progressThen_(progress_()) {
    try {
        thread_ = std::jthread([this](const std::stop_token& stop) { watch(stop); });
    } catch (const std::system_error&) {
        // The work goes on unwatched.
    }
}

StallWatch::~StallWatch() = default;

void StallWatch::watch(const std::stop_token& stop) {
    const auto pause = std::min(limit_ / 4 + std::chrono::milliseconds(1), maximumPause);
    std::mutex pausing;
    std::condition_variable_any stopped;
    std::unique_lock lock(pausing);
    while (!stopped.wait_for(lock, stop, pause, [&] { return stop.stop_requested(); })) {
        if (isOverdue()) {
            hasStalled_ = true;
            return onStall_();
        }
    }
}

bool StallWatch::isOverdue() {
    const auto now = Clock::now();
    const auto bytes = movedByteCount();
    const auto progress = progress_();
    if (bytes - bytesThen_ >= leastMovement || progress != progressThen_) {
        movedAt_ = now;
        bytesThen_ = bytes;
        progressThen_ = progress;
    }
    return now - movedAt_ >= limit_;
}

} // namespace zelto::cli
