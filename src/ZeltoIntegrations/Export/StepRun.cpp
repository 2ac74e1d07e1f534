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
    std::shared_ptr<CancellableServiceClient> client;
    std::vector<std::weak_ptr<Operation>> operations;
    {
        const std::lock_guard guard(lock_);
        if (std::exchange(isCancelled_, true)) {
            return;
        }
        client = client_;
        operations = operations_;
    }
    if (client) {
        client->close();
    }
    for (const auto& each : operations | std::views::reverse) {
        if (const auto operation = each.lock()) {
            operation->cancel();
        }
    }
}

void StepRun::begin(const std::vector<std::shared_ptr<Operation>>& operations) {
    const std::lock_guard guard(lock_);
    operations_.assign(operations.begin(), operations.end());
}

void StepRun::countStep() {
    if (progress_) {
        progress_->setCompletedUnitCount(progress_->completedUnitCount() + 1);
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

bool StepRun::adopt(std::shared_ptr<CancellableServiceClient> client) {
    const std::lock_guard guard(lock_);
    if (!isCancelled_) {
        client_ = std::move(client);
    }
    return !isCancelled_;
}

} // namespace zelto
