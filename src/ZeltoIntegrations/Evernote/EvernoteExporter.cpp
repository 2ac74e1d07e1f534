#include <ZeltoIntegrations/Evernote/EvernoteExporter.h>

#include <ZeltoIntegrations/Evernote/EvernoteClient.h>
#include <ZeltoIntegrations/Evernote/EvernoteConstants.h>
#include <ZeltoIntegrations/Evernote/EvernoteContent.h>
#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>
#include <ZeltoIntegrations/Helpers/HTMLText.h>

#include <Platform/FileManager.h>

#include <iterator>
#include <utility>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using ExportError = IntegrationExportError;
using Enml = std::optional<IntegrationsInteractorEnml>;

constexpr auto fetchFunction = "fetchAttachment(attachmentPk:updateProgress:)";

std::optional<IntegrationsInteractorAttachment> attachmentOf(const std::filesystem::path& file) {
    auto bytes = FileManager::readFile(file);
    if (!bytes) {
        return std::nullopt;
    }
    return IntegrationsInteractorAttachment{file.filename().native(), ExportServiceHelper::mimeType(file),
                                            *std::move(bytes)};
}

// Delivers what the host has made of HTML as the content of a note.
Callback<Enml> enmlCompletion(std::string sourceUrl, Completion<EvernoteContent, ExportError> done) {
    return [sourceUrl = std::move(sourceUrl), done = std::move(done)](Enml made) mutable {
        if (!made) {
            return done(failure(ExportError::internalError));
        }
        done(
            EvernoteContent{std::move(made->enml), std::move(made->inlineAttachments), std::move(sourceUrl)});
    };
}

} // namespace

void EvernoteExporter::loadConfiguration(
    Completion<EvernoteExportConfiguration, IntegrationLoadError> completion) {
    offer(*this, &EvernoteExporter::offered, std::move(completion));
}

EvernoteExportConfiguration EvernoteExporter::offered(IntegrationAttachments attachments) const {
    const auto types = contentTypes(exportTarget());
    return {
        .saveTo = lastExportInfo().or_else([this] { return createDefaultSaveToInfo(); }),
        .saveAs = ExportServiceHelper::saveAs(lastExportContentType(), types),
        .userTitle = dataInteractor().title(),
        .attachments = std::move(attachments),
        .tags = lastExportTags().value_or(std::vector<EvernoteTag>()),
        .externalLink = std::nullopt,
        .remark = std::nullopt,
        .supportedContentTypes = types.supported,
    };
}

std::optional<EvernoteNotebook> EvernoteExporter::createDefaultSaveToInfo() const {
    auto notebooks = cachedNotebooks();
    if (!notebooks || notebooks->empty()) {
        return std::nullopt;
    }
    return std::move(notebooks->front());
}

ServiceExporterAttachmentsValidator EvernoteExporter::createAttachmentsValidator() const {
    const auto known = cachedUser();
    const bool isPremium = known && known->premium;
    return ServiceExporterAttachmentsValidator(std::nullopt, std::nullopt,
                                               isPremium
                                                   ? EvernoteConstants::totalAttachmentsSizeLimitOfPremiumUser
                                                   : EvernoteConstants::totalAttachmentsSizeLimitOfFreeUser);
}

IntegrationExportContentTypes EvernoteExporter::contentTypes(IntegrationExportTarget target) const {
    const auto message =
        target == IntegrationExportTarget::meetingNote ? Type::mtSummaryBacklink : Type::emailBacklink;
    IntegrationExportContentTypes types{message, {message, Type::pdf, Type::externalLink}};
    std::erase_if(types.supported, [this](Type type) { return notSupported.contains(type); });
    return types;
}

void EvernoteExporter::loadPreview(IntegrationExportContentType type,
                                   Callback<std::optional<IntegrationExportPreview>> completion) {
    loadWholeMessagePreview(type, std::move(completion));
}

std::shared_ptr<EvernoteClient> EvernoteExporter::createClient(StepRun& run) {
    return run.client<EvernoteClient>([this] {
        auto client = platformInteractor().evernoteClient(accountConfiguration());
        updateActiveClient(client);
        return client;
    });
}

