#pragma once

#include <ZeltoIntegrations/Content/AttachmentsValidation.h>
#include <ZeltoIntegrations/Export/DriveExporter.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveExporterConfiguration.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveRecords.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

class GoogleDriveClient;

// Puts the message as a file, and attachments, into a folder of Google Drive, which may have several files of
// one name. The clash check compares `getNameWithExtension` of the first 100 entries of the folder; folders
// are no clash. With `overrideExisting` a file that it has found keeps its identifier and gets the new
// content: of two with one name, the first.
class GoogleDriveExporter final : public DriveExporter<GoogleDriveUser, GoogleDriveFile> {
  public:
    using DriveExporter::DriveExporter;

    using Configuration = GoogleDriveExporterConfiguration;

    void loadConfiguration(Completion<GoogleDriveExporterConfiguration, IntegrationLoadError> completion);

    ServiceExporterAttachmentsValidator createAttachmentsValidator() const;

    // All folders of the account, by name. They are not kept.
    void fetchFolders(Completion<std::vector<GoogleDriveFolder>, IntegrationLoadError> completion);

    std::shared_ptr<ExportProgress> export_(GoogleDriveExporterConfiguration configuration,
                                            std::optional<ExportFilePolicy> policy,
                                            Completion<void, IntegrationExportError> completion);

  private:
    GoogleDriveExporterConfiguration offered(IntegrationAttachments attachments) const;

    void fetchData(StepRun& run, DataCompletion done) override;
    void loadFolders(StepRun& run, LoadCompletion<std::vector<GoogleDriveFolder>> done);

    void findExisting(StepRun& run, const std::vector<std::string>& fileNames,
                      const std::optional<std::string>& folder, FoundCompletion done) override;
    Making checking(const std::vector<std::string>& names) const override;
    void uploadFile(StepRun& run, const Upload& upload, StepCompletion<void> done) override;
    bool isReplaced(const GoogleDriveFile& file, const std::string& name,
                    const std::optional<std::string>& folder) const override;

    template <class Done>
    std::shared_ptr<GoogleDriveClient> createGoogleDriveClient(StepRun& run, Done& done);
};

} // namespace zelto
