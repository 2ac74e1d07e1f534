#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>

namespace zelto {

// The one pool of threads that all operation queues run on. It has as many threads as the machine has cores,
// and four at least. Jobs may block: when some wait and none was taken for ten milliseconds, a thread is
// added, up to 64 that are at work; those beyond the first ones end after ten idle seconds. A thread that
// says it waits (BlockingScope) does not count, so that jobs that wait for other jobs of the pool cannot
// starve them, however many they are.
//
// All threads block the signals that the thread blocked that made the pool, whoever posts the jobs.
//
// The pool lives until the process ends, with whatever runs then.
class ThreadPool {
  public:
    using Job = std::move_only_function<void()>;

    static ThreadPool& shared();

    // The job runs soon, on a thread of the pool, in no promised order. What it throws is contained. Any
    // thread.
    void post(Job job);

    // How many jobs no thread has taken yet; only a hint, for those who would give way.
    std::size_t waiting() const noexcept { return waiting_.load(std::memory_order_relaxed); }

    // Says, while it lives, that this thread only waits. On a thread that is none of the pool's it does
    // nothing.
    class BlockingScope {
      public:
        BlockingScope();
        ~BlockingScope();
        BlockingScope(const BlockingScope&) = delete;
        BlockingScope& operator=(const BlockingScope&) = delete;

      private:
        bool counted_;
    };

  private:
    ThreadPool();

    void work();
    bool waitForJob(std::unique_lock<std::mutex>& lock);
    void watch();
    void addThread();

    std::size_t atWork() const { return threads_ - idle_ - blocked_; }

    std::mutex mutex_;
    std::condition_variable work_;
    std::condition_variable watch_;
    std::deque<Job> jobs_;
    std::atomic<std::size_t> waiting_ = 0;
    std::size_t threads_ = 0;
    std::size_t idle_ = 0;
    std::size_t blocked_ = 0;
    std::size_t taken_ = 0;
    bool spinning_ = false;
    bool watching_ = false;
    const std::size_t least_;
};

} // namespace zelto
