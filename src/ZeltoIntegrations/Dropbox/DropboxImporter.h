#pragma once

#include <ZeltoIntegrations/Import/IntegrationImportFile.h>
#include <ZeltoIntegrations/Import/ServiceImporter.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// Lists and downloads files of Dropbox.
class DropboxImporter final : public ServiceImporter {
  public:
    using ServiceImporter::ServiceImporter;

    // The files and folders in the folder: a path, an identifier ("id:…"), or without one the root.
    void fetchFiles(const std::optional<std::string>& folderPath,
                    Completion<std::vector<IntegrationImportFile>, IntegrationLoadError> completion);

  private:
    void performDownload(StepRun& run, const DownloadFileInfo& file, std::filesystem::path goal,
                         DownloadProgress onBytes, DownloadCompletion done) override;
};

} // namespace zelto
