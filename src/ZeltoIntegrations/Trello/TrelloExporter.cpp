#include <ZeltoIntegrations/Trello/TrelloExporter.h>

#include <ZeltoIntegrations/Content/AttachmentsValidation.h>
#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>
#include <ZeltoIntegrations/Trello/TrelloAuthoriser.h>
#include <ZeltoIntegrations/Trello/TrelloClient.h>
#include <ZeltoIntegrations/Trello/TrelloConstants.h>

#include <Platform/Text.h>

#include <utility>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using ExportError = IntegrationExportError;

constexpr auto lastExportInfoKey = "lastExportInfo";
constexpr auto allBoardsKey = "allBoards";
constexpr auto userKey = "user";

constexpr auto descriptionSeparator = "\n\n";

const auto cardLink = IntegrationLinkType::safeBacklink(IntegrationLinkFormat::markdown);
const auto previewLink = IntegrationLinkType::backlink(IntegrationLinkFormat::raw);

} // namespace

std::optional<TrelloSaveToInfo> TrelloExporter::lastExportInfo() const {
    return getCachedValue<TrelloSaveToInfo>(lastExportInfoKey);
}

void TrelloExporter::setLastExportInfo(const std::optional<TrelloSaveToInfo>& info) {
    setCachedValue(info, lastExportInfoKey);
}

std::optional<std::vector<TrelloBoard>> TrelloExporter::allBoards() const {
    return getCachedValue<std::vector<TrelloBoard>>(allBoardsKey);
}

void TrelloExporter::setAllBoards(const std::optional<std::vector<TrelloBoard>>& boards) {
    setCachedValue(boards, allBoardsKey);
}

std::optional<TrelloUser> TrelloExporter::user() const {
    return getCachedValue<TrelloUser>(userKey);
}

void TrelloExporter::setUser(const std::optional<TrelloUser>& user) {
    setCachedValue(user, userKey);
}

void TrelloExporter::loadConfiguration(
    Completion<TrelloExportConfiguration, IntegrationLoadError> completion) {
    dataInteractor().availableAttachments(
        [self = self(), completion = std::move(completion)](const IntegrationAttachments& available) mutable {
            const auto types = self->contentTypes(self->exportTarget());
            auto saveTo = self->lastExportInfo();
            if (!saveTo) {
                saveTo = self->createDefaultSaveToInfo();
            }
            completion(TrelloExportConfiguration{
                .saveTo = std::move(saveTo),
                .saveAs = self->lastExportContentType().value_or(types.default_),
                .userTitle = self->dataInteractor().title(),
                .attachments = self->validated(available),
                .supportedContentTypes = types.supported,
            });
        });
}

std::optional<TrelloSaveToInfo> TrelloExporter::createDefaultSaveToInfo() const {
    auto boards = allBoards();
    if (!boards || boards->empty() || boards->front().lists.empty()) {
        return std::nullopt;
    }
    auto& first = boards->front();
    auto list = first.lists.front();
    return TrelloSaveToInfo{.board = std::move(first), .list = std::move(list)};
}

IntegrationAttachments TrelloExporter::validated(const IntegrationAttachments& attachments) const {
    const auto known = user();
    const auto sizeLimit = known && known->isPremium ? TrelloConstants::attachmentSizeLimitForPremiumAccount
                                                     : TrelloConstants::attachmentSizeLimitForFreeAccount;
    return ServiceExporterAttachmentsValidator(sizeLimit, TrelloConstants::attachmentsCountLimit,
                                               std::nullopt)
        .validate(attachments);
}

IntegrationExportContentTypes TrelloExporter::contentTypes(IntegrationExportTarget) const {
    return {Type::pdf, {Type::pdf, Type::backLink}};
}

void TrelloExporter::loadPreview(IntegrationExportContentType type,
                                 Callback<std::optional<IntegrationExportPreview>> completion) {
    if (type == Type::pdf) {
        return completion(
            IntegrationExportPreview::pdf(ExportServiceHelper::pdfName(dataInteractor().title())));
    }
    if (type != Type::backLink) {
        return completion(std::nullopt);
    }
    dataInteractor().link(previewLink, [completion =
                                            std::move(completion)](std::optional<std::string> link) mutable {
        completion(link ? std::optional(IntegrationExportPreview::backLink(*std::move(link))) : std::nullopt);
    });
}

void TrelloExporter::loadData(bool force,
                              Completion<std::optional<TrelloFullData>, IntegrationLoadError> completion) {
    using Done = Completion<std::optional<TrelloFullData>, IntegrationLoadError>;
    executeLoading<std::optional<TrelloFullData>>(
        [self = self(), force](Done done) {
            if (!force) {
                return done(self->loadedData());
            }
            const auto client = self->createTrelloClient();
            if (!client) {
                return done(failure(IntegrationLoadError::oauthError));
            }
            client->getUser([self, client, done = std::move(done)](auto user) mutable {
                std::optional<IntegrationLoadError> error;
                if (user) {
                    self->setUser(*user);
                } else {
                    error = loadError(user.error());
                }
                // The boards are worth having without the user too.
                client->getAllActiveBoards([self, error, done = std::move(done)](auto boards) mutable {
                    if (boards) {
                        self->setAllBoards(*boards);
                    } else {
                        error = loadError(boards.error());
                    }
                    if (error) {
                        return done(failure(*error));
                    }
                    done(self->loadedData());
                });
            });
        },
        std::move(completion));
}

std::optional<TrelloFullData> TrelloExporter::loadedData() const {
    auto person = user();
    auto boards = allBoards();
    if (!person || !boards) {
        return std::nullopt;
    }
    return TrelloFullData{.user = *std::move(person), .boards = *std::move(boards)};
}

