#include <ZeltoIntegrations/Export/NetworkExporter.h>

#include <filesystem>
#include <system_error>
#include <utility>

namespace zelto {

std::optional<ServiceRefusal> NetworkExporter::lastRefusal() const {
    const std::lock_guard guard(refusalsLock_);
    return refusals_ ? refusals_->last() : std::nullopt;
}

std::shared_ptr<NetworkExporter::Refusals> NetworkExporter::newRefusals() {
    auto refusals = std::make_shared<Refusals>();
    const std::lock_guard guard(refusalsLock_);
    refusals_ = refusals;
    return refusals;
}

void NetworkExporter::Refusals::note(const ServiceRefusal& refusal) {
    const std::lock_guard guard(lock_);
    last_ = refusal;
}

std::optional<ServiceRefusal> NetworkExporter::Refusals::last() const {
    const std::lock_guard guard(lock_);
    return last_;
}

NetworkExporter::Making NetworkExporter::uploading(const File& file, std::string_view warning,
                                                   std::string_view function) {
    std::error_code error;
    const auto size = std::filesystem::file_size(file, error);
    return {.kind = "file",
            .name = file.filename().native(),
            .error = IntegrationExportError::uploadAttachmentError,
            .warning = warning,
            .function = function,
            .fileSize = error ? std::nullopt : std::optional<std::uint64_t>(size)};
}

Completion<std::string, ServiceClientError> NetworkExporter::reported(StepRun& run, Making making,
                                                                      StepCompletion<std::string> done) {
    return reported<std::string, std::string>(
        run, std::move(making), std::move(done), [](auto value) { return *std::move(value); },
        [](const auto& value) { return std::optional(*value); });
}

Completion<void, ServiceClientError> NetworkExporter::reported(StepRun& run, Making making,
                                                               StepCompletion<void> done) {
    return reported<void, void>(
        run, std::move(making), std::move(done), [](const auto&) { return ExporterResult<void>(); },
        [](const auto&) { return std::optional<std::string>(); });
}

void NetworkExporter::reportRefusal(StepRun& run, const Making& making, std::string_view words) {
    refuse(run, run.report().begin(making.kind, making.name), making, words);
}

void NetworkExporter::refuse(StepRun& run, std::size_t place, const Making& making,
                             ServiceClientError error) {
    run.report().refused(place, error);
    lvxLogWarn(std::string(making.warning) + std::string(nameOf(error)), making.function);
}

void NetworkExporter::refuseUnsent(StepRun& run, const Making& making, ServiceClientError error) {
    // Cancelled before anything was to be made, it refuses nothing.
    if (!run.isCancelled()) {
        run.report().refusedUnsent(making.kind, making.name, error);
    }
    lvxLogWarn(std::string(making.warning) + std::string(nameOf(error)), making.function);
}

void NetworkExporter::refuse(StepRun& run, std::size_t place, const Making& making, std::string_view words) {
    const auto error = ServiceClientError::apiCallError;
    auto cleaned = cleanedWords(words);
    lvxLogWarn(std::string(making.warning) + std::string(nameOf(error)) +
                   (cleaned.empty() ? "" : ": " + cleaned),
               making.function);
    run.report().note({.words = std::move(cleaned)});
    run.report().refused(place, error);
}

} // namespace zelto
