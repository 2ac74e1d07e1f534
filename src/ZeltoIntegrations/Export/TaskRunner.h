#pragma once

#include <ZeltoIntegrations/Client/CancellableServiceClient.h>
#include <ZeltoIntegrations/Export/ExporterAsyncOperation.h>

#include <Platform/Operations/BlockOperation.h>
#include <Platform/Operations/OperationQueue.h>

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace zelto {

// The queue on which an exporter or an importer runs its steps, and the client of the steps that run. Any
// thread.
class TaskRunner {
  public:
    explicit TaskRunner(int maxConcurrentOperationCount = OperationQueue::defaultMaxConcurrentOperationCount);

    // Steps run one after the other in the order of their addition.
    bool isSerial() const { return queue_.maxConcurrentOperationCount() == 1; }

    // Adds the steps to the queue, with no others in between.
    void execute(const std::vector<std::shared_ptr<Operation>>& operations);

    template <class R>
    static std::shared_ptr<ExporterAsyncOperation<R>>
    createAsyncTask(typename ExporterAsyncOperation<R>::Task operation) {
        return std::make_shared<ExporterAsyncOperation<R>>(std::move(operation));
    }

    static std::shared_ptr<BlockOperation> createSyncTask(std::move_only_function<void()> block);

    void updateActiveClient(std::shared_ptr<CancellableServiceClient> client);

    // Ends the requests of the active client, and every step that has not begun.
    void cancelTasks();

  private:
    OperationQueue queue_;
    std::mutex lock_;
    std::shared_ptr<CancellableServiceClient> client_;
};

} // namespace zelto
