#pragma once

// For the sources of this folder only.

#include <Platform/Operations/Operation.h>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace zelto {

using OperationList = std::vector<std::shared_ptr<Operation>>;

// Operations that may begin, in the order in which they were added to the queue. It owns none of them.
class ReadyOperations {
  public:
    bool isEmpty() const { return inOrder_.empty() && late_.empty(); }

    void push(Operation& operation, std::uint64_t order);
    Operation& pop();
    void erase(std::uint64_t order);

  private:
    using Entry = std::pair<std::uint64_t, Operation*>;

    void trim();

    // Most become ready in the order in which they were added. An erased one is a null pointer here, never at
    // either end.
    std::deque<Entry> inOrder_;
    std::map<std::uint64_t, Operation*> late_;
};

// The state of an OperationQueue, which outlives it as long as operations are in it. They and the core own
// each other until each has finished.
//
// Every request and every step of an export is an operation, so one should cost no more than a function that
// is posted to a plain thread pool. That is why
// - the queue is a list whose links are members of the operations, and only operations with dependencies or a
//   completion block allocate Operation::Links;
// - what is ready is kept in a deque in the order of addition, with a map only for what becomes ready late;
// - a job of the pool runs drain(), which takes one ready operation after another until its time slice is
//   over and other work waits. At most one of these jobs waits in the pool at a time: a thread that takes an
//   operation and sees that more could run posts the next;
// - an operation that drain() ran is removed from the queue under the lock that drain() takes for the next.
//
// Measured by bench/OperationQueueBench on two cores: 180 ns for an empty operation, its creation included,
// while posting an empty function to Boost.Asio's thread_pool takes 360 ns. With a job of the pool for each
// operation it would be 260 ns, and 350 ns instead of 180 ns in a chain where each depends on the one before.
//
// The price: members of Operation that belong to the queue and are guarded by its lock; finishing in two
// steps, conclude() and the removal from the queue; and a fixed order of locks, first the core's, then an
// operation's, never the other way round.
class OperationCore : public std::enable_shared_from_this<OperationCore> {
  public:
    explicit OperationCore(std::string name);

    std::string name() const;
    void setName(std::string name);
    int limit() const;
    void setLimit(int limit);
    bool isSuspended() const;
    void setSuspended(bool suspended);

    bool add(std::span<const std::shared_ptr<Operation>> operations);
    OperationList operations() const;
    void waitUntilEmpty();
    // The queue object is gone.
    void release();

    void becameReady(Operation& operation);
    void endCancelled(std::shared_ptr<Operation> operation);
    // For an operation that has finished or is being destroyed.
    void remove(Operation& operation);

  private:
    bool list(const std::shared_ptr<Operation>& operation);
    void makeReady(Operation& operation);
    [[nodiscard]] std::shared_ptr<Operation> unlist(Operation& operation);
    bool canRun() const;
    std::shared_ptr<Operation> take();
    bool wantsJob();
    void postJob();
    void drain();
    bool run(const std::shared_ptr<Operation>& operation, OperationList& released);

    mutable std::mutex mutex_;
    std::condition_variable empty_;
    std::string name_;
    int limit_;
    bool isSuspended_ = false;
    bool isReleased_ = false;
    bool isJobPosted_ = false;
    std::size_t slots_ = 0;
    std::size_t count_ = 0;
    std::uint64_t added_ = 0;
    Operation* first_ = nullptr;
    Operation* last_ = nullptr;
    ReadyOperations ready_;
    std::deque<std::shared_ptr<Operation>> cancelled_;
};

} // namespace zelto
