#include <ZeltoIntegrations/Export/StepRun.h>

#include <ranges>
#include <utility>

namespace zelto {

StepRun::StepRun(std::shared_ptr<ExportProgress> progress, std::shared_ptr<ExportReportLog> report)
    : progress_(std::move(progress)), report_(std::move(report)) {}

bool StepRun::isCancelled() const {
    const std::lock_guard guard(lock_);
    return isCancelled_;
}

void StepRun::cancel() {
    std::vector<std::weak_ptr<Operation>> operations;
    {
        const std::lock_guard guard(lock_);
        operations = operations_;
    }
    cancelRequests();
    for (const auto& each : operations | std::views::reverse) {
        if (const auto operation = each.lock()) {
            operation->cancel();
        }
    }
}

void StepRun::cancelRequests() {
    std::shared_ptr<CancellableServiceClient> client;
    {
        const std::lock_guard guard(lock_);
        isCancelled_ = true;
        client = client_;
    }
    if (client) {
        client->close();
    }
}

void StepRun::begin(const std::vector<std::shared_ptr<Operation>>& operations) {
    const std::lock_guard guard(lock_);
    operations_.assign(operations.begin(), operations.end());
}

bool StepRun::hasEnded(std::size_t index) const {
    std::shared_ptr<Operation> operation;
    {
        const std::lock_guard guard(lock_);
        operation = index < operations_.size() ? operations_[index].lock() : nullptr;
    }
    return !operation || operation->isFinished();
}

void StepRun::countStep() {
    std::int64_t counted = 0;
    {
        const std::lock_guard guard(lock_);
        counted = ++countedSteps_;
    }
    if (progress_) {
        progress_->setCompletedUnitCount(counted);
    }
}

void StepRun::countRemainder() {
    if (progress_ && progress_->completedUnitCount() < progress_->totalUnitCount()) {
        progress_->setCompletedUnitCount(progress_->totalUnitCount());
    }
}

std::shared_ptr<CancellableServiceClient> StepRun::presentClient() const {
    const std::lock_guard guard(lock_);
    return isCancelled_ ? nullptr : client_;
}

std::shared_ptr<CancellableServiceClient> StepRun::adopt(std::shared_ptr<CancellableServiceClient> client) {
    const std::lock_guard guard(lock_);
    if (isCancelled_) {
        return nullptr;
    }
    if (!client_) {
        client_ = std::move(client);
    }
    return client_;
}

} // namespace zelto
