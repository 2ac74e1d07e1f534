#pragma once

#include <ZeltoIntegrations/Export/NetworkExporter.h>
#include <ZeltoIntegrations/Trello/TrelloExportConfiguration.h>
#include <ZeltoIntegrations/Trello/TrelloRecords.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

class TrelloClient;

// Makes a card on a list of a board, with a link to the message, a PDF of it where that is asked for, and
// attachments. A card that was made stays on the board when something behind it fails; the PDF and the
// fetched attachments stay where they were written.
class TrelloExporter final : public NetworkExporter {
  public:
    using NetworkExporter::NetworkExporter;

    using Configuration = TrelloExportConfiguration;
    using FullData = TrelloFullData;

    // What was loaded last, and where the last card went; kept in the account.
    std::optional<TrelloSaveToInfo> lastExportInfo() const;
    void setLastExportInfo(const std::optional<TrelloSaveToInfo>& info);
    std::optional<std::vector<TrelloBoard>> allBoards() const;
    void setAllBoards(const std::optional<std::vector<TrelloBoard>>& boards);
    std::optional<TrelloUser> user() const;
    void setUser(const std::optional<TrelloUser>& user);

    // A stored target is offered as it stands, whether or not its board is still there.
    void loadConfiguration(Completion<TrelloExportConfiguration, IntegrationLoadError> completion);

    // The target plays no part.
    IntegrationExportContentTypes contentTypes(IntegrationExportTarget target) const;

    // Nothing for a type that is not supported, and where the host has no link.
    void loadPreview(IntegrationExportContentType type,
                     Callback<std::optional<IntegrationExportPreview>> completion);

    // The user and the active boards: those that were loaded last, or with `force` from the service. Nothing
    // where a part of it was never loaded.
    void loadData(bool force, Completion<std::optional<TrelloFullData>, IntegrationLoadError> completion);

    // Fails with `unsupportedFormat` before it returns; with `oauthError` without credentials,
    // `createTaskError` without a card, `convertError` without a PDF, `uploadAttachmentError` when a file is
    // missing on one side or the other, and `canceled`.
    std::shared_ptr<ExportProgress> export_(TrelloExportConfiguration configuration,
                                            Completion<void, IntegrationExportError> completion);

    // Loads from the service.
    void fetchServiceData(Completion<void, IntegrationLoadError> withCompletion) override;
    std::optional<std::string> loadUserEmail() override;

  private:
    using CardID = std::string;
    using File = std::filesystem::path;

    std::optional<TrelloSaveToInfo> createDefaultSaveToInfo() const;
    std::optional<TrelloFullData> loadedData() const;
    IntegrationAttachments validated(const IntegrationAttachments& attachments) const;

    void createTrelloCard(const TrelloExportConfiguration& configuration, UpdateProgress updateProgress,
                          StepCompletion<CardID> done);
    static void warnOfLongDescription(const std::string& name, const std::string& link,
                                      const std::string& text);
    void addCard(const TrelloExportConfiguration& configuration, std::string name,
                 std::optional<std::string> link, StepCompletion<CardID> done);
    void createPdfFile(const TrelloExportConfiguration& configuration, UpdateProgress updateProgress,
                       StepCompletion<File> done);
    void fetchAttachment(std::int64_t attachmentPk, UpdateProgress updateProgress, StepCompletion<File> done);
    void uploadFileToTrelloCard(const Step<CardID>& createTrelloCardOperation,
                                const Step<File>& fetchAttachmentOperation, UpdateProgress updateProgress,
                                StepCompletion<void> done);
    std::shared_ptr<TrelloClient> createTrelloClient();

    std::shared_ptr<TrelloExporter> self();
};

} // namespace zelto
