#include <ZeltoIntegrations/Export/TaskRunner.h>

#include <utility>

namespace zelto {

TaskRunner::TaskRunner(int maxConcurrentOperationCount) {
    queue_.setMaxConcurrentOperationCount(maxConcurrentOperationCount);
}

void TaskRunner::execute(const std::vector<std::shared_ptr<Operation>>& operations) {
    queue_.addOperations(operations, false);
}

std::shared_ptr<BlockOperation> TaskRunner::createSyncTask(std::move_only_function<void()> block) {
    return std::make_shared<BlockOperation>(std::move(block));
}

void TaskRunner::updateActiveClient(std::shared_ptr<CancellableServiceClient> client) {
    // The client before is released when the lock is free.
    const std::lock_guard guard(lock_);
    client_.swap(client);
}

void TaskRunner::cancelTasks() {
    std::shared_ptr<CancellableServiceClient> client;
    {
        const std::lock_guard guard(lock_);
        client = client_;
    }
    if (client) {
        client->cancelAllOperations();
    }
    queue_.cancelAllOperations();
}

} // namespace zelto
