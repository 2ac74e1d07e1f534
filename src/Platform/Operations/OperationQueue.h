#pragma once

#include <Platform/Operations/Operation.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zelto {

// Runs operations on the process's thread pool. Among those that are ready, the one added first begins first;
// one that isn't ready holds nobody back. With a maximum of one, operations thus run one after another, and
// in the order of addition unless dependencies say other. An asynchronous operation holds its place until it
// finishes.
//
// All functions may be called on any thread. Releasing the queue stops nothing: what was added still runs,
// except that a queue released while it is suspended cancels what has not begun.
class OperationQueue {
  public:
    static constexpr int defaultMaxConcurrentOperationCount = -1; // no limit

    explicit OperationQueue(std::string name = {});
    ~OperationQueue();
    OperationQueue(const OperationQueue&) = delete;
    OperationQueue& operator=(const OperationQueue&) = delete;

    std::string name() const;
    void setName(std::string name);

    // How many may execute at a time. Zero lets none begin, a negative number is no limit. What executes
    // already is not touched.
    int maxConcurrentOperationCount() const;
    void setMaxConcurrentOperationCount(int count);

    // While suspended, nothing begins; cancelled operations still end.
    bool isSuspended() const;
    void setSuspended(bool suspended);

    // False, and without effect, for an operation that was added to a queue or started before. One that was
    // cancelled before is taken and has, or soon will have, finished.
    bool addOperation(std::shared_ptr<Operation> operation);
    // The operation that will run the block.
    std::shared_ptr<Operation> addOperation(std::move_only_function<void()> block);
    // Adds all, with no other thread's addition in between, and if told so waits until each has finished.
    void addOperations(const std::vector<std::shared_ptr<Operation>>& operations, bool waitUntilFinished);

    // Cancels each operation that is in the queue, the last one added first, so that none begins because one
    // before it ended.
    void cancelAllOperations();

    // What has not finished, in order of addition.
    std::vector<std::shared_ptr<Operation>> operations() const;
    std::size_t operationCount() const;

    // Until the queue is empty. Completion blocks may still be running then.
    void waitUntilAllOperationsAreFinished();

  private:
    std::shared_ptr<OperationCore> core_;
};

} // namespace zelto
