#pragma once

// For the transport alone: what a session's tasks share, and keep when the session has been released.

#include <Platform/HTTP/URLSessionConfiguration.h>
#include <Platform/HTTP/URLSessionDataDelegate.h>
#include <Platform/Operations/OperationQueue.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>

namespace zelto {

class URLTransfer;

class URLSessionState {
  public:
    URLSessionState(URLSessionConfiguration configuration, std::shared_ptr<URLSessionDataDelegate> delegate,
                    std::shared_ptr<OperationQueue> delegateQueue);

    // The identifier of a task that begins its life; nothing when no more are made.
    std::optional<std::int64_t> addTask();

    // The task's completion has been called.
    void taskEnded();

    // No more tasks are made.
    void close();

    std::shared_ptr<URLSessionDataDelegate> delegate() const;

    const URLSessionConfiguration configuration;
    const std::shared_ptr<OperationQueue> delegateQueue;

    // The tasks that are under way and those that wait for it; the I/O thread's alone.
    struct Lane {
        int inFlight = 0;
        bool waitsForOthers = false;
        std::deque<std::shared_ptr<URLTransfer>> waiting;
    } lane;

  private:
    std::shared_ptr<URLSessionDataDelegate> takeDelegateIfOver();

    mutable std::mutex lock_; // guards what follows
    std::shared_ptr<URLSessionDataDelegate> delegate_;
    std::int64_t made_ = 0;
    std::int64_t live_ = 0;
    bool isClosed_ = false;
};

} // namespace zelto
