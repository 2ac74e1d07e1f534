#pragma once

#include <ZeltoIntegrations/Content/FormattedBodyComponent.h>
#include <ZeltoIntegrations/Content/IntegrationAttachments.h>
#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>
#include <ZeltoIntegrations/Content/IntegrationHeaderComponents.h>
#include <ZeltoIntegrations/Content/IntegrationLink.h>
#include <ZeltoIntegrations/Content/IntegrationsInteractorTypes.h>

#include <Platform/Completion.h>
#include <Platform/Date.h>
#include <Platform/URL.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// The content of the one mail or meeting note at hand; the host implements it, and each exporter gets an
// object of its own. Called from any thread. A completion comes once, on any thread, at once or later; one
// that carries an optional text gets `nullopt` when the body cannot be made. No operation may block on a
// completion of this system.
class IntegrationsDataInteractorProtocol {
  public:
    virtual ~IntegrationsDataInteractorProtocol() = default;

    virtual IntegrationExportTarget exportTarget() = 0;

    // All parties, and those outside the user's own domain.
    virtual IntegrationsInteractorAddresses addresses() = 0;
    virtual IntegrationsInteractorAddresses externalAddresses() = 0;

    virtual std::optional<std::string> subject() = 0;
    virtual std::optional<Date> originalDate() = 0; // when the mail was sent
    virtual std::optional<Date> receivedDate() = 0; // when it arrived

    // The title to suggest; may be empty.
    virtual std::string title() = 0;

    virtual void link(IntegrationLinkType type, Callback<std::optional<std::string>> completion) = 0;
    virtual void linkComponents(IntegrationLinkType type,
                                Callback<std::optional<IntegrationLinkComponents>> completion) = 0;

    virtual void html(IntegrationExportHtmlOptions options,
                      Callback<std::optional<std::string>> completion) = 0;

    // An HTML text turned to Evernote's format, and the body in that format directly.
    virtual void enml(std::string html, Callback<std::optional<IntegrationsInteractorEnml>> completion) = 0;
    virtual void enml(IntegrationExportHtmlOptions options,
                      Callback<std::optional<IntegrationsInteractorEnml>> completion) = 0;

    // The mail's header block.
    virtual void htmlHeader(Callback<std::optional<std::string>> completion) = 0;
    virtual void headerComponents(Callback<IntegrationHeaderComponents> completion) = 0;

    // The plain body, with a link of the given type when one is given.
    virtual void messagePlainText(std::optional<IntegrationLinkType> linkType,
                                  Callback<std::optional<std::string>> completion) = 0;

    virtual std::optional<Date> meetTranscriptStartDate() = 0;
    virtual std::optional<Date> meetTranscriptEndDate() = 0;
    virtual std::optional<std::vector<IntegrationsInteractorAddress>> meetTranscriptAttendees() = 0;
    // A piece of a meeting note, with a link of the given type when one is given.
    virtual void meetTranscript(IntegrationMeetingTranscriptContent content,
                                IntegrationMeetingTranscriptFormat format,
                                std::optional<IntegrationLinkType> linkType,
                                Callback<std::optional<std::string>> completion) = 0;

    virtual void availableAttachments(Callback<IntegrationAttachments> completion) = 0;
    // A local file that holds the attachment of that id, unchanged until the export has ended.
    virtual void fetchAttachment(std::int64_t attachmentPk,
                                 Completion<std::optional<URL>, AttachmentFetchError> completion) = 0;

    virtual void formattedBodyComponents(Callback<std::vector<FormattedBodyComponent>> completion) = 0;
    virtual void
    formattedMeetingSummaryComponents(Callback<std::vector<FormattedBodyComponent>> completion) = 0;
};

} // namespace zelto
