#include <ZeltoIntegrations/OneNote/OneNoteExporter.h>

#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>
#include <ZeltoIntegrations/OneNote/OneNoteAuthoriser.h>
#include <ZeltoIntegrations/OneNote/OneNoteClient.h>
#include <ZeltoIntegrations/OneNote/OneNoteConstants.h>
#include <ZeltoIntegrations/OneNote/OneNotePage.h>

#include <Platform/UTF8.h>

#include <utility>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using ExportError = IntegrationExportError;

const auto messageLink = IntegrationLinkType::backlink(IntegrationLinkFormat::html);

// The completion of what the host gives for a page.
auto bodyOf(Completion<OneNotePage, IntegrationExportError> done) {
    return [done = std::move(done)](std::optional<std::string> html) mutable {
        if (!html || html->empty()) {
            return done(failure(ExportError::createBodyError));
        }
        done(OneNotePage{.html = *std::move(html), .parts = {}});
    };
}

} // namespace

OneNoteExporter::OneNoteExporter(ServiceAccountConfiguration configuration,
                                 std::shared_ptr<ServiceConfigurationsStorage> configurationStorage,
                                 std::shared_ptr<IntegrationsPlatformInteractorProtocol> platformInteractor,
                                 std::shared_ptr<IntegrationsDataInteractorProtocol> dataInteractor,
                                 std::optional<std::string> actionSource,
                                 bool attachmentsAreSelectedByDefault, EmailValidator validator)
    : AccountDataExporter(std::move(configuration), std::move(configurationStorage),
                          std::move(platformInteractor), std::move(dataInteractor), std::move(actionSource),
                          attachmentsAreSelectedByDefault),
      emailValidator(std::move(validator)) {}

void OneNoteExporter::loadConfiguration(
    Completion<OneNoteExportConfiguration, IntegrationLoadError> completion) {
    offer(*this, &OneNoteExporter::offered, std::move(completion));
}

OneNoteExportConfiguration OneNoteExporter::offered(IntegrationAttachments attachments) const {
    const auto types = contentTypes(exportTarget());
    return {
        .saveTo = lastExportInfo().or_else([this] { return createDefaultSaveToInfo(); }),
        .saveAs = ExportServiceHelper::saveAs(lastExportContentType(), types),
        .userNote = std::nullopt,
        .userTitle = dataInteractor().title(),
        .attachments = std::move(attachments),
        .externalLink = std::nullopt,
        .supportedContentTypes = types.supported,
    };
}

std::optional<OneNoteSaveToInfo> OneNoteExporter::createDefaultSaveToInfo() const {
    auto notebooks = myNotebooks();
    if (!notebooks || notebooks->empty() || notebooks->front().sections.empty()) {
        return std::nullopt;
    }
    auto section = notebooks->front().sections.front();
    return OneNoteSaveToInfo{.notebook = std::move(notebooks->front()), .section = std::move(section)};
}

ServiceExporterAttachmentsValidator OneNoteExporter::createAttachmentsValidator() const {
    return ServiceExporterAttachmentsValidator(OneNoteConstants::attachmentSizeLimit, std::nullopt,
                                               std::nullopt);
}

IntegrationExportContentTypes OneNoteExporter::contentTypes(IntegrationExportTarget target) const {
    const auto withMessage =
        target == IntegrationExportTarget::email ? Type::emailBacklink : Type::mtSummaryBacklink;
    IntegrationExportContentTypes types{withMessage, {Type::pdf, withMessage, Type::externalLink}};
    std::erase_if(types.supported, [this](Type type) { return notSupported.contains(type); });
    return types;
}

void OneNoteExporter::loadPreview(IntegrationExportContentType type,
                                  Callback<std::optional<IntegrationExportPreview>> completion) {
    loadWholeMessagePreview(type, std::move(completion));
}

void OneNoteExporter::fetchData(StepRun& run, DataCompletion done) {
    const auto client = createOneNoteClient(run, done);
    if (!client) {
        return;
    }
    client->fetchNotebooks([this, done = std::move(done)](auto data) mutable {
        if (!data) {
            return done(failure(loadError(data.error())));
        }
        myUser.set(data->user);
        myNotebooks.set(data->notebooks);
        done(*std::move(data));
    });
}

