#pragma once

#include <ZeltoIntegrations/Export/ContentText.h>
#include <ZeltoIntegrations/Export/ExportReport.h>
#include <ZeltoIntegrations/Export/ServiceExporter.h>
#include <ZeltoIntegrations/Export/StepRun.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace zelto {

// What the exporters share that run their steps by a StepRun, and the steps that many of them have.
//
// Cancelling the progress ends the request under way and the export with it, without waiting for what the
// host was asked for; no step begins and no request is made after that. What runs or waits beside it on the
// same exporter goes on.
class StepExporter : public ServiceExporter {
  public:
    using ServiceExporter::ServiceExporter;

    // Of the last export that was begun, also while it runs. Any thread.
    ExportReport exportReport() const;

  protected:
    using File = std::filesystem::path;
    using ExportSteps = Steps<ServiceExporter, IntegrationExportError>;

    template <class R> using StepCompletion = Completion<R, IntegrationExportError>;
    template <class R> using LoadCompletion = Completion<R, IntegrationLoadError>;

    // The preview of an export as a PDF.
    IntegrationExportPreview pdfPreview() const;

    // Whether it is one of the types of the services that take the message or its summary as it looks, a PDF
    // of it, or a link of the user's own.
    static bool isWholeMessage(IntegrationExportContentType type);

    // The preview of these types: the plain text without a link, the PDF's name, or a link of the user's own.
    // No value for another type, and where the host has no text.
    void loadWholeMessagePreview(IntegrationExportContentType type,
                                 Callback<std::optional<IntegrationExportPreview>> completion);

    // Asks the host for the attachments and offers the configuration that the function makes with them, each
    // marked by the exporter's validator.
    template <class Exporter, class Configuration>
    void offer(Exporter& exporter, Configuration (Exporter::*make)(IntegrationAttachments) const,
               Completion<Configuration, IntegrationLoadError> completion) {
        dataInteractor().availableAttachments(
            [self = shared_from_this(), &exporter, make,
             completion = std::move(completion)](const IntegrationAttachments& available) mutable {
                completion((exporter.*make)(exporter.createAttachmentsValidator().validate(available)));
            });
    }

    // The steps of one export, whose result `finish` gets.
    ExportSteps exportSteps(FailureRule rule, std::size_t unitCount, ResultMediator<void> finish);

    // Steps.

    // The message as a PDF file of that title, which stays there. Fails with `error` if it cannot be made.
    void makePdf(StepRun& run, const std::string& title, IntegrationExportError error,
                 StepCompletion<File> done);

    // An attachment as a local file. Fails with `missing` if the host has none.
    void fetchAttachment(StepRun& run, std::int64_t attachmentPk, IntegrationExportError missing,
                         StepCompletion<File> done);

    // The same as a part of a step that goes on with the file: `next` is a member function of the exporter
    // that gets the run, the file, the arguments and `done`.
    template <class R, class Exporter, class... Parameters, class... Arguments>
    void withAttachment(StepRun& run, std::int64_t attachmentPk, IntegrationExportError missing,
                        StepCompletion<R> done, void (Exporter::*next)(Parameters...),
                        Arguments... arguments) {
        fetchAttachment(run, attachmentPk, missing,
                        [this, &run, next, ... arguments = std::move(arguments),
                         done = std::move(done)](ExporterResult<File> file) mutable {
                            if (!file) {
                                return done(failure(file.error()));
                            }
                            (static_cast<Exporter&>(*this).*next)(run, *file, arguments..., std::move(done));
                        });
    }

    // The text of a row of the service's table. Fails with `missing` if the host has none.
    void makeText(StepRun& run, const ContentText& row, const WebLinkSettings& settings,
                  IntegrationExportError missing, StepCompletion<std::string> done);

    // A text as a file of that title, which stays there. Fails with `error` if it cannot be written.
    static ExporterResult<File> textFile(const std::string& title, const std::string& text,
                                         IntegrationExportError error);

    // The same as a step behind the one of the text; fails with `error` too where that has none.
    void makeTextFile(StepRun& run, const std::string& title, const Step<std::string>& text,
                      IntegrationExportError error, StepCompletion<File> done);

    // Loads data once the steps that wait already have ended: a member function of the exporter, called as a
    // step of its own with these arguments.
    template <class T, class Exporter, class... Parameters, class... Arguments>
    void load(LoadCompletion<T> completion, void (Exporter::*step)(Parameters...), Arguments... arguments) {
        auto loaded = std::make_shared<StepOf<T, IntegrationLoadError>>();
        auto finish = [loaded, completion = std::make_shared<LoadCompletion<T>>(std::move(completion))](
                          Result<void, IntegrationLoadError> result) {
            const auto value = result ? (*loaded)->result() : std::nullopt;
            const auto error = result ? IntegrationLoadError::internalError : result.error();
            (*completion)(value.value_or(failure(error)));
        };
        auto run = std::make_shared<TypedRun<IntegrationLoadError>>(
            nullptr, std::make_shared<ExportReportLog>(), FailureRule::stop, std::move(finish));
        Steps<ServiceExporter, IntegrationLoadError> steps(shared_from_this(), tasks(), std::move(run));
        *loaded = steps.add<T>(step, std::move(arguments)...);
        steps.execute();
    }

  private:
    void convert(std::string html, const File& path, IntegrationExportError error, StepCompletion<File> done);

    mutable std::mutex reportLock_;
    std::shared_ptr<ExportReportLog> report_;
};

} // namespace zelto
