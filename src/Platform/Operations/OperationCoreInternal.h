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

// Operations that may begin, the one added to the queue first in front. It owns none of them.
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
// Threads of the pool run drain(), which takes one ready operation after another. At most one of its jobs
// waits in the pool at a time: who takes an operation and sees that more could run posts the next. Locks are
// taken in the order core, operation; never an operation's before the core's.
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
