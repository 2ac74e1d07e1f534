#pragma once

#include <TrovenhalCommon/Operations/LVXOperation.h>

#include <atomic>
#include <functional>
#include <thread>

namespace zelto {

// An operation that goes on when its function has returned, holding no thread, until its callback is called.
class LVXAsyncOperation : public LVXOperation {
  public:
    bool isAsynchronous() const noexcept final { return true; }

  protected:
    // The work, on a thread of the queue; not called when the operation was cancelled before it began.
    //
    // The operation counts as finished once `onComplete` was called, on any thread, also before this returns,
    // or once its last copy was dropped uncalled. A second call has no effect. It keeps the operation alive.
    virtual void asyncMain(std::function<void()> onComplete) = 0;

  private:
    class Ending;

    void main() final;
    void endDropped() noexcept;

    std::atomic<std::thread::id> mainThread_; // while main() runs
    bool wasDroppedInMain_ = false;           // for that thread alone
};

} // namespace zelto
