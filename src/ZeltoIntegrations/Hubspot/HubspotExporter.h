#pragma once

#include <ZeltoIntegrations/Export/AccountDataExporter.h>
#include <ZeltoIntegrations/Hubspot/HubspotExportConfiguration.h>
#include <ZeltoIntegrations/Hubspot/HubspotRecords.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

class HubspotClient;
struct HubspotEmailBody;
struct HubspotMeetingContent;
struct HubspotObject;
struct HubspotTokenMetadata;

// Logs an e-mail, or a meeting note and on demand its meeting, associated with the contacts of its parties.
// Contacts are looked up one after the other, each address once; one that is missing is created, and one that
// is found is not changed. Nothing is logged unless there are all contacts. The first failure ends the
// export, and what was created by then stays on the service.
class HubspotExporter final : public AccountDataExporter<HubspotFullData> {
  public:
    using AccountDataExporter::AccountDataExporter;

    using Configuration = HubspotExportConfiguration;

    // What was loaded last, and what was chosen for the last e-mail and the last note; kept in the account.
    CachedValue<std::vector<HubspotPayloadContactLifecycleStage>> contactLifecycleStages{
        *this, "contactLifecycleStages"};
    CachedValue<std::string> userEmail{*this, "userEmail"};
    CachedValue<HubspotCreateContacts> lastEmailCreateContacts{*this, "lastEmailCreateContacts"};
    CachedValue<HubspotSaveContactsLifecycleStage> lastEmailSaveContactsLifecycleStage{
        *this, "lastEmailSaveContactsLifecycleStage"};
    CachedValue<HubspotSaveContactsLeadStatus> lastEmailSaveContactsLeadStatus{
        *this, "lastEmailSaveContactsLeadStatus"};
    CachedValue<HubspotNoteCreate> lastNoteCreate{*this, "lastNoteCreate"};
    CachedValue<HubspotSaveContactsLifecycleStage> lastNoteSaveContactsLifecycleStage{
        *this, "lastNoteSaveContactsLifecycleStage"};
    CachedValue<HubspotSaveContactsLeadStatus> lastNoteSaveContactsLeadStatus{
        *this, "lastNoteSaveContactsLeadStatus"};

    // What was chosen last for the target; a stage is offered as it stands, whether or not the account still
    // has it.
    void loadConfiguration(Completion<HubspotExportConfiguration, IntegrationLoadError> completion);

    IntegrationExportContentTypes contentTypes(IntegrationExportTarget target) const;

    // No value for a type that is not supported, and where the host has no text.
    void loadPreview(IntegrationExportContentType type,
                     Callback<std::optional<IntegrationExportPreview>> completion);

    // Fails with `unsupportedFormat` before it returns; with `createBodyError` without a text, `oauthError`
    // without credentials, and `canceled`. When the service refuses a request: `oauthError` for its sign-in,
    // `connectionError` when it was not reached, else `internalError`.
    std::shared_ptr<ExportProgress> export_(HubspotExportConfiguration configuration,
                                            Completion<void, IntegrationExportError> completion);

    // The e-mail of the signed-in user.
    std::optional<std::string> loadUserEmail() override;

  private:
    struct Contact;
    using ContactIds = std::vector<std::string>;

    HubspotExportConfiguration offered() const;

    void fetchData(StepRun& run, DataCompletion done) override;
    std::optional<HubspotFullData> loadedData() const override;

    bool loadsWhatIsMissing() const override { return true; }

    std::shared_ptr<ExportProgress> exportEmail(HubspotExportConfiguration configuration,
                                                ResultMediator<void> finish);
    std::shared_ptr<ExportProgress> exportNote(HubspotExportConfiguration configuration,
                                               ResultMediator<void> finish);

    void makeEmailBody(StepRun& run, StepCompletion<HubspotEmailBody> done);
    void addHtml(StepRun& run, std::optional<std::string> text, StepCompletion<HubspotEmailBody> done);
    void makeNoteText(StepRun& run, StepCompletion<std::string> done);
    void makeMeetingContent(StepRun& run, StepCompletion<HubspotMeetingContent> done);
    void addMeetingNotes(StepRun& run, HubspotMeetingContent content,
                         StepCompletion<HubspotMeetingContent> done);
    void addMeetingURL(StepRun& run, HubspotMeetingContent content,
                       StepCompletion<HubspotMeetingContent> done);

    void loadUser(StepRun& run, std::string objectKind, StepCompletion<std::string> done);
    void resolveContacts(StepRun& run, const HubspotExportConfiguration& configuration,
                         const Step<std::string>& user, StepCompletion<ContactIds> done);
    std::vector<Contact> contactsOf(const HubspotExportConfiguration& configuration,
                                    const std::string& user) const;
    void findContact(StepRun& run, Contact& contact, StepCompletion<void> done);
    void createContact(StepRun& run, Contact& contact, StepCompletion<void> done);
    void takeCreated(StepRun& run, Contact& contact, const Result<HubspotObject, ServiceClientError>& created,
                     StepCompletion<void> done);
    void findContactAgain(StepRun& run, Contact& contact, StepCompletion<void> done);

    void createEmail(StepRun& run, const Step<HubspotEmailBody>& body, const Step<ContactIds>& contacts,
                     StepCompletion<void> done);
    void createNote(StepRun& run, const Step<std::string>& text, const Step<ContactIds>& contacts,
                    StepCompletion<void> done);
    void createMeeting(StepRun& run, const Step<HubspotMeetingContent>& content,
                       const Step<ContactIds>& contacts, StepCompletion<void> done);
    template <class Done> std::shared_ptr<HubspotClient> createHubspotClient(StepRun& run, Done& done);
};

} // namespace zelto
