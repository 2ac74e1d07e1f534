#include <ZeltoIntegrations/Trello/TrelloExporter.h>

#include <ZeltoIntegrations/Trello/TrelloAuthoriser.h>
#include <ZeltoIntegrations/Trello/TrelloClient.h>
#include <ZeltoIntegrations/Trello/TrelloConstants.h>

#include <Platform/Text.h>

#include <utility>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using ExportError = IntegrationExportError;
using Loaded = Result<std::optional<TrelloFullData>, IntegrationLoadError>;

const auto cardLink = IntegrationLinkType::safeBacklink(IntegrationLinkFormat::markdown);
constexpr ContentText previews[] = {
    {Type::backLink, ContentText::Source::link, ContentText::Link::backlink, IntegrationLinkFormat::raw}};

} // namespace

void TrelloExporter::loadConfiguration(LoadCompletion<TrelloExportConfiguration> completion) {
    offer(*this, &TrelloExporter::offered, std::move(completion));
}

TrelloExportConfiguration TrelloExporter::offered(IntegrationAttachments attachments) const {
    const auto types = contentTypes(exportTarget());
    return {
        .saveTo = lastExportInfo().or_else([this] { return createDefaultSaveToInfo(); }),
        .saveAs = lastExportContentType().value_or(types.default_),
        .userTitle = dataInteractor().title(),
        .attachments = std::move(attachments),
        .supportedContentTypes = types.supported,
    };
}

std::optional<TrelloSaveToInfo> TrelloExporter::createDefaultSaveToInfo() const {
    const auto boards = allBoards();
    if (!boards || boards->empty() || boards->front().lists.empty()) {
        return std::nullopt;
    }
    const auto& first = boards->front();
    return TrelloSaveToInfo{.board = first, .list = first.lists.front()};
}

ServiceExporterAttachmentsValidator TrelloExporter::createAttachmentsValidator() const {
    const auto known = user();
    return ServiceExporterAttachmentsValidator(
        TrelloConstants::attachmentSizeLimit(known && known->isPremium),
        TrelloConstants::attachmentsCountLimit, std::nullopt);
}

IntegrationExportContentTypes TrelloExporter::contentTypes(IntegrationExportTarget) const {
    return {Type::pdf, {Type::pdf, Type::backLink}};
}

void TrelloExporter::loadPreview(IntegrationExportContentType type,
                                 Callback<std::optional<IntegrationExportPreview>> completion) {
    if (type == Type::pdf) {
        return completion(pdfPreview());
    }
    loadTextPreview(dataInteractor(), type, previews, {}, std::move(completion));
}

void TrelloExporter::fetchData(StepRun& run, DataCompletion done) {
    const auto client = createTrelloClient(run, done);
    if (!client) {
        return;
    }
    client->getUser([this, client, done = std::move(done)](auto loaded) mutable {
        if (loaded) {
            user.set(*loaded);
        }
        // The boards are worth having without the user too.
        loadBoards(*client, loaded ? std::nullopt : std::optional(loadError(loaded.error())),
                   std::move(done));
    });
}

void TrelloExporter::loadBoards(TrelloClient& client, std::optional<IntegrationLoadError> userError,
                                LoadCompletion<std::optional<TrelloFullData>> done) {
    client.getAllActiveBoards([this, userError, done = std::move(done)](auto boards) mutable {
        if (!boards) {
            return done(failure(loadError(boards.error())));
        }
        allBoards.set(*boards);
        done(userError ? Loaded(failure(*userError)) : Loaded(loadedData()));
    });
}

std::optional<TrelloFullData> TrelloExporter::loadedData() const {
    return dataOf(user(), allBoards());
}

std::optional<std::string> TrelloExporter::loadUserEmail() {
    return user().transform([](const auto& user) { return user.email; });
}

