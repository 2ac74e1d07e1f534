#pragma once

#include <ZeltoIntegrations/Content/IntegrationsDataInteractorProtocol.h>

namespace zelto {

// No mail at hand: what the fetch of a service's data uses, which reads none. The asynchronous operations
// never call their completion, so an export with it does not end.
class IntegrationsDataInteractorStub final : public IntegrationsDataInteractorProtocol {
  public:
    IntegrationExportTarget exportTarget() override { return IntegrationExportTarget::email; }

    IntegrationsInteractorAddresses addresses() override { return {}; }

    IntegrationsInteractorAddresses externalAddresses() override { return {}; }

    std::optional<std::string> subject() override { return std::nullopt; }

    std::optional<Date> originalDate() override { return std::nullopt; }

    std::optional<Date> receivedDate() override { return std::nullopt; }

    std::string title() override { return {}; }

    void link(IntegrationLinkType, Callback<std::optional<std::string>> completion) override {
        completion.abandon();
    }

    void linkComponents(IntegrationLinkType,
                        Callback<std::optional<IntegrationLinkComponents>> completion) override {
        completion.abandon();
    }

    void html(IntegrationExportHtmlOptions, Callback<std::optional<std::string>> completion) override {
        completion.abandon();
    }

    void enml(std::string, Callback<std::optional<IntegrationsInteractorEnml>> completion) override {
        completion.abandon();
    }

    void enml(IntegrationExportHtmlOptions,
              Callback<std::optional<IntegrationsInteractorEnml>> completion) override {
        completion.abandon();
    }

    void htmlHeader(Callback<std::optional<std::string>> completion) override { completion.abandon(); }

    void headerComponents(Callback<IntegrationHeaderComponents> completion) override { completion.abandon(); }

    void messagePlainText(std::optional<IntegrationLinkType>,
                          Callback<std::optional<std::string>> completion) override {
        completion.abandon();
    }

    std::optional<Date> meetTranscriptStartDate() override { return std::nullopt; }

    std::optional<Date> meetTranscriptEndDate() override { return std::nullopt; }

    std::optional<std::vector<IntegrationsInteractorAddress>> meetTranscriptAttendees() override {
        return std::nullopt;
    }

    void meetTranscript(IntegrationMeetingTranscriptContent, IntegrationMeetingTranscriptFormat,
                        std::optional<IntegrationLinkType>,
                        Callback<std::optional<std::string>> completion) override {
        completion.abandon();
    }

    void availableAttachments(Callback<IntegrationAttachments> completion) override { completion.abandon(); }

    void fetchAttachment(std::int64_t,
                         Completion<std::optional<URL>, AttachmentFetchError> completion) override {
        completion.abandon();
    }

    void formattedBodyComponents(Callback<std::vector<FormattedBodyComponent>> completion) override {
        completion.abandon();
    }

    void
    formattedMeetingSummaryComponents(Callback<std::vector<FormattedBodyComponent>> completion) override {
        completion.abandon();
    }
};

} // namespace zelto
