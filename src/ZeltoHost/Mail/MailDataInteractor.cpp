#include <Platform/Base64.h>
#include <Platform/FileManager.h>
#include <Platform/Text.h>
#include <ZeltoHost/HTML/CleanedHTML.h>
#include <ZeltoHost/HTML/FormattedComponents.h>
#include <ZeltoHost/Interactor/EnmlContent.h>
#include <ZeltoHost/Interactor/MessageHeader.h>
#include <ZeltoHost/Mail/ContentReferences.h>
#include <ZeltoHost/Mail/MailBodyText.h>
#include <ZeltoHost/Mail/MailContent.h>
#include <ZeltoHost/Mail/MailDataInteractor.h>
#include <ZeltoHost/Mail/MailFileErrorInternal.h>
#include <ZeltoHost/Mail/MailHeaderText.h>

#include <algorithm>

namespace zelto {

namespace {

using Addresses = std::vector<IntegrationsInteractorAddress>;

std::optional<Addresses> nonEmpty(const Addresses& addresses) {
    return addresses.empty() ? std::nullopt : std::optional(addresses);
}

AttachmentFetchError fetchErrorOf(MailError error) {
    switch (error) {
    case MailError::unknownAttachment:
        return AttachmentFetchError::unknownAttachment;
    case MailError::changed:
        return AttachmentFetchError::sourceChanged;
    case MailError::diskFull:
    case MailError::cannotWrite:
        return AttachmentFetchError::cannotWriteFile;
    case MailError::notFound:
    case MailError::unreadable:
    case MailError::notAMail:
    case MailError::tooManyParts:
    case MailError::tooManyHeaders:
    case MailError::headersTooLarge:
    case MailError::nestedTooDeep:
    case MailError::contentTooLarge:
    case MailError::canceled:
        return AttachmentFetchError::sourceUnreadable;
    }
    return AttachmentFetchError::sourceUnreadable;
}

} // namespace

MailDataInteractor::MailDataInteractor(std::shared_ptr<const MailMessage> message, InteractorOptions options)
    : message_(std::move(message)), options_(std::move(options)), links_(linksToMail(message_->messageID)) {
    links_.text = message_->subject && !message_->subject->empty() ? *message_->subject : "Open message";
    if (options_.webLink) {
        links_.webLink = options_.webLink->absoluteString();
    }
}

IntegrationExportTarget MailDataInteractor::exportTarget() {
    return IntegrationExportTarget::email;
}

IntegrationsInteractorAddresses MailDataInteractor::addresses() {
    return {message_->from, nonEmpty(message_->to), nonEmpty(message_->cc), nonEmpty(message_->bcc)};
}

IntegrationsInteractorAddresses MailDataInteractor::externalAddresses() {
    return externalOf(addresses(), options_.userAddress ? options_.userAddress : message_->deliveredTo);
}

std::optional<std::string> MailDataInteractor::subject() {
    return message_->subject;
}

std::optional<Date> MailDataInteractor::originalDate() {
    return message_->sentDate;
}

std::optional<Date> MailDataInteractor::receivedDate() {
    return message_->receivedDate;
}

std::string MailDataInteractor::title() {
    const auto subject = message_->subject.value_or("");
    return isBlank(subject) ? "No subject" : subject;
}

void MailDataInteractor::link(IntegrationLinkType type, Callback<std::optional<std::string>> completion) {
    completion(links_.written(type));
}

void MailDataInteractor::linkComponents(IntegrationLinkType type,
                                        Callback<std::optional<IntegrationLinkComponents>> completion) {
    completion(links_.components(type));
}

void MailDataInteractor::html(IntegrationExportHtmlOptions options,
                              Callback<std::optional<std::string>> completion) {
    auto body = htmlBody("html(options:)");
    if (!body) {
        return completion(std::nullopt);
    }
    CleanedHTMLOptions cleaning;
    cleaning.header = options.customHeader.value_or(headerBlock());
    cleaning.footer = options.customFooter.value_or("");
    cleaning.title = options.customTitle.value_or(title());
    cleaning.images = !options.skipInlineImages;
    cleaning.notes = options_.notes.get();
    std::size_t room = message_->limits.imageBytes;
    cleaning.imageSource = [&](std::string_view source) -> std::optional<std::string> {
        if (source.starts_with("data:")) {
            return std::string(source);
        }
        const auto image = inlineImage(source, room);
        return image ? std::optional("data:" + image->mimeType + ";base64," +
                                     base64Encoded(viewOf(image->data)))
                     : std::nullopt;
    };
    completion(cleanedHTML(*std::move(body), cleaning));
}

void MailDataInteractor::enml(std::string html,
                              Callback<std::optional<IntegrationsInteractorEnml>> completion) {
    std::size_t room = message_->limits.imageBytes;
    completion(enmlContent(std::move(html), {}, options_.notes.get(),
                           [&](std::string_view source) { return inlineImage(source, room); }));
}

void MailDataInteractor::enml(IntegrationExportHtmlOptions options,
                              Callback<std::optional<IntegrationsInteractorEnml>> completion) {
    auto body = htmlBody("enml(options:)");
    if (!body) {
        return completion(std::nullopt);
    }
    std::size_t room = message_->limits.imageBytes;
    completion(enmlContent(*std::move(body), options, options_.notes.get(),
                           [&](std::string_view source) { return inlineImage(source, room); }));
}

void MailDataInteractor::htmlHeader(Callback<std::optional<std::string>> completion) {
    completion(headerBlock());
}

void MailDataInteractor::headerComponents(Callback<IntegrationHeaderComponents> completion) {
    completion(header());
}

void MailDataInteractor::messagePlainText(std::optional<IntegrationLinkType> linkType,
                                          Callback<std::optional<std::string>> completion) {
    auto text = plainBodyOf(*message_, options_.notes.get());
    if (!text) {
        lvxLogError(messageOf(text.error()), "messagePlainText(linkType:)");
        return completion(std::nullopt);
    }
    completion(links_.appended(*std::move(text), linkType));
}

std::optional<Date> MailDataInteractor::meetTranscriptStartDate() {
    return std::nullopt;
}

std::optional<Date> MailDataInteractor::meetTranscriptEndDate() {
    return std::nullopt;
}

std::optional<Addresses> MailDataInteractor::meetTranscriptAttendees() {
    return std::nullopt;
}

void MailDataInteractor::meetTranscript(IntegrationMeetingTranscriptContent,
                                        IntegrationMeetingTranscriptFormat,
                                        std::optional<IntegrationLinkType>,
                                        Callback<std::optional<std::string>> completion) {
    completion(std::nullopt);
}

void MailDataInteractor::availableAttachments(Callback<IntegrationAttachments> completion) {
    auto found = attachments();
    if (!found) {
        lvxLogError(messageOf(found.error()), "availableAttachments()");
    }
    completion(found ? *std::move(found) : IntegrationAttachments());
}

void MailDataInteractor::fetchAttachment(std::int64_t attachmentPk,
                                         Completion<std::optional<URL>, AttachmentFetchError> completion) {
    auto url = fetchedAttachment(attachmentPk);
    if (!url) {
        lvxLogError(messageOf(url.error()), "fetchAttachment(attachmentPk:)");
        return completion(failure(fetchErrorOf(url.error())));
    }
    completion(std::optional(*std::move(url)));
}

void MailDataInteractor::formattedBodyComponents(Callback<std::vector<FormattedBodyComponent>> completion) {
    auto body = htmlBody("formattedBodyComponents()");
    completion(body ? formattedComponentsFromHTML(*std::move(body), options_.notes.get())
                    : std::vector<FormattedBodyComponent>());
}

void MailDataInteractor::formattedMeetingSummaryComponents(
    Callback<std::vector<FormattedBodyComponent>> completion) {
    completion({});
}

IntegrationHeaderComponents MailDataInteractor::header() const {
    IntegrationHeaderComponents components;
    components.sendersInfo.push_back(
        headerLine("From:", message_->from ? Addresses{*message_->from} : Addresses()));
    if (!message_->from) {
        components.sendersInfo.back().value.push_back(
            IntegrationHeaderComponents::Address::noSender("No sender"));
    }
    for (const auto& [label, addresses] : {std::pair("To:", &message_->to), std::pair("Cc:", &message_->cc),
                                           std::pair("Bcc:", &message_->bcc)}) {
        if (!addresses->empty()) {
            components.sendersInfo.push_back(headerLine(label, *addresses));
        }
    }
    const auto date = message_->sentDate ? message_->sentDate : message_->receivedDate;
    components.date = {"Date:", headerDate(date, options_.timeZone)};
    return components;
}

std::string MailDataInteractor::headerBlock() const {
    return headerHTML(header(), "Subject:", message_->subject.value_or(""));
}

std::optional<std::string> MailDataInteractor::htmlBody(std::string_view function) const {
    auto body = htmlBodyOf(*message_, options_.notes.get());
    if (!body) {
        lvxLogError(messageOf(body.error()), function);
        return std::nullopt;
    }
    return *std::move(body);
}

std::optional<IntegrationsInteractorAttachment> MailDataInteractor::inlineImage(std::string_view source,
                                                                                std::size_t& room) const {
    const auto id = contentIDOf(source);
    const auto image = id ? std::ranges::find(message_->inlineImages, *id, &MailInlineImage::contentID)
                          : message_->inlineImages.end();
    if (image == message_->inlineImages.end()) {
        return std::nullopt;
    }
    auto data = inlineImageData(*message_, *image, room);
    if (!data) {
        lvxLogWarn("An inline image is left out: it cannot be read, or the images are larger than 32 MiB",
                   "inlineImage(source:)");
        if (options_.notes) {
            options_.notes->add(ContentNoteKind::imagesLeftOut);
        }
        return std::nullopt;
    }
    room -= data->size();
    return IntegrationsInteractorAttachment{image->name, image->mediaType, *std::move(data)};
}

Result<IntegrationAttachments, MailError> MailDataInteractor::attachments() {
    const std::lock_guard lock(attachmentsMutex_);
    if (attachments_) {
        return *attachments_;
    }
    IntegrationAttachments found;
    for (const auto& each : message_->attachments) {
        const auto size = decodedSize(*message_->file, message_->parts[each.part]);
        if (!size) {
            return failure(size.error());
        }
        found.list.push_back({each.id, each.name, static_cast<std::int64_t>(*size)});
    }
    attachments_ = found;
    return found;
}

Result<URL, MailError> MailDataInteractor::fetchedAttachment(std::int64_t id) const {
    const auto* attachment = message_->attachment(id);
    if (attachment == nullptr) {
        return failure(MailError::unknownAttachment);
    }
    const auto path = FileManager::temporaryPath(attachment->name);
    if (!path) {
        return failure(writeErrorOf(path.error()));
    }
    const auto written = writeContent(*message_->file, message_->parts[attachment->part], *path);
    return written ? Result<URL, MailError>(URL::file(*path)) : failure(written.error());
}

} // namespace zelto