std::shared_ptr<ExportProgress> TrelloExporter::export_(TrelloExportConfiguration configuration,
                                                        Completion<void, IntegrationExportError> completion) {
    auto finish = createResultMediator(configuration, std::move(completion));
    const auto selected = configuration.attachments.selected();
    const bool makesPdf = configuration.saveAs == Type::pdf;
    const auto unitCount = 2 * selected.size() + 1 + (makesPdf ? 2 : 0);
    if (!makesPdf && configuration.saveAs != Type::backLink) {
        return refuseFormat(unitCount, finish);
    }
    auto steps = exportSteps(FailureRule::goOn, unitCount, std::move(finish));

    const auto card = steps.add<CardID>(&TrelloExporter::createTrelloCard, configuration);
    if (makesPdf) {
        const auto pdf = steps.add<File>(&TrelloExporter::makePdf, titleOr(configuration.userTitle),
                                         ExportError::convertError);
        steps.add<void>(&TrelloExporter::uploadFileToTrelloCard, card, pdf);
    }
    for (const auto& attachment : selected) {
        const auto file = steps.add<File>(&TrelloExporter::fetchAttachment, attachment.id,
                                          ExportError::uploadAttachmentError);
        steps.add<void>(&TrelloExporter::uploadFileToTrelloCard, card, file);
    }
    return steps.execute();
}

void TrelloExporter::createTrelloCard(StepRun& run, const TrelloExportConfiguration& configuration,
                                      StepCompletion<CardID> done) {
    dataInteractor().link(cardLink, [this, &run, configuration, done = std::move(done)](auto link) mutable {
        if (run.isCancelled()) {
            return done(failure(ExportError::canceled));
        }
        checkDescription(run, configuration, std::move(link), std::move(done));
    });
}

// The description that goes out is the link alone; only the warning is about the link with the text.
void TrelloExporter::checkDescription(StepRun& run, const TrelloExportConfiguration& configuration,
                                      std::optional<std::string> link, StepCompletion<CardID> done) {
    dataInteractor().messagePlainText(
        cardLink, [this, &run, configuration, link = std::move(link),
                   done = std::move(done)](const std::optional<std::string>& text) mutable {
            warnOfLongDescription(titleOr(configuration.userTitle), link.value_or(""), text.value_or(""));
            addCard(run, configuration, link, std::move(done));
        });
}

void TrelloExporter::warnOfLongDescription(const std::string& name, const std::string& link,
                                           const std::string& text) {
    const auto length = characterCount(text);
    const auto composed = characterCount(link + "\n\n") + length;
    if (length == 0 || composed <= TrelloConstants::symbolsLimit) {
        return;
    }
    lvxLogWarn("Description for export '" + name + "' is too long: " + std::to_string(length) +
                   ". Leave first " + std::to_string(TrelloConstants::symbolsLimit) + " symbols.",
               "createTrelloCard(configuration:updateProgress:)");
}

void TrelloExporter::addCard(StepRun& run, const TrelloExportConfiguration& configuration,
                             const std::optional<std::string>& link, StepCompletion<CardID> done) {
    const auto client = createTrelloClient(run, done);
    if (!client) {
        return;
    }
    if (!configuration.saveTo) {
        return done(failure(ExportError::createTaskError));
    }
    const auto name = titleOr(configuration.userTitle);
    client->addCard(name, link, configuration.saveTo->list.id,
                    reported(run,
                             {.kind = "card",
                              .name = name,
                              .error = ExportError::createTaskError,
                              .warning = "Trello creation card error: ",
                              .function = "createTrelloCard(configuration:updateProgress:)"},
                             std::move(done)));
}

void TrelloExporter::uploadFileToTrelloCard(StepRun& run, const Step<CardID>& createTrelloCardOperation,
                                            const Step<File>& fetchAttachmentOperation,
                                            StepCompletion<void> done) {
    const auto card = resultOf(createTrelloCardOperation);
    const auto file = resultOf(fetchAttachmentOperation);
    if (!card || !file) {
        return done(failure(ExportError::uploadAttachmentError));
    }
    const auto client = createTrelloClient(run, done);
    if (!client) {
        return;
    }
    client->addAttachment(*file, *card,
                          reported(run,
                                   uploading(*file, "Trello creation attachment error: ",
                                             "uploadFileToTrelloCard(createTrelloCardOperation:"
                                             "fetchAttachmentOperation:updateProgress:)"),
                                   std::move(done)));
}

template <class Done>
std::shared_ptr<TrelloClient> TrelloExporter::createTrelloClient(StepRun& run, Done& done) {
    return clientOf<TrelloClient, TrelloAuthoriser>(run, done);
}

} // namespace zelto
