#include <ZeltoIntegrations/MCP/MCPCallDeadlinesInternal.h>

#include <Platform/Operations/ThreadPool.h>

#include <algorithm>

namespace zelto {

namespace {

// A longer time-out would overflow the clock.
constexpr TimeInterval maximumTimeout = std::chrono::hours(24 * 366);

// While this thread posts the job that watches. Where the system gives the pool no thread, the job runs
// within that, and must not wait there: the call is still to be sent.
thread_local bool isPosting = false;

// Ends with its scope, also if there is no memory for the job.
class Posting {
  public:
    Posting() : before_(std::exchange(isPosting, true)) {}

    ~Posting() { isPosting = before_; }

    Posting(const Posting&) = delete;
    Posting& operator=(const Posting&) = delete;

  private:
    bool before_;
};

MCPError timedOut() {
    return URLError{URLErrorCode::timedOut, "The call did not end within its time-out."};
}

} // namespace

MCPCallDeadlines::Deadline::Deadline(Deadline&& other) noexcept : key_(std::exchange(other.key_, {})) {}

MCPCallDeadlines::Deadline::~Deadline() {
    if (key_.second != 0) {
        shared().remove(key_);
    }
}

MCPCallDeadlines& MCPCallDeadlines::shared() {
    static auto& deadlines = *new MCPCallDeadlines; // threads of the pool use it while the process ends
    return deadlines;
}

MCPCallDeadlines::Deadline MCPCallDeadlines::add(const std::shared_ptr<MCPRunningCall>& call,
                                                 TimeInterval timeout) {
    if (!(timeout > TimeInterval::zero())) {
        call->end(timedOut());
        return {};
    }
    const auto end = Clock::now() + std::chrono::ceil<Clock::duration>(std::min(timeout, maximumTimeout));
    std::unique_lock lock(lock_);
    const Key key{end, ++count_};
    calls_.emplace(key, call);
    const bool isWatching = isWatching_;
    lock.unlock();
    Deadline deadline(key);
    if (isWatching) {
        changed_.notify_one();
    } else {
        const Posting posting;
        ThreadPool::shared().post([this] { watch(); });
    }
    return deadline;
}

void MCPCallDeadlines::remove(const Key& key) {
    const std::lock_guard guard(lock_);
    if (calls_.erase(key) > 0 && calls_.empty()) {
        changed_.notify_one();
    }
}

void MCPCallDeadlines::watch() {
    const ThreadPool::BlockingScope waiting;
    std::unique_lock lock(lock_);
    if (isPosting || std::exchange(isWatching_, true)) {
        return;
    }
    while (!calls_.empty()) {
        const auto next = calls_.begin();
        if (next->first.first > Clock::now()) {
            changed_.wait_until(lock, next->first.first);
            continue;
        }
        // What the host does in a completion must not hold up other deadlines.
        ThreadPool::shared().post([call = std::move(calls_.extract(next).mapped())] {
            if (const auto running = call.lock()) {
                running->end(timedOut());
            }
        });
    }
    isWatching_ = false;
}

} // namespace zelto
