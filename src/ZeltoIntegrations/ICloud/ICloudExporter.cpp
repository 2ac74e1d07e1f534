#include <ZeltoIntegrations/ICloud/ICloudExporter.h>

#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>
#include <ZeltoIntegrations/ICloud/ICloudClient.h>

#include <system_error>
#include <utility>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using ExportError = IntegrationExportError;

// The text of an export that is no PDF. The target plays no part.
constexpr ContentText texts[] = {{Type::emailBacklink, ContentText::Source::messagePlainText,
                                  ContentText::Link::backlink, IntegrationLinkFormat::raw}};

std::optional<std::uint64_t> sizeOf(const std::filesystem::path& file) {
    std::error_code error;
    const auto size = std::filesystem::file_size(file, error);
    return error ? std::nullopt : std::optional<std::uint64_t>(size);
}

} // namespace

void ICloudExporter::loadConfiguration(
    Completion<ICloudExportConfiguration, IntegrationLoadError> completion) {
    offer(*this, &ICloudExporter::offered, std::move(completion));
}

ICloudExportConfiguration ICloudExporter::offered(IntegrationAttachments attachments) const {
    const auto types = contentTypes(exportTarget());
    return {
        .saveAs = ExportServiceHelper::saveAs(lastExportContentType(), types),
        .userTitle = dataInteractor().title(),
        .attachments = std::move(attachments),
        .supportedContentTypes = types.supported,
    };
}

ServiceExporterAttachmentsValidator ICloudExporter::createAttachmentsValidator() const {
    return ServiceExporterAttachmentsValidator(std::nullopt, std::nullopt, std::nullopt);
}

IntegrationExportContentTypes ICloudExporter::contentTypes(IntegrationExportTarget) const {
    return {Type::pdf, {Type::pdf, Type::emailBacklink}};
}

void ICloudExporter::loadPreview(IntegrationExportContentType type,
                                 Callback<std::optional<IntegrationExportPreview>> completion) {
    if (type == Type::pdf) {
        return completion(pdfPreview());
    }
    loadTextPreview(dataInteractor(), type, texts, {}, std::move(completion));
}

std::shared_ptr<ExportProgress> ICloudExporter::export_(ICloudExportConfiguration configuration,
                                                        std::shared_ptr<ICloudClient> client,
                                                        Completion<void, IntegrationExportError> completion) {
    auto finish = createResultMediator(configuration, std::move(completion));
    if (configuration.saveAs != Type::pdf && !contentTextFor(configuration.saveAs, texts)) {
        return refuseFormat(0, finish);
    }
    const auto selected = configuration.attachments.selected();
    auto steps = exportSteps(FailureRule::stop, selected.size() + 2, std::move(finish));

    const auto file = steps.add<File>(&ICloudExporter::makeFile, std::move(configuration));
    steps.add<void>(&ICloudExporter::uploadMessage, client, file);
    for (const auto& attachment : selected) {
        steps.add<void>(&ICloudExporter::uploadAttachment, client, attachment.id);
    }
    return steps.execute();
}

void ICloudExporter::makeFile(StepRun& run, const ICloudExportConfiguration& configuration,
                              StepCompletion<File> done) {
    const auto title = titleOr(configuration.userTitle);
    if (configuration.saveAs == Type::pdf) {
        return makePdf(run, title, ExportError::convertError, std::move(done));
    }
    makeText(run, *contentTextFor(configuration.saveAs, texts), {}, ExportError::createBodyError,
             [title, done = std::move(done)](const ExporterResult<std::string>& text) mutable {
                 done(text ? textFile(title, *text, ExportError::createBodyError) : failure(text.error()));
             });
}

void ICloudExporter::uploadMessage(StepRun& run, const Client& client, const Step<File>& file,
                                   StepCompletion<void> done) {
    uploadFile(run, *resultOf(file), client, std::move(done));
}

void ICloudExporter::uploadAttachment(StepRun& run, const Client& client, std::int64_t attachmentPk,
                                      StepCompletion<void> done) {
    withAttachment(run, attachmentPk, ExportError::uploadAttachmentError, std::move(done),
                   &ICloudExporter::uploadFetched, client);
}

void ICloudExporter::uploadFetched(StepRun& run, const File& file, const Client& client,
                                   StepCompletion<void> done) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(file, ignored)) {
        return done(failure(ExportError::uploadAttachmentError));
    }
    uploadFile(run, file, client, std::move(done));
}

void ICloudExporter::uploadFile(StepRun& run, const File& file, const Client& client,
                                StepCompletion<void> done) {
    const auto present = run.client<ICloudClient>([&] {
        updateActiveClient(client);
        return client;
    });
    if (!present) {
        return done(failure(ExportError::internalError));
    }
    const auto place = run.report().begin("file", file.filename().native(), sizeOf(file));
    present->uploadFile(
        file, [&run, place, done = std::move(done)](Result<void, ICloudClientError> uploaded) mutable {
            if (uploaded) {
                run.report().made(place, std::nullopt);
                return done({});
            }
            run.report().refused(place, serviceClientError(uploaded.error()));
            lvxLogWarn("iCloud uploading file error: " + std::string(nameOf(uploaded.error())),
                       "uploadFile(path:updateProgress:)");
            done(failure(exportError(uploaded.error())));
        });
}

} // namespace zelto