std::optional<OneNoteFullData> OneNoteExporter::loadedData() const {
    return dataOf(myUser(), myNotebooks());
}

std::optional<std::string> OneNoteExporter::loadUserEmail() {
    return myUser().and_then([](const auto& user) { return user.email; });
}

std::shared_ptr<ExportProgress>
OneNoteExporter::export_(OneNoteExportConfiguration configuration,
                         Completion<void, IntegrationExportError> completion) {
    auto finish = createResultMediator(configuration, std::move(completion));
    if (!isWholeMessage(configuration.saveAs)) {
        return refuseFormat(0, finish);
    }
    const auto selected = configuration.attachments.selected();
    auto steps = exportSteps(FailureRule::stop, selected.size() + 2, std::move(finish));

    const auto body = steps.add<OneNotePage>(&OneNoteExporter::createBody, configuration);
    std::vector<Step<Part>> parts;
    for (const auto& attachment : selected) {
        parts.push_back(steps.add<Part>(&OneNoteExporter::createPart, attachment.id));
    }
    steps.add<void>(&OneNoteExporter::createPage, std::move(configuration), body, std::move(parts));
    return steps.execute();
}

void OneNoteExporter::createBody(StepRun& run, const OneNoteExportConfiguration& configuration,
                                 StepCompletion<OneNotePage> done) {
    const auto& saveTo = configuration.saveTo;
    if (!saveTo || saveTo->section.notebookId != saveTo->notebook.id) {
        return done(failure(ExportError::internalError));
    }
    if (configuration.saveAs == Type::pdf) {
        return createPdfBody(run, configuration, std::move(done));
    }
    if (configuration.saveAs == Type::externalLink) {
        return createExternalLinkBody(configuration, std::move(done));
    }
    createLinkBody(run, configuration, std::move(done));
}

void OneNoteExporter::createPdfBody(StepRun& run, const OneNoteExportConfiguration& configuration,
                                    StepCompletion<OneNotePage> done) {
    makePdf(run, pageTitle(configuration), ExportError::createBodyError,
            [this, &run, configuration, done = std::move(done)](ExporterResult<File> pdf) mutable {
                if (!pdf) {
                    return done(failure(pdf.error()));
                }
                createPdfPage(run, configuration, *pdf, std::move(done));
            });
}

void OneNoteExporter::createPdfPage(StepRun& run, const OneNoteExportConfiguration& configuration,
                                    const File& pdf, StepCompletion<OneNotePage> done) {
    auto part = partOf(URL::file(pdf));
    if (!part) {
        return done(failure(ExportError::createBodyError));
    }
    createHeader(run, configuration,
                 [title = pageTitle(configuration), part = *std::move(part),
                  done = std::move(done)](const std::optional<std::string>& header) mutable {
                     if (!header) {
                         return done(failure(ExportError::createBodyError));
                     }
                     OneNotePage page{.html = oneNoteDocument(title, *header), .parts = {}};
                     page.attach(std::move(part));
                     done(std::move(page));
                 });
}

void OneNoteExporter::createLinkBody(StepRun& run, const OneNoteExportConfiguration& configuration,
                                     StepCompletion<OneNotePage> done) {
    createHeader(
        run, configuration,
        [this, &run, configuration, done = std::move(done)](std::optional<std::string> header) mutable {
            if (!header || run.isCancelled()) {
                return done(failure(ExportError::createBodyError));
            }
            if (configuration.saveAs == Type::mtSummaryBacklink) {
                return createSummaryBody(configuration, *std::move(header), std::move(done));
            }
            createMessageBody(*std::move(header), std::move(done));
        });
}

void OneNoteExporter::createMessageBody(std::string header, StepCompletion<OneNotePage> done) {
    IntegrationExportHtmlOptions options;
    options.customHeader = std::move(header);
    dataInteractor().html(std::move(options), bodyOf(std::move(done)));
}