void EvernoteExporter::fetchData(StepRun& run, DataCompletion done) {
    const auto client = createClient(run);
    if (!client) {
        return done(failure(IntegrationLoadError::internalError));
    }
    client->fetchData([this, done = std::move(done)](Result<EvernoteData, EvernoteClientError> data) mutable {
        if (!data) {
            return done(failure(loadError(data.error())));
        }
        cachedUser.set(data->user);
        cachedNotebooks.set(data->notebooks);
        cachedTags.set(data->tags);
        done(*std::move(data));
    });
}

std::optional<EvernoteData> EvernoteExporter::loadedData() const {
    return dataOf(cachedUser(), cachedNotebooks(), cachedTags());
}

std::optional<std::string> EvernoteExporter::loadUserEmail() {
    return cachedUser().transform([](const auto& user) { return user.username; });
}

std::shared_ptr<ExportProgress>
EvernoteExporter::export_(EvernoteExportConfiguration configuration,
                          Completion<void, IntegrationExportError> completion) {
    auto finish = createResultMediator(configuration, std::move(completion));
    if (!isWholeMessage(configuration.saveAs)) {
        return refuseFormat(0, finish);
    }
    const auto selected = configuration.attachments.selected();
    auto steps = exportSteps(FailureRule::stop, selected.size() + 2, std::move(finish));

    Files files;
    for (const auto& attachment : selected) {
        files.push_back(steps.add<ReadAttachment>(&EvernoteExporter::readAttachment, attachment.id));
    }
    const auto content = steps.add<EvernoteContent>(&EvernoteExporter::makeContent, configuration);
    steps.add<void>(&EvernoteExporter::createNote, std::move(configuration), std::move(files), content);
    return steps.execute();
}

void EvernoteExporter::readAttachment(StepRun&, std::int64_t attachmentPk,
                                      StepCompletion<ReadAttachment> done) {
    using Fetched = Result<std::optional<URL>, AttachmentFetchError>;
    dataInteractor().fetchAttachment(attachmentPk, [done = std::move(done)](const Fetched& fetched) mutable {
        auto attachment = fetched && *fetched ? attachmentOf((*fetched)->filePath()) : std::nullopt;
        if (attachment) {
            return done(std::make_shared<Attachment>(*std::move(attachment)));
        }
        lvxLogWarn(fetched ? "Evernote exporter encountered unknown error while fetching attachment"
                           : "Evernote exporter encountered with " + std::string(nameOf(fetched.error())) +
                                 " while fetching attachment",
                   fetchFunction);
        done(failure(ExportError::uploadAttachmentError));
    });
}

void EvernoteExporter::makeContent(StepRun& run, const EvernoteExportConfiguration& configuration,
                                   StepCompletion<EvernoteContent> done) {
    if (configuration.saveAs == Type::externalLink) {
        return enmlContent(configuration, std::move(done));
    }
    dataInteractor().link(
        IntegrationLinkType::backlink(IntegrationLinkFormat::html),
        [this, &run, configuration, done = std::move(done)](std::optional<std::string> link) mutable {
            if (!link) {
                return failWithoutLink(std::move(done));
            }
            askForURL(run, configuration, htmlRemark(configuration.remark) + *link, std::move(done));
        });
}

void EvernoteExporter::failWithoutLink(StepCompletion<EvernoteContent> done) {
    lvxLogWarn("Evernote exporter has no link", "createContent(configuration:)");
    done(failure(ExportError::internalError));
}

void EvernoteExporter::askForURL(StepRun& run, const EvernoteExportConfiguration& configuration,
                                 std::string header, StepCompletion<EvernoteContent> done) {
    dataInteractor().link(IntegrationLinkType::backlink(IntegrationLinkFormat::raw),
                          [this, &run, configuration, header = std::move(header),
                           done = std::move(done)](std::optional<std::string> url) mutable {
                              if (!url) {
                                  return failWithoutLink(std::move(done));
                              }
                              makeLinkedContent(run, configuration, std::move(header), *std::move(url),
                                                std::move(done));
                          });
}

