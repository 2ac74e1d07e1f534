#include <Platform/Operations/ThreadPool.h>

#include <Platform/Operations/ContainedException.h>

#include <algorithm>
#include <csignal>
#include <system_error>
#include <thread>
#include <utility>

namespace zelto {
namespace {

constexpr std::size_t leastThreads = 4;
constexpr std::size_t maximumBusyThreads = 64;
constexpr std::chrono::milliseconds stallTimeout{10};
constexpr std::chrono::seconds idleLife{10};

// The next job of a queue often comes at once, and waking a thread costs more than many jobs.
constexpr int spinsBeforeSleep = 30;

// Of the thread that made the pool.
sigset_t blockedSignals;

thread_local bool isPoolThread = false;

} // namespace

ThreadPool& ThreadPool::shared() {
    // Never destroyed: a job may still run while the process ends.
    static auto* pool = new ThreadPool;
    return *pool;
}

ThreadPool::ThreadPool() : least_(std::max<std::size_t>(leastThreads, std::thread::hardware_concurrency())) {
    pthread_sigmask(SIG_SETMASK, nullptr, &blockedSignals);
    startWatch();
}

void ThreadPool::post(Job job) {
    bool wakesWorker = false;
    bool wakesWatch = false;
    bool runsHere = false;
    {
        const std::lock_guard lock(mutex_);
        jobs_.push_back(std::move(job));
        waiting_.store(jobs_.size(), std::memory_order_relaxed);
        if (jobs_.size() <= idle_ + spinning_) {
            wakesWorker = jobs_.size() > std::size_t{spinning_};
        } else if (threads_ - blocked_ < least_) {
            addThread();
            runsHere = threads_ == 0;
        } else {
            startWatch();
            wakesWatch = hasWatch_ && !std::exchange(watching_, true);
        }
    }
    if (runsHere) {
        runHere();
    }
    if (wakesWorker) {
        work_.notify_one();
    }
    if (wakesWatch) {
        watch_.notify_one();
    }
}

void ThreadPool::addThread() {
    try {
        std::thread([this] { work(); }).detach();
        ++threads_;
    } catch (const std::system_error&) {
        // Those that are there take the job, or else whoever has posted it.
    }
}

void ThreadPool::startWatch() {
    if (hasWatch_) {
        return;
    }
    try {
        std::thread([this] { watch(); }).detach();
        hasWatch_ = true;
    } catch (const std::system_error&) {
        // The next job that waits tries again.
    }
}

// A job that posts others does not run them within itself.
void ThreadPool::runHere() {
    thread_local bool isRunning = false;
    if (std::exchange(isRunning, true)) {
        return;
    }
    std::unique_lock lock(mutex_);
    while (!jobs_.empty()) {
        Job job = takeFirst();
        lock.unlock();
        containingExceptions("A job of the thread pool", job);
        job = nullptr;
        lock.lock();
    }
    isRunning = false;
}

// The lock is held, and there is a job.
ThreadPool::Job ThreadPool::takeFirst() {
    Job job = std::move(jobs_.front());
    jobs_.pop_front();
    waiting_.store(jobs_.size(), std::memory_order_relaxed);
    ++taken_;
    return job;
}

void ThreadPool::work() {
    isPoolThread = true;
    pthread_sigmask(SIG_SETMASK, &blockedSignals, nullptr);
    std::unique_lock lock(mutex_);
    while (waitForJob(lock)) {
        Job job = takeFirst();
        lock.unlock();
        containingExceptions("A job of the thread pool", job);
        job = nullptr;
        lock.lock();
    }
}

// False when this thread is no longer needed.
bool ThreadPool::waitForJob(std::unique_lock<std::mutex>& lock) {
    if (jobs_.empty() && !std::exchange(spinning_, true)) {
        lock.unlock();
        for (int look = 0; look < spinsBeforeSleep && waiting() == 0; ++look) {
            std::this_thread::yield();
        }
        lock.lock();
        spinning_ = false;
    }
    while (jobs_.empty()) {
        ++idle_;
        const bool isOver = work_.wait_for(lock, idleLife) == std::cv_status::timeout;
        --idle_;
        if (isOver && jobs_.empty() && threads_ - blocked_ > least_) {
            --threads_;
            return false;
        }
    }
    return true;
}

void ThreadPool::watch() {
    pthread_sigmask(SIG_SETMASK, &blockedSignals, nullptr);
    std::unique_lock lock(mutex_);
    while (true) {
        watch_.wait(lock, [this] { return watching_; });
        while (!jobs_.empty()) {
            const auto before = taken_;
            lock.unlock();
            std::this_thread::sleep_for(stallTimeout);
            lock.lock();
            if (taken_ == before && !jobs_.empty() && atWork() < maximumBusyThreads) {
                addThread();
            }
        }
        watching_ = false;
    }
}

ThreadPool::BlockingScope::BlockingScope() : counted_(isPoolThread) {
    if (counted_) {
        auto& pool = shared();
        const std::lock_guard lock(pool.mutex_);
        ++pool.blocked_;
        if (pool.jobs_.size() > pool.idle_ + pool.spinning_ && pool.threads_ - pool.blocked_ < pool.least_) {
            pool.addThread();
        }
    }
}

ThreadPool::BlockingScope::~BlockingScope() {
    if (counted_) {
        auto& pool = shared();
        const std::lock_guard lock(pool.mutex_);
        --pool.blocked_;
    }
}

} // namespace zelto
