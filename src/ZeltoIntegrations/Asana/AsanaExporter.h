#pragma once

#include <ZeltoIntegrations/Asana/AsanaExportConfiguration.h>
#include <ZeltoIntegrations/Asana/AsanaRecords.h>
#include <ZeltoIntegrations/Content/AttachmentsValidation.h>
#include <ZeltoIntegrations/Export/AccountDataExporter.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

class AsanaClient;

// Makes a task in a project of a workspace, with the message as a PDF and attachments. A task that was made
// stays when something after it fails; the PDF and the fetched attachments stay where they were written.
class AsanaExporter final : public AccountDataExporter<AsanaFullData> {
  public:
    using AccountDataExporter::AccountDataExporter;

    using Configuration = AsanaExportConfiguration;

    // What was loaded last, and where the last task went; kept in the account.
    CachedValue<AsanaSaveToInfo> lastExportInfo{*this, "lastExportInfo"};
    CachedValue<AsanaUser> myUser{*this, "myUser"};
    CachedValue<std::vector<AsanaWorkspace>> myWorkspaces{*this, "myWorkspaces"};

    // A stored target is offered as it stands, whether or not its project is still there.
    void loadConfiguration(Completion<AsanaExportConfiguration, IntegrationLoadError> completion);

    ServiceExporterAttachmentsValidator createAttachmentsValidator() const;

    // The target plays no part.
    IntegrationExportContentTypes contentTypes(IntegrationExportTarget target) const;

    // No value for a type that is not supported.
    void loadPreview(IntegrationExportContentType type,
                     Callback<std::optional<IntegrationExportPreview>> completion);

    // Fails with `unsupportedFormat` before it returns; with `convertError` without a PDF, `oauthError`
    // without credentials, `createTaskError` without a task, `internalError` for an attachment that the host
    // does not have, `uploadAttachmentError` for a file that the service does not take, and `canceled`.
    std::shared_ptr<ExportProgress> export_(AsanaExportConfiguration configuration,
                                            Completion<void, IntegrationExportError> completion);

    std::optional<std::string> loadUserEmail() override;

  private:
    using TaskID = std::string;

    AsanaExportConfiguration offered(IntegrationAttachments attachments) const;
    std::optional<AsanaSaveToInfo> createDefaultSaveToInfo() const;

    void fetchData(StepRun& run, DataCompletion done) override;
    std::optional<AsanaFullData> loadedData() const override;

    void createAsanaTask(StepRun& run, const AsanaExportConfiguration& configuration,
                         StepCompletion<TaskID> done);
    void uploadPdf(StepRun& run, const Step<File>& pdf, const Step<TaskID>& task, StepCompletion<void> done);
    void uploadAttachment(StepRun& run, std::int64_t withPk, const Step<TaskID>& forTask,
                          StepCompletion<void> done);
    void uploadFile(StepRun& run, const File& file, const TaskID& forTaskId, StepCompletion<void> done);
    template <class Done> std::shared_ptr<AsanaClient> createAsanaClient(StepRun& run, Done& done);
};

} // namespace zelto
