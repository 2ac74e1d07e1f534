#pragma once

#include <Platform/Operations/Operation.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zelto {

// Runs operations on the process's thread pool. Of those that are ready, the one added first begins first;
// one that is not ready does not block others. With a maximum of one, operations thus run one after another,
// in the order of addition unless dependencies require another. An asynchronous operation counts as executing
// until it finishes.
//
// All functions may be called on any thread. Releasing the queue does not stop it: its operations still run,
// except that a queue released while suspended cancels those that have not begun.
class OperationQueue {
  public:
    static constexpr int defaultMaxConcurrentOperationCount = -1; // no limit

    explicit OperationQueue(std::string name = {});
    ~OperationQueue();
    OperationQueue(const OperationQueue&) = delete;
    OperationQueue& operator=(const OperationQueue&) = delete;

    std::string name() const;
    void setName(std::string name);

    // How many may execute at a time. With zero none begins; a negative number means no limit. Operations
    // that execute already are not affected.
    int maxConcurrentOperationCount() const;
    void setMaxConcurrentOperationCount(int count);

    // While suspended, no operation begins; cancelled ones still finish.
    bool isSuspended() const;
    void setSuspended(bool suspended);

    // False, without effect, for an operation that was added to a queue or started before. One that was
    // cancelled before is accepted, and has finished or soon will.
    bool addOperation(std::shared_ptr<Operation> operation);
    // Gives the operation that will run the block.
    std::shared_ptr<Operation> addOperation(std::move_only_function<void()> block);
    // Adds all of them without additions of other threads in between, and optionally waits until each has
    // finished.
    void addOperations(const std::vector<std::shared_ptr<Operation>>& operations, bool waitUntilFinished);

    // Cancels each operation in the queue, the last one added first, so that none begins because an earlier
    // one finished.
    void cancelAllOperations();

    // The unfinished operations, in order of addition.
    std::vector<std::shared_ptr<Operation>> operations() const;
    std::size_t operationCount() const;

    // Waits until the queue is empty. Completion blocks may still be running then.
    void waitUntilAllOperationsAreFinished();

  private:
    std::shared_ptr<OperationCore> core_;
};

} // namespace zelto
