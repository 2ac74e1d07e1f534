#pragma once

// Internal to the transport: what a session's tasks share, and keep after the session was released.

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

    // The identifier of a new task; `nullopt` when the session makes no more.
    std::optional<std::int64_t> addTask();

    // To be called after the task's completion was called.
    void taskEnded();

    // No more tasks can be made.
    void close();

    std::shared_ptr<URLSessionDataDelegate> delegate() const;

    const URLSessionConfiguration configuration;
    const std::shared_ptr<OperationQueue> delegateQueue;

    // The session's running tasks and those that wait for them; used on the I/O thread only.
    struct Lane {
        int inFlight = 0;
        bool waitsForOthers = false;
        std::deque<std::shared_ptr<URLTransfer>> waiting;
    } lane;

  private:
    std::shared_ptr<URLSessionDataDelegate> takeDelegateIfOver();

    mutable std::mutex lock_; // guards the members below
    std::shared_ptr<URLSessionDataDelegate> delegate_;
    std::int64_t made_ = 0;
    std::int64_t live_ = 0;
    bool isClosed_ = false;
};

} // namespace zelto
