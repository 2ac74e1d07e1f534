#pragma once

#include <ZeltoIntegrations/Content/AttachmentsValidation.h>
#include <ZeltoIntegrations/Export/AccountDataExporter.h>
#include <ZeltoIntegrations/Trello/TrelloExportConfiguration.h>
#include <ZeltoIntegrations/Trello/TrelloRecords.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

class TrelloClient;

// Makes a card on a list of a board, with a link to the message, a PDF of it where that is asked for, and
// attachments. A card that was made stays on the board when something after it fails; the PDF and the
// fetched attachments stay where they were written.
class TrelloExporter final : public AccountDataExporter<TrelloFullData> {
  public:
    using AccountDataExporter::AccountDataExporter;

    using Configuration = TrelloExportConfiguration;

    // What was loaded last, and where the last card went; kept in the account.
    CachedValue<TrelloSaveToInfo> lastExportInfo{*this, "lastExportInfo"};
    CachedValue<std::vector<TrelloBoard>> allBoards{*this, "allBoards"};
    CachedValue<TrelloUser> user{*this, "user"};

    // A stored target is offered as it stands, whether or not its board is still there.
    void loadConfiguration(Completion<TrelloExportConfiguration, IntegrationLoadError> completion);

    // By the plan of the user that was loaded last.
    ServiceExporterAttachmentsValidator createAttachmentsValidator() const;

    // The target plays no part.
    IntegrationExportContentTypes contentTypes(IntegrationExportTarget target) const;

    // No value for a type that is not supported, and where the host has no link.
    void loadPreview(IntegrationExportContentType type,
                     Callback<std::optional<IntegrationExportPreview>> completion);

    // Fails with `unsupportedFormat` before it returns; with `oauthError` without credentials,
    // `createTaskError` without a card, `convertError` without a PDF, `uploadAttachmentError` when a file is
    // missing on one side or the other, and `canceled`.
    std::shared_ptr<ExportProgress> export_(TrelloExportConfiguration configuration,
                                            Completion<void, IntegrationExportError> completion);

    std::optional<std::string> loadUserEmail() override;

  private:
    using CardID = std::string;

    std::optional<TrelloSaveToInfo> createDefaultSaveToInfo() const;
    TrelloExportConfiguration offered(IntegrationAttachments attachments) const;

    void fetchData(StepRun& run, DataCompletion done) override;
    void loadBoards(TrelloClient& client, std::optional<IntegrationLoadError> userError, DataCompletion done);
    std::optional<TrelloFullData> loadedData() const override;

    void createTrelloCard(StepRun& run, const TrelloExportConfiguration& configuration,
                          StepCompletion<CardID> done);
    void checkDescription(StepRun& run, const TrelloExportConfiguration& configuration,
                          std::optional<std::string> link, StepCompletion<CardID> done);
    static void warnOfLongDescription(const std::string& name, const std::string& link,
                                      const std::string& text);
    void addCard(StepRun& run, const TrelloExportConfiguration& configuration,
                 const std::optional<std::string>& link, StepCompletion<CardID> done);
    void uploadFileToTrelloCard(StepRun& run, const Step<CardID>& createTrelloCardOperation,
                                const Step<File>& fetchAttachmentOperation, StepCompletion<void> done);
    template <class Done> std::shared_ptr<TrelloClient> createTrelloClient(StepRun& run, Done& done);
};

} // namespace zelto
