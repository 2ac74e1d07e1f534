#include <ZeltoIntegrations/Export/ExportReportLog.h>

#include <utility>

namespace zelto {

std::size_t ExportReportLog::begin(std::string kind, std::string name, std::optional<std::uint64_t> fileSize,
                                   std::size_t leftOutBlocks, std::size_t leftOutCharacters) {
    const std::lock_guard guard(lock_);
    noted_.reset();
    entries_.push_back({.kind = std::move(kind),
                        .name = std::move(name),
                        .fileSize = fileSize,
                        .leftOutBlocks = leftOutBlocks,
                        .leftOutCharacters = leftOutCharacters});
    return entries_.size() - 1;
}

void ExportReportLog::made(std::size_t place, std::optional<std::string> identifier) {
    const std::lock_guard guard(lock_);
    entries_[place].isMade = true;
    entries_[place].identifier = std::move(identifier);
}

void ExportReportLog::refused(std::size_t place, ServiceClientError reason) {
    const std::lock_guard guard(lock_);
    auto& entry = entries_[place];
    entry.reason = reason;
    entry.refusal = std::exchange(noted_, std::nullopt).value_or(ServiceRefusal());
    if (entry.refusal.excessiveSize && entry.fileSize) {
        entry.refusal.excessiveSize = entry.fileSize;
    }
}

void ExportReportLog::withdraw(std::size_t place) {
    const std::lock_guard guard(lock_);
    noted_.reset();
    entries_[place].isWithdrawn = true;
}

void ExportReportLog::refusedUnsent(std::string kind, std::string name, ServiceClientError reason) {
    const std::lock_guard guard(lock_);
    auto refusal = std::exchange(noted_, std::nullopt).value_or(ServiceRefusal());
    refusal.nothingWasSent = refusal.nothingWasSent || reason == ServiceClientError::connectionError;
    entries_.push_back({.kind = std::move(kind),
                        .name = std::move(name),
                        .fileSize = std::nullopt,
                        .reason = reason,
                        .refusal = std::move(refusal)});
}

void ExportReportLog::note(ServiceRefusal refusal) {
    const std::lock_guard guard(lock_);
    noted_ = std::move(refusal);
}

void ExportReportLog::close() {
    const std::lock_guard guard(lock_);
    isClosed_ = true;
}

ExportReport ExportReportLog::report() const {
    const std::lock_guard guard(lock_);
    ExportReport report;
    for (const auto& each : entries_) {
        if (each.isWithdrawn) {
            continue;
        }
        if (each.isMade) {
            report.made.push_back(
                {each.kind, each.name, each.identifier, each.leftOutBlocks, each.leftOutCharacters});
        } else if (each.reason || isClosed_) {
            report.refused.push_back(
                {each.kind, each.name, each.reason.value_or(ServiceClientError::connectionError),
                 each.refusal.words, each.refusal.nothingWasSent, each.refusal.excessiveSize});
        }
    }
    return report;
}

} // namespace zelto
