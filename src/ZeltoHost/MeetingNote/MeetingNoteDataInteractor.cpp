#include <Platform/Text.h>
#include <ZeltoHost/HTML/CleanedHTML.h>
#include <ZeltoHost/HTML/FormattedComponents.h>
#include <ZeltoHost/HTML/PlainText.h>
#include <ZeltoHost/Interactor/EnmlContent.h>
#include <ZeltoHost/Interactor/MessageHeader.h>
#include <ZeltoHost/Mail/MailHeaderText.h>
#include <ZeltoHost/MeetingNote/MeetingNoteDataInteractor.h>

#include <array>

namespace zelto {

namespace {

using Addresses = std::vector<IntegrationsInteractorAddress>;
using Content = IntegrationMeetingTranscriptContent;

constexpr std::array bodyOrder{std::pair(Content::summary, std::string_view("Summary")),
                               std::pair(Content::notes, std::string_view("Notes")),
                               std::pair(Content::transcript, std::string_view("Transcript"))};

IntegrationsInteractorAddress addressOf(const MeetingNoteParty& party) {
    return makeAddress(party.email, party.name.value_or(""));
}

std::string plainOf(const MeetingNoteText& text, ContentNotes* notes) {
    return std::string(
        trimmed(text.isHTML ? plainTextFromHTML(text.content, {.notes = notes}) : text.content));
}

std::string htmlOf(const MeetingNoteText& text) {
    return "<div>" + (text.isHTML ? text.content : htmlFromPlainText(text.content)) + "</div>";
}

std::optional<std::string> dataURL(std::string_view source) {
    return source.starts_with("data:") ? std::optional(std::string(source)) : std::nullopt;
}

} // namespace

MeetingNoteDataInteractor::MeetingNoteDataInteractor(MeetingNote note, InteractorOptions options)
    : note_(std::move(note)), options_(std::move(options)) {
    links_.text = note_.title.empty() ? "Open meeting note" : note_.title;
    links_.backlink = links_.altBacklink = links_.safeBacklink = note_.link;
    links_.webLink = options_.webLink ? options_.webLink->absoluteString() : note_.webLink;
}

IntegrationExportTarget MeetingNoteDataInteractor::exportTarget() {
    return IntegrationExportTarget::meetingNote;
}

IntegrationsInteractorAddresses MeetingNoteDataInteractor::addresses() {
    IntegrationsInteractorAddresses all;
    if (note_.organiser) {
        all.from = addressOf(*note_.organiser);
    }
    all.to = meetTranscriptAttendees();
    return all;
}

IntegrationsInteractorAddresses MeetingNoteDataInteractor::externalAddresses() {
    return externalOf(addresses(), options_.userAddress);
}

std::optional<std::string> MeetingNoteDataInteractor::subject() {
    return note_.title;
}

std::optional<Date> MeetingNoteDataInteractor::originalDate() {
    return note_.start;
}

std::optional<Date> MeetingNoteDataInteractor::receivedDate() {
    return std::nullopt;
}

std::string MeetingNoteDataInteractor::title() {
    return note_.title;
}

void MeetingNoteDataInteractor::link(IntegrationLinkType type,
                                     Callback<std::optional<std::string>> completion) {
    completion(links_.written(type));
}

void MeetingNoteDataInteractor::linkComponents(
    IntegrationLinkType type, Callback<std::optional<IntegrationLinkComponents>> completion) {
    completion(links_.components(type));
}

void MeetingNoteDataInteractor::html(IntegrationExportHtmlOptions options,
                                     Callback<std::optional<std::string>> completion) {
    CleanedHTMLOptions cleaning;
    cleaning.notes = options_.notes.get();
    cleaning.imageSource = dataURL;
    cleaning.images = !options.skipInlineImages;
    cleaning.header = options.customHeader.value_or(headerBlock());
    cleaning.footer = options.customFooter.value_or("");
    cleaning.title = options.customTitle.value_or(note_.title);
    completion(cleanedHTML(htmlBody(), cleaning));
}

void MeetingNoteDataInteractor::enml(std::string html,
                                     Callback<std::optional<IntegrationsInteractorEnml>> completion) {
    completion(enmlContent(std::move(html), {}, options_.notes.get()));
}

void MeetingNoteDataInteractor::enml(IntegrationExportHtmlOptions options,
                                     Callback<std::optional<IntegrationsInteractorEnml>> completion) {
    completion(enmlContent(htmlBody(), options, options_.notes.get()));
}

void MeetingNoteDataInteractor::htmlHeader(Callback<std::optional<std::string>> completion) {
    completion(headerBlock());
}

void MeetingNoteDataInteractor::headerComponents(Callback<IntegrationHeaderComponents> completion) {
    completion(header());
}

void MeetingNoteDataInteractor::messagePlainText(std::optional<IntegrationLinkType> linkType,
                                                 Callback<std::optional<std::string>> completion) {
    completion(links_.appended(plainBody(), linkType));
}

std::optional<Date> MeetingNoteDataInteractor::meetTranscriptStartDate() {
    return note_.start;
}

std::optional<Date> MeetingNoteDataInteractor::meetTranscriptEndDate() {
    return note_.end;
}

std::optional<Addresses> MeetingNoteDataInteractor::meetTranscriptAttendees() {
    if (note_.attendees.empty()) {
        return std::nullopt;
    }
    Addresses attendees;
    attendees.reserve(note_.attendees.size());
    for (const auto& each : note_.attendees) {
        attendees.push_back(addressOf(each));
    }
    return attendees;
}

void MeetingNoteDataInteractor::meetTranscript(IntegrationMeetingTranscriptContent content,
                                               IntegrationMeetingTranscriptFormat format,
                                               std::optional<IntegrationLinkType> linkType,
                                               Callback<std::optional<std::string>> completion) {
    const auto& text = piece(content);
    if (!text) {
        return completion(std::nullopt);
    }
    switch (format) {
    case IntegrationMeetingTranscriptFormat::text:
        return completion(links_.appended(plainOf(*text, options_.notes.get()), linkType));
    case IntegrationMeetingTranscriptFormat::html:
        CleanedHTMLOptions cleaning;
        cleaning.notes = options_.notes.get();
        cleaning.imageSource = dataURL;
        cleaning.title = note_.title;
        if (const auto link = linkType ? links_.written(*linkType) : std::nullopt) {
            cleaning.footer = "<p>" + *link + "</p>";
        }
        return completion(cleanedHTML(htmlOf(*text), cleaning));
    }
    completion(std::nullopt);
}

void MeetingNoteDataInteractor::availableAttachments(Callback<IntegrationAttachments> completion) {
    completion({});
}

void MeetingNoteDataInteractor::fetchAttachment(
    std::int64_t, Completion<std::optional<URL>, AttachmentFetchError> completion) {
    completion(failure(AttachmentFetchError::unknownAttachment));
}

void MeetingNoteDataInteractor::formattedBodyComponents(
    Callback<std::vector<FormattedBodyComponent>> completion) {
    completion(formattedComponentsFromHTML(htmlBody(), options_.notes.get()));
}

void MeetingNoteDataInteractor::formattedMeetingSummaryComponents(
    Callback<std::vector<FormattedBodyComponent>> completion) {
    completion(note_.summary ? formattedComponentsFromHTML(htmlOf(*note_.summary), options_.notes.get())
                             : std::vector<FormattedBodyComponent>());
}

IntegrationHeaderComponents MeetingNoteDataInteractor::header() const {
    IntegrationHeaderComponents components;
    if (note_.organiser) {
        components.sendersInfo.push_back(headerLine("Organiser:", {addressOf(*note_.organiser)}));
    }
    if (!note_.attendees.empty()) {
        Addresses attendees;
        for (const auto& each : note_.attendees) {
            attendees.push_back(addressOf(each));
        }
        components.sendersInfo.push_back(headerLine("Attendees:", attendees));
    }
    auto date = headerDate(note_.start, options_.timeZone);
    if (note_.end) {
        date += (date.empty() ? "until " : " – ") + headerDate(note_.end, options_.timeZone);
    }
    components.date = {"Date:", std::move(date)};
    return components;
}

std::string MeetingNoteDataInteractor::headerBlock() const {
    return headerHTML(header(), "Meeting:", note_.title);
}

const std::optional<MeetingNoteText>&
MeetingNoteDataInteractor::piece(IntegrationMeetingTranscriptContent content) const {
    switch (content) {
    case Content::summary:
        return note_.summary;
    case Content::transcript:
        return note_.transcript;
    case Content::notes:
        return note_.notes;
    }
    return note_.summary;
}

std::string MeetingNoteDataInteractor::plainBody() const {
    std::string body;
    for (const auto& [content, heading] : bodyOrder) {
        if (const auto& text = piece(content)) {
            body.append(body.empty() ? "" : "\n\n");
            body.append(hasOnePiece() ? "" : std::string(heading) + "\n\n")
                .append(plainOf(*text, options_.notes.get()));
        }
    }
    return body;
}

std::string MeetingNoteDataInteractor::htmlBody() const {
    std::string body;
    for (const auto& [content, heading] : bodyOrder) {
        if (const auto& text = piece(content)) {
            body.append(hasOnePiece() ? "" : "<h2>" + std::string(heading) + "</h2>").append(htmlOf(*text));
        }
    }
    return body;
}

bool MeetingNoteDataInteractor::hasOnePiece() const {
    return note_.summary.has_value() + note_.notes.has_value() + note_.transcript.has_value() == 1;
}

} // namespace zelto