// The summary comes without a header of ours.
void OneNoteExporter::createSummaryBody(const OneNoteExportConfiguration& configuration, std::string header,
                                        StepCompletion<OneNotePage> done) {
    dataInteractor().meetTranscript(
        IntegrationMeetingTranscriptContent::summary, IntegrationMeetingTranscriptFormat::html, std::nullopt,
        [header = std::move(header), title = pageTitle(configuration),
         give = bodyOf(std::move(done))](std::optional<std::string> summary) mutable {
            if (summary && !summary->empty()) {
                summary = withOneNoteHeader(*std::move(summary), header, title);
            }
            give(std::move(summary));
        });
}

void OneNoteExporter::createExternalLinkBody(const OneNoteExportConfiguration& configuration,
                                             StepCompletion<OneNotePage> done) {
    const auto& link = configuration.externalLink;
    bodyOf(std::move(done))(ExportServiceHelper::isNotEmpty(link)
                                ? oneNoteLinkDocument(pageTitle(configuration), *link)
                                : std::string());
}

void OneNoteExporter::createHeader(StepRun& run, const OneNoteExportConfiguration& configuration,
                                   HeaderCallback done) {
    dataInteractor().link(messageLink, [this, &run, note = configuration.userNote.value_or(""),
                                        done = std::move(done)](std::optional<std::string> link) mutable {
        if (!link || run.isCancelled()) {
            return done(std::nullopt);
        }
        addHeaderBlock(*std::move(link), std::move(note), std::move(done));
    });
}

void OneNoteExporter::addHeaderBlock(std::string link, std::string note, HeaderCallback done) {
    dataInteractor().htmlHeader([link = std::move(link), note = std::move(note),
                                 done = std::move(done)](const std::optional<std::string>& block) mutable {
        done(oneNoteHeader(link, note, block));
    });
}

void OneNoteExporter::createPart(StepRun&, std::int64_t attachmentPk, StepCompletion<Part> done) {
    dataInteractor().fetchAttachment(attachmentPk, [this, done = std::move(done)](auto fetched) mutable {
        if (!fetched || !*fetched) {
            return done(failure(ExportError::uploadAttachmentError));
        }
        done(partOf(**fetched));
    });
}

void OneNoteExporter::createPage(StepRun& run, const OneNoteExportConfiguration& configuration,
                                 const Step<OneNotePage>& body, const std::vector<Step<Part>>& parts,
                                 StepCompletion<void> done) {
    auto page = *resultOf(body);
    for (const auto& step : parts) {
        if (auto part = *resultOf(step)) {
            page.attach(*std::move(part));
        }
    }
    if (!isValidUTF8(page.html)) {
        return done(failure(ExportError::createBodyError));
    }
    const auto client = createOneNoteClient(run, done);
    if (!client) {
        return;
    }
    // The first step has made sure of the section.
    client->createNoteInSection(configuration.saveTo->section.id, std::move(page).form(),
                                reported(run,
                                         {.kind = "page",
                                          .name = pageTitle(configuration),
                                          .error = std::nullopt,
                                          .warning = "OneNote creation page error: ",
                                          .function = "createPage(configuration:body:parts:updateProgress:)"},
                                         std::move(done)));
}

std::string OneNoteExporter::pageTitle(const OneNoteExportConfiguration& configuration) const {
    const bool isOwn = configuration.saveAs == Type::pdf || configuration.saveAs == Type::externalLink;
    return titleOr(isOwn ? configuration.userTitle : std::nullopt);
}

OneNoteExporter::Part OneNoteExporter::partOf(const URL& file) {
    auto part = oneNotePart(file.filePath());
    if (!part) {
        lvxLogError("Failed to create multipartData from file " + file.absoluteString(),
                    "createMultipartData(fromFile:)");
    }
    return part;
}

template <class Done>
std::shared_ptr<OneNoteClient> OneNoteExporter::createOneNoteClient(StepRun& run, Done& done) {
    return clientOf<OneNoteClient, OneNoteAuthoriser>(run, done, emailValidator);
}

} // namespace zelto
