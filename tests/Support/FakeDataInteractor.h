#pragma once

#include <ZeltoIntegrations/Content/IntegrationsDataInteractorProtocol.h>

#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace zelto {

// A mail or meeting note made of the fields set here. Completions are called at once, on the caller's thread.
class FakeDataInteractor final : public IntegrationsDataInteractorProtocol {
  public:
    IntegrationExportTarget target = IntegrationExportTarget::email;
    std::string titleText = "Title";
    std::optional<std::string> linkText = "mid:1@example.org";
    std::optional<std::string> rawLinkText; // of the raw format; as the others where it is not set
    std::optional<std::string> plainText = "Body";
    std::optional<std::string> summary = "Summary";
    std::optional<std::string> summaryHTML;
    std::optional<std::string> meetingNotes;
    std::optional<Date> meetingStart;
    std::optional<Date> meetingEnd;
    std::optional<std::vector<IntegrationsInteractorAddress>> attendees;
    IntegrationsInteractorAddresses parties;
    std::optional<std::string> htmlText;
    std::optional<IntegrationLinkComponents> linkParts;
    IntegrationHeaderComponents header;
    std::vector<FormattedBodyComponent> body;
    std::vector<FormattedBodyComponent> summaryBody;
    std::optional<std::string> headerHTML;
    std::optional<IntegrationsInteractorEnml> enmlContent;
    IntegrationAttachments attachments;
    // Gives the file of an attachment; `nullopt` for an unknown one.
    std::function<std::optional<URL>(std::int64_t)> fileOf = [](std::int64_t) { return std::nullopt; };
    // Called before a text is given, with the name of the operation.
    std::function<void(const std::string&)> onAsked = [](const std::string&) {};
    // Gets the name of the operation and the call of its completion.
    std::function<void(const std::string&, std::move_only_function<void()>)> onCompletion =
        [](const std::string&, auto complete) { complete(); };
    std::function<void()> onTitle = [] {};

    // The link types that were asked for, in order.
    std::vector<IntegrationLinkType> askedLinks() const {
        const std::lock_guard guard(lock_);
        return askedLinks_;
    }

    // The options that the body was asked for with, in order.
    std::vector<IntegrationExportHtmlOptions> askedHtml() const {
        const std::lock_guard guard(lock_);
        return askedHtml_;
    }

    // The HTML that was to be turned into Evernote's format, in order.
    std::vector<std::string> askedEnml() const {
        const std::lock_guard guard(lock_);
        return askedEnml_;
    }

    IntegrationExportTarget exportTarget() override { return target; }

    IntegrationsInteractorAddresses addresses() override { return parties; }

    IntegrationsInteractorAddresses externalAddresses() override { return {}; }

    std::optional<std::string> subject() override { return titleText; }

    std::optional<Date> originalDate() override { return std::nullopt; }

    std::optional<Date> receivedDate() override { return std::nullopt; }

    std::string title() override {
        onTitle();
        return titleText;
    }

    void link(IntegrationLinkType type, Callback<std::optional<std::string>> completion) override {
        ask("link", type);
        const bool isRaw = type.format() == IntegrationLinkFormat::raw;
        complete("link", std::move(completion), isRaw && rawLinkText ? rawLinkText : linkText);
    }

    void linkComponents(IntegrationLinkType type,
                        Callback<std::optional<IntegrationLinkComponents>> completion) override {
        ask("linkComponents", type);
        complete("linkComponents", std::move(completion), linkParts);
    }

    void html(IntegrationExportHtmlOptions options,
              Callback<std::optional<std::string>> completion) override {
        {
            const std::lock_guard guard(lock_);
            askedHtml_.push_back(std::move(options));
        }
        onAsked("html");
        complete("html", std::move(completion), htmlText);
    }

    void enml(std::string html, Callback<std::optional<IntegrationsInteractorEnml>> completion) override {
        {
            const std::lock_guard guard(lock_);
            askedEnml_.push_back(std::move(html));
        }
        onAsked("enml");
        complete("enml", std::move(completion), enmlContent);
    }

