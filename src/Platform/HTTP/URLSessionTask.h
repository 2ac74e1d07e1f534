#pragma once

#include <Platform/HTTP/URLRequest.h>

#include <cstdint>
#include <memory>

namespace zelto {

class URLTransfer;

// One request on its way. Made by a session; begins when it is resumed, and ends once: with the answer, an
// error, or `cancelled`. Any thread. One that is released unresumed ends as cancelled.
class URLSessionDataTask {
  public:
    explicit URLSessionDataTask(std::shared_ptr<URLTransfer> transfer);
    ~URLSessionDataTask();
    URLSessionDataTask(const URLSessionDataTask&) = delete;
    URLSessionDataTask& operator=(const URLSessionDataTask&) = delete;

    // Unique within the session, from 1.
    std::int64_t taskIdentifier() const;

    // Again has no effect.
    void resume();

    // Ends the task with `cancelled`, also one that was not resumed. Without effect when it has ended. A call
    // that is under way on the delegate queue returns first; this one never waits for it.
    void cancel();

  private:
    std::shared_ptr<URLTransfer> transfer_;
};

} // namespace zelto
