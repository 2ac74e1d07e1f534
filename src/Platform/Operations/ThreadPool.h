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
// and at least four. Jobs may block: when jobs wait and none was taken for ten milliseconds, a thread is
// added, up to 64 busy ones; threads beyond the initial ones end after ten idle seconds. A thread that
// declares that it waits (BlockingScope) does not count, so that any number of jobs that wait for other jobs
// of the pool cannot starve them.
//
// All threads block the signals that were blocked on the thread that made the pool, whoever posts the jobs.
// Where the system gives the pool no thread at all, a job runs on the thread that posts it.
//
// The pool lives until the process ends, and its jobs are not waited for.
class ThreadPool {
  public:
    using Job = std::move_only_function<void()>;

    static ThreadPool& shared();

    // The job runs soon, on a thread of the pool, in no particular order. Exceptions from it are contained.
    // Any thread.
    void post(Job job);

    // How many jobs no thread has taken yet; only a hint, for jobs that could yield.
    std::size_t waiting() const noexcept { return waiting_.load(std::memory_order_relaxed); }

    // While it lives, this thread counts as waiting. Without effect on threads outside the pool.
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
    void startWatch();
    void runHere();
    Job takeFirst();

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
    bool hasWatch_ = false;
    const std::size_t least_;
};

} // namespace zelto
