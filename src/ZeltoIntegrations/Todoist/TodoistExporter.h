#pragma once

#include <ZeltoIntegrations/Content/AttachmentsValidation.h>
#include <ZeltoIntegrations/Export/TextExporter.h>
#include <ZeltoIntegrations/Todoist/TodoistExportConfiguration.h>
#include <ZeltoIntegrations/Todoist/TodoistRecords.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

class TodoistClient;
struct TodoistCommand;
struct TodoistFile;
struct TodoistUploadResponse;

// Makes a task in a project, with the message's text or link as a comment and a comment for each attachment.
// Files are uploaded first, since the one request that makes the task refers to them. The first failure ends
// the export, and what was uploaded by then stays on the service.
class TodoistExporter final
    : public TextExporter<TodoistFullData, ContentText::Link::altBacklink, IntegrationLinkFormat::markdown> {
  public:
    using TextExporter::TextExporter;

    using Configuration = TodoistExportConfiguration;

    // What was loaded last, and where the last task went; kept in the account.
    CachedValue<TodoistSaveToInfo> lastExportInfo{*this, "lastExportInfo"};
    CachedValue<TodoistUser> myUser{*this, "myUser"};
    CachedValue<std::vector<TodoistProject>> myProjects{*this, "myProjects"};

    // A stored target is offered as it stands, whether or not its project is still there.
    void loadConfiguration(Completion<TodoistExportConfiguration, IntegrationLoadError> completion);

    // The size of a file is limited by the account's plan; without a known user by that of a free account.
    ServiceExporterAttachmentsValidator createAttachmentsValidator() const;

    // Fails with `unsupportedFormat` before it returns; with `createBodyError` without a text, `oauthError`
    // without credentials, `uploadAttachmentError` when a file is missing on one side or the other,
    // `createTaskError` when the service does not take the task as a whole, and `canceled`.
    std::shared_ptr<ExportProgress> export_(TodoistExportConfiguration configuration,
                                            Completion<void, IntegrationExportError> completion);

    std::optional<std::string> loadUserEmail() override;

  private:
    using Commands = std::shared_ptr<const std::vector<TodoistCommand>>;
    using Files = std::vector<Step<TodoistFile>>;

    TodoistExportConfiguration offered(IntegrationAttachments attachments) const;
    std::optional<TodoistSaveToInfo> createDefaultSaveToInfo() const;

    void fetchData(StepRun& run, DataCompletion done) override;
    std::optional<TodoistFullData> loadedData() const override;

    void uploadAttachment(StepRun& run, std::int64_t attachmentPk, StepCompletion<TodoistFile> done);
    void upload(StepRun& run, const File& file, StepCompletion<TodoistFile> done);
    void addTask(StepRun& run, const TodoistExportConfiguration& configuration, const Step<std::string>& text,
                 const Files& files, StepCompletion<void> done);
    Commands commandsOf(const TodoistExportConfiguration& configuration, const Step<std::string>& text,
                        const Files& files) const;
    static ExporterResult<void> commentsResult(StepRun& run, const TodoistUploadResponse& response,
                                               const std::vector<TodoistCommand>& commands);
    template <class Done> std::shared_ptr<TodoistClient> createTodoistClient(StepRun& run, Done& done);
};

} // namespace zelto
