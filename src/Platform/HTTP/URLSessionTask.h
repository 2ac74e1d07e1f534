#pragma once

#include <Platform/HTTP/URLRequest.h>

#include <cstdint>
#include <memory>

namespace zelto {

class URLTransfer;

// A request and its progress. Made by a session; begins when it is resumed, and ends once: with the response,
// an error, or `cancelled`. Any thread. A task that is released without being resumed ends as cancelled.
class URLSessionDataTask {
  public:
    explicit URLSessionDataTask(std::shared_ptr<URLTransfer> transfer);
    ~URLSessionDataTask();
    URLSessionDataTask(const URLSessionDataTask&) = delete;
    URLSessionDataTask& operator=(const URLSessionDataTask&) = delete;

    // Unique within the session, from 1.
    std::int64_t taskIdentifier() const;

    // Without effect when it was resumed before.
    void resume();

    // Ends the task with `cancelled`, even if it was not resumed. Without effect when it has ended. Does not
    // wait for a callback that is running on the delegate queue.
    void cancel();

  private:
    std::shared_ptr<URLTransfer> transfer_;
};

} // namespace zelto