    void enml(IntegrationExportHtmlOptions options,
              Callback<std::optional<IntegrationsInteractorEnml>> completion) override {
        {
            const std::lock_guard guard(lock_);
            askedHtml_.push_back(std::move(options));
        }
        onAsked("enml");
        complete("enml", std::move(completion), enmlContent);
    }

    void htmlHeader(Callback<std::optional<std::string>> completion) override {
        onAsked("htmlHeader");
        complete("htmlHeader", std::move(completion), headerHTML);
    }

    void headerComponents(Callback<IntegrationHeaderComponents> completion) override {
        onAsked("headerComponents");
        complete("headerComponents", std::move(completion), header);
    }

    void messagePlainText(std::optional<IntegrationLinkType> linkType,
                          Callback<std::optional<std::string>> completion) override {
        ask("messagePlainText", linkType);
        complete("messagePlainText", std::move(completion), plainText);
    }

    std::optional<Date> meetTranscriptStartDate() override { return meetingStart; }

    std::optional<Date> meetTranscriptEndDate() override { return meetingEnd; }

    std::optional<std::vector<IntegrationsInteractorAddress>> meetTranscriptAttendees() override {
        return attendees;
    }

    void meetTranscript(IntegrationMeetingTranscriptContent content,
                        IntegrationMeetingTranscriptFormat format,
                        std::optional<IntegrationLinkType> linkType,
                        Callback<std::optional<std::string>> completion) override {
        ask("meetTranscript", linkType);
        complete("meetTranscript", std::move(completion), pieceOf(content, format));
    }

    void availableAttachments(Callback<IntegrationAttachments> completion) override {
        completion(attachments);
    }

    void fetchAttachment(std::int64_t attachmentPk,
                         Completion<std::optional<URL>, AttachmentFetchError> completion) override {
        onAsked("fetchAttachment");
        using Fetched = Result<std::optional<URL>, AttachmentFetchError>;
        auto file = fileOf(attachmentPk);
        complete("fetchAttachment", std::move(completion),
                 file ? Fetched(std::move(file)) : failure(AttachmentFetchError::unknownAttachment));
    }

    void formattedBodyComponents(Callback<std::vector<FormattedBodyComponent>> completion) override {
        onAsked("formattedBodyComponents");
        complete("formattedBodyComponents", std::move(completion), body);
    }

    void
    formattedMeetingSummaryComponents(Callback<std::vector<FormattedBodyComponent>> completion) override {
        onAsked("formattedMeetingSummaryComponents");
        complete("formattedMeetingSummaryComponents", std::move(completion), summaryBody);
    }

  private:
    std::optional<std::string> pieceOf(IntegrationMeetingTranscriptContent content,
                                       IntegrationMeetingTranscriptFormat format) const {
        const bool isText = format == IntegrationMeetingTranscriptFormat::text;
        switch (content) {
        case IntegrationMeetingTranscriptContent::summary:
            return isText ? summary : summaryHTML;
        case IntegrationMeetingTranscriptContent::notes:
            return isText ? meetingNotes : std::nullopt;
        case IntegrationMeetingTranscriptContent::transcript:
            return std::nullopt;
        }
        return std::nullopt;
    }

    void ask(const std::string& operation, const std::optional<IntegrationLinkType>& type) {
        if (type) {
            const std::lock_guard guard(lock_);
            askedLinks_.push_back(*type);
        }
        onAsked(operation);
    }

    template <class C, class T> void complete(const std::string& operation, C completion, T value) {
        onCompletion(operation, [completion = std::move(completion), value = std::move(value)]() mutable {
            completion(std::move(value));
        });
    }

    mutable std::mutex lock_;
    std::vector<IntegrationLinkType> askedLinks_;
    std::vector<IntegrationExportHtmlOptions> askedHtml_;
    std::vector<std::string> askedEnml_;
};

} // namespace zelto
