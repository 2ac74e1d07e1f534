#pragma once

#include <ZeltoIntegrations/Content/AttachmentsValidation.h>
#include <ZeltoIntegrations/Export/AccountDataExporter.h>
#include <ZeltoIntegrations/OneNote/OneNoteExportConfiguration.h>
#include <ZeltoIntegrations/OneNote/OneNoteRecords.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zelto {

class OneNoteClient;
struct ExporterHelperMultipartData;
struct OneNotePage;

// Makes a page in a section of a notebook, by one request: the message or its PDF, or a link, and
// attachments.
class OneNoteExporter final : public AccountDataExporter<OneNoteFullData> {
  public:
    using Configuration = OneNoteExportConfiguration;
    using EmailValidator = std::function<bool(const std::string&)>;

    OneNoteExporter(ServiceAccountConfiguration configuration,
                    std::shared_ptr<ServiceConfigurationsStorage> configurationStorage,
                    std::shared_ptr<IntegrationsPlatformInteractorProtocol> platformInteractor,
                    std::shared_ptr<IntegrationsDataInteractorProtocol> dataInteractor,
                    std::optional<std::string> actionSource, bool attachmentsAreSelectedByDefault,
                    EmailValidator emailValidator);

    // Types that the host does not want to offer; to be set before anything is asked for.
    std::set<IntegrationExportContentType> notSupported;

    // Says of a user without an e-mail address whether the name to sign in with is one.
    const EmailValidator emailValidator;

    // What was loaded last, and where the last page went; kept in the account.
    CachedValue<OneNoteSaveToInfo> lastExportInfo{*this, "lastExportInfo"};
    CachedValue<OneNoteUser> myUser{*this, "myUser"};
    CachedValue<std::vector<OneNoteNotebook>> myNotebooks{*this, "myNotebooks"};

    // A stored target is offered as it stands, whether or not its section is still there.
    void loadConfiguration(Completion<OneNoteExportConfiguration, IntegrationLoadError> completion);

    ServiceExporterAttachmentsValidator createAttachmentsValidator() const;

    // The default stays what it is if it is not supported.
    IntegrationExportContentTypes contentTypes(IntegrationExportTarget target) const;

    // No value for a type that the service does not have, and where the host has no text.
    void loadPreview(IntegrationExportContentType type,
                     Callback<std::optional<IntegrationExportPreview>> completion);

    // Fails with `unsupportedFormat` before it returns; with `internalError` without a section that belongs
    // to the notebook, `createBodyError` without a text, a link to the message, an external link or a PDF,
    // `uploadAttachmentError` for an attachment that the host does not have, `oauthError` without credentials
    // and for a sign-in that is not accepted, `connectionError` and `internalError` for a page that the
    // service does not make, and `canceled`. A fetched attachment that cannot be read is logged, and the page
    // goes on without it.
    std::shared_ptr<ExportProgress> export_(OneNoteExportConfiguration configuration,
                                            Completion<void, IntegrationExportError> completion);

    std::optional<std::string> loadUserEmail() override;

  private:
    using Part = std::optional<ExporterHelperMultipartData>;
    using HeaderCallback = Callback<std::optional<std::string>>;

    OneNoteExportConfiguration offered(IntegrationAttachments attachments) const;
    std::optional<OneNoteSaveToInfo> createDefaultSaveToInfo() const;

    void fetchData(StepRun& run, DataCompletion done) override;
    std::optional<OneNoteFullData> loadedData() const override;

    // Steps.
    void createBody(StepRun& run, const OneNoteExportConfiguration& configuration,
                    StepCompletion<OneNotePage> done);
    void createPart(StepRun& run, std::int64_t attachmentPk, StepCompletion<Part> done);
    void createPage(StepRun& run, const OneNoteExportConfiguration& configuration,
                    const Step<OneNotePage>& body, const std::vector<Step<Part>>& parts,
                    StepCompletion<void> done);

    // Parts of the body's step.
    void createPdfBody(StepRun& run, const OneNoteExportConfiguration& configuration,
                       StepCompletion<OneNotePage> done);
    void createPdfPage(StepRun& run, const OneNoteExportConfiguration& configuration, const File& pdf,
                       StepCompletion<OneNotePage> done);
    void createLinkBody(StepRun& run, const OneNoteExportConfiguration& configuration,
                        StepCompletion<OneNotePage> done);
    void createMessageBody(std::string header, StepCompletion<OneNotePage> done);
    void createSummaryBody(const OneNoteExportConfiguration& configuration, std::string header,
                           StepCompletion<OneNotePage> done);
    void createExternalLinkBody(const OneNoteExportConfiguration& configuration,
                                StepCompletion<OneNotePage> done);
    // `nullopt` without a link to the message.
    void createHeader(StepRun& run, const OneNoteExportConfiguration& configuration, HeaderCallback done);
    void addHeaderBlock(std::string link, std::string note, HeaderCallback done);

    // Of a page with the message or its summary, that of the message: the host writes it into the HTML.
    std::string pageTitle(const OneNoteExportConfiguration& configuration) const;

    Part partOf(const URL& file);
    template <class Done> std::shared_ptr<OneNoteClient> createOneNoteClient(StepRun& run, Done& done);
};

} // namespace zelto
