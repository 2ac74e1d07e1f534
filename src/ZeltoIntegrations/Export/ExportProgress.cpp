#include <ZeltoIntegrations/Export/ExportProgress.h>

#include <Platform/Operations/ContainedException.h>

namespace zelto {

ExportProgress::ExportProgress(std::int64_t totalUnitCount) : Progress(totalUnitCount) {}

void ExportProgress::setProgressHandler(Handler handler) {
    const std::lock_guard guard(lock_);
    handler_ = std::move(handler);
}

ExportProgress::Handler ExportProgress::progressHandler() const {
    const std::lock_guard guard(lock_);
    return handler_;
}

void ExportProgress::setCompletedUnitCount(std::int64_t count) {
    Progress::setCompletedUnitCount(count);
    if (const auto handler = progressHandler()) {
        containingExceptions("A progress handler", [&] { handler(static_cast<float>(fractionCompleted())); });
    }
}

} // namespace zelto
