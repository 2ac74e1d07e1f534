#pragma once

#include <ZeltoIntegrations/Import/IntegrationImportFile.h>
#include <ZeltoIntegrations/Import/ServiceImporter.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// Lists and downloads files of Google Drive.
class GoogleDriveImporter final : public ServiceImporter {
  public:
    using ServiceImporter::ServiceImporter;

    // The first 100 files and folders in the folder, or without one in the root; none of the trash.
    void fetchFiles(const std::optional<std::string>& folderId,
                    Completion<std::vector<IntegrationImportFile>, IntegrationLoadError> completion);

  private:
    void performDownload(StepRun& run, const DownloadFileInfo& file, std::filesystem::path goal,
                         DownloadProgress onBytes, DownloadCompletion done) override;
};

} // namespace zelto
