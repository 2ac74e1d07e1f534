#pragma once

#include <ZeltoIntegrations/Content/AttachmentsValidation.h>
#include <ZeltoIntegrations/Export/StepExporter.h>
#include <ZeltoIntegrations/ICloud/ICloudExportConfiguration.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace zelto {

class ICloudClient;

// Puts files on the user's iCloud Drive by a client of the host's: the message as a PDF or as its plain text
// with a link to it, and the chosen attachments.
class ICloudExporter final : public StepExporter {
  public:
    using StepExporter::StepExporter;

    using Configuration = ICloudExportConfiguration;

    void loadConfiguration(Completion<ICloudExportConfiguration, IntegrationLoadError> completion);

    // Without a limit: every attachment is allowed.
    ServiceExporterAttachmentsValidator createAttachmentsValidator() const;

    IntegrationExportContentTypes contentTypes(IntegrationExportTarget target) const;

    // No value for a type that is not supported, and where the host has no text.
    void loadPreview(IntegrationExportContentType type,
                     Callback<std::optional<IntegrationExportPreview>> completion);

    // The message's file goes first, then the attachments in their order. Fails with `unsupportedFormat`
    // before it returns; with `convertError` or `createBodyError` where the host makes no PDF or has no text
    // with a link, with `uploadAttachmentError` where it has not the file of an attachment, and as the client
    // does; `internalError` without a client. What is on the drive then stays there.
    std::shared_ptr<ExportProgress> export_(ICloudExportConfiguration configuration,
                                            std::shared_ptr<ICloudClient> client,
                                            Completion<void, IntegrationExportError> completion);

  private:
    using Client = std::shared_ptr<ICloudClient>;

    ICloudExportConfiguration offered(IntegrationAttachments attachments) const;

    void makeFile(StepRun& run, const ICloudExportConfiguration& configuration, StepCompletion<File> done);
    void uploadMessage(StepRun& run, const Client& client, const Step<File>& file, StepCompletion<void> done);
    void uploadAttachment(StepRun& run, const Client& client, std::int64_t attachmentPk,
                          StepCompletion<void> done);
    void uploadFetched(StepRun& run, const File& file, const Client& client, StepCompletion<void> done);
    void uploadFile(StepRun& run, const File& file, const Client& client, StepCompletion<void> done);
};

} // namespace zelto
