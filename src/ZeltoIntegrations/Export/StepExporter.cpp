#include <ZeltoIntegrations/Export/StepExporter.h>

#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <Platform/FileManager.h>

#include <utility>

namespace zelto {

using ExportError = IntegrationExportError;

namespace {

auto textPreview(Callback<std::optional<IntegrationExportPreview>> completion) {
    return [completion = std::move(completion)](std::optional<std::string> text) mutable {
        completion(text ? std::optional(IntegrationExportPreview::email(*std::move(text))) : std::nullopt);
    };
}

} // namespace

IntegrationExportPreview StepExporter::pdfPreview() const {
    return IntegrationExportPreview::pdf(ExportServiceHelper::pdfName(dataInteractor().title()));
}

bool StepExporter::isWholeMessage(IntegrationExportContentType type) {
    using enum IntegrationExportContentType;
    return type == pdf || type == emailBacklink || type == externalLink || type == mtSummaryBacklink;
}

void StepExporter::loadWholeMessagePreview(IntegrationExportContentType type,
                                           Callback<std::optional<IntegrationExportPreview>> completion) {
    using enum IntegrationExportContentType;
    switch (type) {
    case pdf:
        return completion(pdfPreview());
    case externalLink:
        return completion(IntegrationExportPreview::externalLink());
    case emailBacklink:
        return dataInteractor().messagePlainText(std::nullopt, textPreview(std::move(completion)));
    case mtSummaryBacklink:
        return dataInteractor().meetTranscript(IntegrationMeetingTranscriptContent::summary,
                                               IntegrationMeetingTranscriptFormat::text, std::nullopt,
                                               textPreview(std::move(completion)));
    case backLink:
    case webLink:
    case plainText:
    case attachment:
    case mtSummaryWeblink:
    case emailWeblink:
        break;
    }
    completion(std::nullopt);
}

StepExporter::ExportSteps StepExporter::exportSteps(FailureRule rule, std::size_t unitCount,
                                                    ResultMediator<void> finish) {
    auto report = std::make_shared<ExportReportLog>();
    {
        const std::lock_guard guard(reportLock_);
        report_ = report;
    }
    auto progress = std::make_shared<ExportProgress>(static_cast<std::int64_t>(unitCount));
    auto run = std::make_shared<TypedRun<IntegrationExportError>>(progress, std::move(report), rule,
                                                                  std::move(finish));
    return ExportSteps(shared_from_this(), tasks(), std::move(run), std::move(progress));
}

void StepExporter::makePdf(StepRun& run, const std::string& title, ExportError error,
                           StepCompletion<File> done) {
    dataInteractor().html(IntegrationExportHtmlOptions{},
                          [this, &run, title, error, done = std::move(done)](auto html) mutable {
                              const auto path = ExportServiceHelper::pdfFilePath(title);
                              if (!html || !path || run.isCancelled()) {
                                  return done(failure(error));
                              }
                              convert(*std::move(html), *path, error, std::move(done));
                          });
}

void StepExporter::convert(std::string html, const File& path, ExportError error, StepCompletion<File> done) {
    platformInteractor().convert(std::move(html), path,
                                 [path, error, done = std::move(done)](bool isConverted) mutable {
                                     if (!isConverted) {
                                         return done(failure(error));
                                     }
                                     done(std::move(path));
                                 });
}

void StepExporter::fetchAttachment(StepRun&, std::int64_t attachmentPk, IntegrationExportError missing,
                                   StepCompletion<File> done) {
    dataInteractor().fetchAttachment(attachmentPk, [missing, done = std::move(done)](auto fetched) mutable {
        if (!fetched || !*fetched) {
            return done(failure(missing));
        }
        done((*fetched)->filePath());
    });
}

void StepExporter::makeText(StepRun&, const ContentText& row, const WebLinkSettings& settings,
                            ExportError missing, StepCompletion<std::string> done) {
    loadText(dataInteractor(), row, settings, [missing, done = std::move(done)](auto text) mutable {
        done(text ? ExporterResult<std::string>(*std::move(text)) : failure(missing));
    });
}

ExporterResult<StepExporter::File> StepExporter::textFile(const std::string& title, const std::string& text,
                                                          ExportError error) {
    const auto path = ExportServiceHelper::txtFilePath(title);
    if (!path || !FileManager::writeFileAtomically(*path, text)) {
        return failure(error);
    }
    return *path;
}

void StepExporter::makeTextFile(StepRun&, const std::string& title, const Step<std::string>& text,
                                ExportError error, StepCompletion<File> done) {
    const auto content = resultOf(text);
    done(content ? textFile(title, *content, error) : failure(error));
}

ExportReport StepExporter::exportReport() const {
    const std::lock_guard guard(reportLock_);
    return report_ ? report_->report() : ExportReport();
}

} // namespace zelto
