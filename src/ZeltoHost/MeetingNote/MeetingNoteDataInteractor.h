#pragma once

#include <ZeltoHost/Interactor/InteractorOptions.h>
#include <ZeltoHost/Interactor/MessageLinks.h>
#include <ZeltoHost/MeetingNote/MeetingNote.h>
#include <ZeltoIntegrations/Content/IntegrationsDataInteractorProtocol.h>

namespace zelto {

// The data interactor over one meeting note. Completions are called before the operation returns. Any thread.
//
// - The organiser is the sender, the attendees are the recipients; the date is that of the beginning.
// - All three backlinks are the note's `link`; the web link is the options', else the note's. A link's text
//   is the title, or "Open meeting note".
// - The body is the summary, the notes and the transcript in this order, under headings if there is more than
//   one of them.
// - `meetTranscript` gives one of them, as plain text or as a whole, cleaned HTML document, followed by the
//   link in its format; absent if the note does not have it.
// - A note has no attachments.
class MeetingNoteDataInteractor final : public IntegrationsDataInteractorProtocol {
  public:
    explicit MeetingNoteDataInteractor(MeetingNote note, InteractorOptions options = {});

    IntegrationExportTarget exportTarget() override;
    IntegrationsInteractorAddresses addresses() override;
    IntegrationsInteractorAddresses externalAddresses() override;
    std::optional<std::string> subject() override;
    std::optional<Date> originalDate() override;
    std::optional<Date> receivedDate() override;
    std::string title() override;
    void link(IntegrationLinkType type, Callback<std::optional<std::string>> completion) override;
    void linkComponents(IntegrationLinkType type,
                        Callback<std::optional<IntegrationLinkComponents>> completion) override;
    void html(IntegrationExportHtmlOptions options, Callback<std::optional<std::string>> completion) override;
    void enml(std::string html, Callback<std::optional<IntegrationsInteractorEnml>> completion) override;
    void enml(IntegrationExportHtmlOptions options,
              Callback<std::optional<IntegrationsInteractorEnml>> completion) override;
    void htmlHeader(Callback<std::optional<std::string>> completion) override;
    void headerComponents(Callback<IntegrationHeaderComponents> completion) override;
    void messagePlainText(std::optional<IntegrationLinkType> linkType,
                          Callback<std::optional<std::string>> completion) override;
    std::optional<Date> meetTranscriptStartDate() override;
    std::optional<Date> meetTranscriptEndDate() override;
    std::optional<std::vector<IntegrationsInteractorAddress>> meetTranscriptAttendees() override;
    void meetTranscript(IntegrationMeetingTranscriptContent content,
                        IntegrationMeetingTranscriptFormat format,
                        std::optional<IntegrationLinkType> linkType,
                        Callback<std::optional<std::string>> completion) override;
    void availableAttachments(Callback<IntegrationAttachments> completion) override;
    void fetchAttachment(std::int64_t attachmentPk,
                         Completion<std::optional<URL>, AttachmentFetchError> completion) override;
    void formattedBodyComponents(Callback<std::vector<FormattedBodyComponent>> completion) override;
    void formattedMeetingSummaryComponents(Callback<std::vector<FormattedBodyComponent>> completion) override;

  private:
    IntegrationHeaderComponents header() const;
    std::string headerBlock() const;
    const std::optional<MeetingNoteText>& piece(IntegrationMeetingTranscriptContent content) const;
    bool hasOnePiece() const;
    std::string plainBody() const;
    std::string htmlBody() const;

    MeetingNote note_;
    InteractorOptions options_;
    MessageLinks links_;
};

} // namespace zelto