void TrelloExporter::fetchServiceData(Completion<void, IntegrationLoadError> withCompletion) {
    loadData(true, [completion = std::move(withCompletion)](const auto& loaded) mutable {
        completion(loaded ? Result<void, IntegrationLoadError>() : failure(loaded.error()));
    });
}

std::optional<std::string> TrelloExporter::loadUserEmail() {
    const auto known = user();
    return known ? std::optional(known->email) : std::nullopt;
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
    Steps steps(self(), unitCount, std::move(finish));

    const auto card = steps.add<CardID>(&TrelloExporter::createTrelloCard, configuration);
    if (makesPdf) {
        const auto pdf = steps.add<File>(&TrelloExporter::createPdfFile, configuration);
        steps.add<void>(&TrelloExporter::uploadFileToTrelloCard, card, pdf);
    }
    for (const auto& attachment : selected) {
        const auto file = steps.add<File>(&TrelloExporter::fetchAttachment, attachment.id);
        steps.add<void>(&TrelloExporter::uploadFileToTrelloCard, card, file);
    }
    return steps.execute();
}

void TrelloExporter::createTrelloCard(const TrelloExportConfiguration& configuration,
                                      UpdateProgress updateProgress, StepCompletion<CardID> done) {
    auto name = titleOr(configuration.userTitle);
    dataInteractor().link(cardLink, [self = self(), configuration, name = std::move(name),
                                     done = counted(std::move(updateProgress), std::move(done))](
                                        std::optional<std::string> link) mutable {
        self->dataInteractor().messagePlainText(
            cardLink, [self, configuration = std::move(configuration), name = std::move(name), link,
                       done = std::move(done)](const std::optional<std::string>& text) mutable {
                warnOfLongDescription(name, link.value_or(""), text.value_or(""));
                self->addCard(configuration, std::move(name), std::move(link), std::move(done));
            });
    });
}

// Nothing but the warning comes of the description: what travels is the link alone.
void TrelloExporter::warnOfLongDescription(const std::string& name, const std::string& link,
                                           const std::string& text) {
    if (text.empty()) {
        return;
    }
    const auto length = characterCount(text);
    if (characterCount(link) + characterCount(descriptionSeparator) + length >
        TrelloConstants::symbolsLimit) {
        lvxLogWarn("Description for export '" + name + "' is too long: " + std::to_string(length) +
                       ". Leave first " + std::to_string(TrelloConstants::symbolsLimit) + " symbols.",
                   "createTrelloCard(configuration:updateProgress:)");
    }
}

void TrelloExporter::addCard(const TrelloExportConfiguration& configuration, std::string name,
                             std::optional<std::string> link, StepCompletion<CardID> done) {
    const auto client = createTrelloClient();
    if (!client) {
        return done(failure(ExportError::oauthError));
    }
    if (!configuration.saveTo) {
        return done(failure(ExportError::createTaskError));
    }
    client->addCard(name, link, configuration.saveTo->list.id,
                    [self = self(), name, done = std::move(done)](auto card) mutable {
                        if (!card) {
                            lvxLogWarn("Trello creation card error: " + std::string(nameOf(card.error())),
                                       "createTrelloCard(configuration:updateProgress:)");
                            self->reportRefused("card", std::move(name), card.error());
                            return done(failure(ExportError::createTaskError));
                        }
                        self->reportMade("card", std::move(name), *card);
                        done(*std::move(card));
                    });
}

void TrelloExporter::createPdfFile(const TrelloExportConfiguration& configuration,
                                   UpdateProgress updateProgress, StepCompletion<File> done) {
    makePdf(titleOr(configuration.userTitle), counted(std::move(updateProgress), std::move(done)));
}

void TrelloExporter::fetchAttachment(std::int64_t attachmentPk, UpdateProgress updateProgress,
                                     StepCompletion<File> done) {
    fetchFile(attachmentPk, ExportError::uploadAttachmentError,
              counted(std::move(updateProgress), std::move(done)));
}

void TrelloExporter::uploadFileToTrelloCard(const Step<CardID>& createTrelloCardOperation,
                                            const Step<File>& fetchAttachmentOperation,
                                            UpdateProgress updateProgress, StepCompletion<void> done) {
    const auto card = resultOf(createTrelloCardOperation);
    const auto file = resultOf(fetchAttachmentOperation);
    if (!card || !file) {
        return done(failure(ExportError::uploadAttachmentError));
    }
    const auto client = createTrelloClient();
    if (!client) {
        return done(failure(ExportError::oauthError));
    }
    client->addAttachment(
        *file, *card,
        [self = self(), name = file->filename().native(),
         done = counted(std::move(updateProgress), std::move(done))](auto added) mutable {
            if (!added) {
                lvxLogWarn("Trello creation attachment error: " + std::string(nameOf(added.error())),
                           "uploadFileToTrelloCard(createTrelloCardOperation:fetchAttachmentOperation:"
                           "updateProgress:)");
                self->reportRefused("file", std::move(name), added.error());
                return done(failure(ExportError::uploadAttachmentError));
            }
            self->reportMade("file", std::move(name));
            done({});
        });
}

std::shared_ptr<TrelloClient> TrelloExporter::createTrelloClient() {
    return createClient<TrelloClient, TrelloAuthoriser>();
}

std::shared_ptr<TrelloExporter> TrelloExporter::self() {
    return std::static_pointer_cast<TrelloExporter>(shared_from_this());
}

} // namespace zelto
