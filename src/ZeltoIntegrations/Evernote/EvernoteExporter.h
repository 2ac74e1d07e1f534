#pragma once

#include <ZeltoIntegrations/Content/AttachmentsValidation.h>
#include <ZeltoIntegrations/Evernote/EvernoteExportConfiguration.h>
#include <ZeltoIntegrations/Evernote/EvernoteRecords.h>
#include <ZeltoIntegrations/Export/AccountDataExporter.h>
#include <ZeltoIntegrations/Export/StepExporter.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zelto {

class EvernoteClient;
enum class EvernoteClientError : int;
struct EvernoteContent;

// Makes a note in a notebook by the client that the host supplies: with the message, with a PDF of it or with
// a link of the user's, below the user's remark. The attachments of one note are read into memory.
class EvernoteExporter final : public AccountDataExporter<EvernoteData, StepExporter> {
  public:
    using AccountDataExporter::AccountDataExporter;

    using Configuration = EvernoteExportConfiguration;

    // Types that the host does not want to offer. Set before the first call of an operation.
    std::set<IntegrationExportContentType> notSupported;

    // What was loaded last, and where the last note went; kept in the account.
    CachedValue<EvernoteNotebook> lastExportInfo{*this, "lastExportInfo"};
    CachedValue<std::vector<EvernoteTag>> lastExportTags{*this, "lastExportTags"};
    CachedValue<EvernoteUser> cachedUser{*this, "userKey"};
    CachedValue<std::vector<EvernoteNotebook>> cachedNotebooks{*this, "notebooksKey"};
    CachedValue<std::vector<EvernoteTag>> cachedTags{*this, "tagsKey"};

    // A stored notebook and stored tags are offered as they stand, whether or not they are still there.
    void loadConfiguration(Completion<EvernoteExportConfiguration, IntegrationLoadError> completion);

    // The sum of the attachments is limited by the account's plan; without a known user by that of a free
    // account.
    ServiceExporterAttachmentsValidator createAttachmentsValidator() const;

    // Without the types that are not supported.
    IntegrationExportContentTypes contentTypes(IntegrationExportTarget target) const;

    // No value for a type that Evernote does not take, and where the host has no text.
    void loadPreview(IntegrationExportContentType type,
                     Callback<std::optional<IntegrationExportPreview>> completion);

    // Fails with `unsupportedFormat` before it returns; with `internalError` without a client, without a
    // content and without a link; with `uploadAttachmentError` when a file is missing, `createTaskError`
    // without a notebook and when the client makes no note, and `canceled`.
    std::shared_ptr<ExportProgress> export_(EvernoteExportConfiguration configuration,
                                            Completion<void, IntegrationExportError> completion);

    // The name of the user who was loaded last.
    std::optional<std::string> loadUserEmail() override;

  private:
    using Attachment = IntegrationsInteractorAttachment;
    // The step of the note takes the bytes out of it: nothing holds them twice.
    using ReadAttachment = std::shared_ptr<Attachment>;
    using Files = std::vector<Step<ReadAttachment>>;

    EvernoteExportConfiguration offered(IntegrationAttachments attachments) const;
    std::optional<EvernoteNotebook> createDefaultSaveToInfo() const;

    bool loadsWhatIsMissing() const override { return true; }

    void fetchData(StepRun& run, DataCompletion done) override;
    std::optional<EvernoteData> loadedData() const override;
    std::shared_ptr<EvernoteClient> createClient(StepRun& run);

    void readAttachment(StepRun& run, std::int64_t attachmentPk, StepCompletion<ReadAttachment> done);

    // The step of the content, which asks for the link in HTML, then for its URL, then for the rest.
    void makeContent(StepRun& run, const EvernoteExportConfiguration& configuration,
                     StepCompletion<EvernoteContent> done);
    static void failWithoutLink(StepCompletion<EvernoteContent> done);
    void askForURL(StepRun& run, const EvernoteExportConfiguration& configuration, std::string header,
                   StepCompletion<EvernoteContent> done);
    void makeLinkedContent(StepRun& run, const EvernoteExportConfiguration& configuration, std::string header,
                           std::string sourceUrl, StepCompletion<EvernoteContent> done);
    void htmlContent(std::string header, std::string sourceUrl, StepCompletion<EvernoteContent> done);
    void summaryContent(StepRun& run, std::string header, std::string sourceUrl,
                        StepCompletion<EvernoteContent> done);
    void pdfContent(StepRun& run, const std::string& title, EvernoteContent content,
                    StepCompletion<EvernoteContent> done);
    static void enmlContent(const EvernoteExportConfiguration& configuration,
                            StepCompletion<EvernoteContent> done);

    void createNote(StepRun& run, const EvernoteExportConfiguration& configuration, const Files& files,
                    const Step<EvernoteContent>& content, StepCompletion<void> done);
};

} // namespace zelto
