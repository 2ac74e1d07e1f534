#include <ZeltoIntegrations/Export/NetworkExporter.h>

#include <utility>

namespace zelto {

ExportReport NetworkExporter::exportReport() const {
    const auto log = reportLog();
    return log ? log->report() : ExportReport();
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

void NetworkExporter::logFailure(const Making& making, ServiceClientError error) {
    lvxLogWarn(std::string(making.warning) + std::string(nameOf(error)), making.function);
}

} // namespace zelto
