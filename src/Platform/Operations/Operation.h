#pragma once

#include <Platform/Operations/SpinLock.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace zelto {

class OperationCore;

// A piece of work that an OperationQueue runs once, when all operations that it depends on have finished.
// Always made with std::make_shared. All functions may be called on any thread, and no lock is held while
// main(), a completion block or any other function of a caller runs.
//
// An operation is pending, then executing, then finished. An asynchronous one (isAsynchronous) stays
// executing when main() has returned, without occupying a thread, until it calls finish().
//
// Ownership: the queue owns an operation from addOperation until it has finished. If the queue object is
// released first, pending operations still run; an asynchronous operation that executes is then owned by
// whoever is to call finish(), who therefore holds it strongly (shared_from_this). One that is released while
// it executes counts as finished. Finishing drops the completion block and the links to other operations.
class Operation : public std::enable_shared_from_this<Operation> {
  public:
    Operation();
    virtual ~Operation();
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    // Runs a ready operation that is in no queue, on the calling thread. Without effect when it is not ready
    // or has begun.
    void start();

    // An operation that has not begun never calls main(): endBeforeStart() is called on a thread of the pool
    // and the operation counts as finished, at once, regardless of its dependencies, of whether it is in a
    // queue, and of the queue's limit. For one that executes, only the flag is set, unless a subclass acts on
    // it (and calls this one too). Harmless at any other time, and when repeated.
    virtual void cancel();

    // All dependencies have finished, or the operation was cancelled.
    bool isReady() const;

    bool isExecuting() const noexcept { return stage_.load() == executing; }

    bool isFinished() const noexcept { return stage_.load() == finished; }

    bool isCancelled() const noexcept { return cancelled_.load(); }

    virtual bool isAsynchronous() const noexcept { return false; }

    // This operation will not begin before the other one has finished, whatever queue each is in, if any.
    // Possible as long as this one has not begun, even when it is ready and in a queue; false after that. A
    // pending dependency is not owned: if it is released unfinished it no longer counts. A finished one is
    // kept until this operation finishes. Operations that depend on each other in a circle never begin;
    // cancelling one of them releases the others. An operation cannot depend on itself.
    bool addDependency(const std::shared_ptr<Operation>& dependency);
    void removeDependency(const std::shared_ptr<Operation>& dependency);

    // In the order in which they were added; empty once this operation has finished.
    std::vector<std::shared_ptr<Operation>> dependencies() const;

    // Called once, after the operation has finished and released its dependants, on the thread that finished
    // it. A block that is set after that is never called.
    void setCompletionBlock(std::move_only_function<void()> block);

    // Would never return on the operation's own thread while it executes. Other operations may call it.
    void waitUntilFinished() const;

  protected:
    // The work. An exception from it is contained (ContainedException.h), and the operation finishes, an
    // asynchronous one too.
    virtual void main();

    // Called instead of main() when the operation was cancelled before it began, and before it counts as
    // finished: the place to report that nothing was done.
    virtual void endBeforeStart();

    // Finishes an asynchronous operation that executes, on any thread, also within main(). Without effect at
    // any other time.
    void finish();

  private:
    friend class OperationCore;

    enum Stage : int { pending, ending, executing, finished };
    struct Links;

    // What finishing takes out of the operation, to be processed when no lock is held.
    struct Conclusion {
        bool hasFinished = false;
        std::unique_ptr<Links> links;
        std::shared_ptr<OperationCore> core;

        Conclusion();
        Conclusion(Conclusion&& other) noexcept;
        ~Conclusion();
    };

    bool begin();
    bool perform();
    void performEnding();
    Conclusion conclude();
    void end(Conclusion conclusion);
    std::shared_ptr<OperationCore> dependencyEnded(std::size_t place, std::shared_ptr<Operation> kept);
    static void releaseDependants(const Links& links, const std::shared_ptr<Operation>& kept,
                                  const OperationCore* current,
                                  std::vector<std::shared_ptr<Operation>>* ready);
    Links& links();

    mutable SpinLock lock_;
    std::atomic<int> stage_ = pending;
    std::atomic<bool> cancelled_ = false;
    std::uint32_t unfinishedDependencies_ = 0;
    std::unique_ptr<Links> links_;
    std::shared_ptr<OperationCore> core_;

    // Guarded by the core's lock.
    std::shared_ptr<Operation> keptByQueue_;
    Operation* previous_ = nullptr;
    Operation* next_ = nullptr;
    std::uint64_t order_ = 0;
    bool isListed_ = false;
    bool isReadyListed_ = false;
    bool holdsSlot_ = false;
};

} // namespace zelto