void EvernoteExporter::makeLinkedContent(StepRun& run, const EvernoteExportConfiguration& configuration,
                                         std::string header, std::string sourceUrl,
                                         StepCompletion<EvernoteContent> done) {
    if (run.isCancelled()) {
        return done(failure(ExportError::canceled));
    }
    if (configuration.saveAs == Type::pdf) {
        return pdfContent(run, titleOr(configuration.userTitle),
                          {std::move(header), {}, std::move(sourceUrl)}, std::move(done));
    }
    if (configuration.saveAs == Type::mtSummaryBacklink) {
        return summaryContent(run, std::move(header), std::move(sourceUrl), std::move(done));
    }
    htmlContent(std::move(header), std::move(sourceUrl), std::move(done));
}

void EvernoteExporter::htmlContent(std::string header, std::string sourceUrl,
                                   StepCompletion<EvernoteContent> done) {
    dataInteractor().enml(IntegrationExportHtmlOptions{.customHeader = std::move(header)},
                          enmlCompletion(std::move(sourceUrl), std::move(done)));
}

// The host gives the summary alone only as HTML, and makes a note of that.
void EvernoteExporter::summaryContent(StepRun& run, std::string header, std::string sourceUrl,
                                      StepCompletion<EvernoteContent> done) {
    dataInteractor().meetTranscript(
        IntegrationMeetingTranscriptContent::summary, IntegrationMeetingTranscriptFormat::html, std::nullopt,
        [this, &run, header = std::move(header), sourceUrl = std::move(sourceUrl),
         done = std::move(done)](std::optional<std::string> summary) mutable {
            if (!summary || run.isCancelled()) {
                return done(failure(ExportError::internalError));
            }
            dataInteractor().enml(header + *summary, enmlCompletion(std::move(sourceUrl), std::move(done)));
        });
}

void EvernoteExporter::pdfContent(StepRun& run, const std::string& title, EvernoteContent content,
                                  StepCompletion<EvernoteContent> done) {
    makePdf(run, title, ExportError::internalError,
            [content = std::move(content), done = std::move(done)](const ExporterResult<File>& file) mutable {
                auto pdf = file ? attachmentOf(*file) : std::nullopt;
                if (!pdf) {
                    return done(failure(ExportError::internalError));
                }
                content.attachments.push_back(*std::move(pdf));
                done(std::move(content));
            });
}

void EvernoteExporter::enmlContent(const EvernoteExportConfiguration& configuration,
                                   StepCompletion<EvernoteContent> done) {
    const auto& link = configuration.externalLink;
    if (!ExportServiceHelper::isNotEmpty(link)) {
        return failWithoutLink(std::move(done));
    }
    done(EvernoteContent{htmlRemark(configuration.remark) + htmlLink(*link), {}, *link});
}

void EvernoteExporter::createNote(StepRun& run, const EvernoteExportConfiguration& configuration,
                                  const Files& files, const Step<EvernoteContent>& content,
                                  StepCompletion<void> done) {
    const auto client = createClient(run);
    if (!client) {
        return done(failure(ExportError::internalError));
    }
    if (!configuration.saveTo) {
        return done(failure(ExportError::createTaskError));
    }
    auto made = *resultOf(content);
    std::vector<Attachment> attachments;
    for (const auto& file : files) {
        attachments.push_back(std::move(**resultOf(file)));
    }
    std::ranges::move(made.attachments, std::back_inserter(attachments));
    const auto title = titleOr(configuration.userTitle);
    const auto place = run.report().begin("note", title);
    client->createNote(
        title, std::move(made.text), *configuration.saveTo, configuration.tags,
        toEvernoteAttachments(std::move(attachments)), std::move(made.sourceUrl),
        [&run, place, done = std::move(done)](Result<void, EvernoteClientError> created) mutable {
            if (created) {
                run.report().made(place, std::nullopt);
                return done({});
            }
            run.report().refused(place, serviceClientError(created.error()));
            lvxLogWarn("Evernote exporter encountered with " + std::string(nameOf(created.error())) +
                           " while creating note",
                       "createNote(configuration:updateProgress:)");
            done(failure(ExportError::createTaskError));
        });
}

} // namespace zelto
