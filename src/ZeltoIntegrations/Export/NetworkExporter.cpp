#include <ZeltoIntegrations/Export/NetworkExporter.h>

#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <ranges>
#include <utility>

namespace zelto {

using FileCompletion = Completion<std::filesystem::path, IntegrationExportError>;

NetworkExporter::Steps::Steps(std::shared_ptr<NetworkExporter> exporter, std::size_t unitCount,
                              ResultMediator<void> finish)
    : run_(std::make_shared<Run>(std::move(exporter),
                                 std::make_shared<ExportProgress>(static_cast<std::int64_t>(unitCount)),
                                 std::move(finish))) {
    const std::lock_guard guard(run_->exporter->exportLock_);
    run_->exporter->report_ = {};
}

// A step whose request was cut off stops the export itself, and has told of the request by then.
void NetworkExporter::Steps::Run::cancel() {
    cancelledOperations();
    exporter->cancelRequests();
    if (!exporter->isRequesting_) {
        OperationQueue().addOperation([self = shared_from_this()] { self->stopIfCancelled(); });
    }
}

bool NetworkExporter::Steps::Run::update() {
    progress->setCompletedUnitCount(progress->completedUnitCount() + 1);
    return !stopIfCancelled();
}

// Stops once, and what was in the queue when the export was cancelled: what has come since goes on.
bool NetworkExporter::Steps::Run::stopIfCancelled() {
    if (!progress->isCancelled()) {
        return false;
    }
    if (!hasStopped_.exchange(true)) {
        for (const auto& each : cancelledOperations() | std::views::reverse) {
            if (const auto operation = each.lock()) {
                operation->cancel();
            }
        }
        finish(failure(IntegrationExportError::canceled));
    }
    return true;
}

NetworkExporter::Steps::Run::Operations NetworkExporter::Steps::Run::cancelledOperations() {
    std::call_once(isCancelling_, [this] {
        const auto queued = exporter->queuedTasks();
        cancelledOperations_.assign(queued.begin(), queued.end());
    });
    return cancelledOperations_;
}

std::shared_ptr<ExportProgress> NetworkExporter::Steps::execute() {
    const auto last =
        run_->exporter->createSyncTask([finish = run_->finish, outcomes = std::move(outcomes_)] {
            for (const auto& outcome : outcomes) {
                if (const auto result = outcome(); !result) {
                    return finish(result);
                }
            }
            finish({});
        });
    // Who cancels the queue, for another export too, ends this one.
    last->setCompletionBlock([finish = run_->finish] { finish(failure(IntegrationExportError::canceled)); });
    operations_.push_back(last);
    run_->progress->setCancellationHandler([weakly = std::weak_ptr(run_)] {
        if (const auto run = weakly.lock()) {
            run->cancel();
        }
    });
    run_->exporter->ServiceExporter::execute(operations_);
    return run_->progress;
}

void NetworkExporter::setProgress(const std::shared_ptr<ExportProgress>& progress) {
    const std::lock_guard guard(exportLock_);
    progress_ = progress;
}

bool NetworkExporter::isCancelled() const {
    std::shared_ptr<ExportProgress> progress;
    {
        const std::lock_guard guard(exportLock_);
        progress = progress_.lock();
    }
    return progress && progress->isCancelled();
}

ExportReport NetworkExporter::exportReport() const {
    const std::lock_guard guard(exportLock_);
    return report_;
}

void NetworkExporter::makePdf(const std::string& title, FileCompletion done) {
    const auto self = std::static_pointer_cast<NetworkExporter>(shared_from_this());
    dataInteractor().html(IntegrationExportHtmlOptions{}, [self, title, done = std::move(done)](
                                                              std::optional<std::string> html) mutable {
        const auto path = ExportServiceHelper::pdfFilePath(title);
        if (!html || !path) {
            return done(failure(IntegrationExportError::convertError));
        }
        self->platformInteractor().convert(*std::move(html), *path,
                                           [path = *path, done = std::move(done)](bool isConverted) mutable {
                                               if (!isConverted) {
                                                   return done(failure(IntegrationExportError::convertError));
                                               }
                                               done(std::move(path));
                                           });
    });
}

void NetworkExporter::fetchFile(std::int64_t attachmentPk, IntegrationExportError missing,
                                FileCompletion done) {
    dataInteractor().fetchAttachment(attachmentPk, [missing, done = std::move(done)](auto fetched) mutable {
        if (!fetched || !*fetched) {
            return done(failure(missing));
        }
        done((*fetched)->filePath());
    });
}

void NetworkExporter::reportMade(std::string kind, std::string name, std::optional<std::string> identifier) {
    const std::lock_guard guard(exportLock_);
    report_.made.push_back({std::move(kind), std::move(name), std::move(identifier)});
}

void NetworkExporter::reportRefused(std::string kind, std::string name, ServiceClientError reason) {
    const std::lock_guard guard(exportLock_);
    report_.refused.push_back({std::move(kind), std::move(name), reason});
}

} // namespace zelto
