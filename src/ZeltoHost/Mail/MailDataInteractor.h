#pragma once

#include <ZeltoCommonLogger/LoggerClient.h>
#include <ZeltoHost/Interactor/InteractorOptions.h>
#include <ZeltoHost/Interactor/MessageLinks.h>
#include <ZeltoHost/Mail/MailError.h>
#include <ZeltoHost/Mail/MailMessage.h>
#include <ZeltoIntegrations/Content/IntegrationsDataInteractorProtocol.h>

#include <Platform/Result.h>

#include <memory>
#include <mutex>
#include <string>

namespace zelto {

// The data interactor over one mail. Contents are read from the file when they are asked for; completions are
// called before the operation returns. What cannot be read (a file that was changed) is logged and
// absent from the result; what is beyond MailLimits is left out, with a note.
//
// - `title` is the subject on one line; "No subject" for a mail without one, so that nothing made of it is
//   nameless.
// - Links are those of linksToMail, and the options' web link whatever visibility is asked for. A link's text
//   is the title, or "Open message". Without a Message-ID there is no backlink.
// - `html` is a whole document, cleaned by cleanedHTML: the custom header or the mail's header block, the
//   body, the custom footer; inline images become data: URLs, and remote ones are left out.
// - `messagePlainText` is the body, a blank line and the link in its format; for a mail without text only the
//   link.
// - A mail is not a meeting: the operations about meetings have no result.
// - `fetchAttachment` decodes to a file of the attachment's clean name in the private temporary directory.
class MailDataInteractor final : public IntegrationsDataInteractorProtocol, private LoggerClient {
  public:
    explicit MailDataInteractor(std::shared_ptr<const MailMessage> message, InteractorOptions options = {});

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
    std::optional<std::string> htmlBody(std::string_view function) const;
    std::optional<IntegrationsInteractorAttachment> inlineImage(std::string_view source,
                                                                std::size_t& room) const;
    Result<IntegrationAttachments, MailError> attachments();
    Result<URL, MailError> fetchedAttachment(std::int64_t id) const;

    std::shared_ptr<const MailMessage> message_;
    InteractorOptions options_;
    MessageLinks links_;
    std::mutex attachmentsMutex_;
    std::optional<IntegrationAttachments> attachments_; // computed once: sizes require decoding
};

} // namespace zelto
