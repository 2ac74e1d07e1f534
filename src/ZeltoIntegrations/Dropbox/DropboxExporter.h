#pragma once

#include <ZeltoIntegrations/Content/AttachmentsValidation.h>
#include <ZeltoIntegrations/Dropbox/DropboxExporterConfiguration.h>
#include <ZeltoIntegrations/Dropbox/DropboxRecords.h>
#include <ZeltoIntegrations/Export/DriveExporter.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

class DropboxClient;

// Puts the message as a file, and attachments, into a folder of Dropbox. The clash check is a search, which
// also finds below the folder, and files that only contain the words of a name: each match counts. With
// `overrideExisting` the message's file replaces whatever has its name; an attachment replaces the file in
// the folder that has its name if a match had exactly that name, and else the service gives it another one.
class DropboxExporter final : public DriveExporter<DropboxUser, DropboxMetadata> {
  public:
    using DriveExporter::DriveExporter;

    using Configuration = DropboxExporterConfiguration;

    void loadConfiguration(Completion<DropboxExporterConfiguration, IntegrationLoadError> completion);

    ServiceExporterAttachmentsValidator createAttachmentsValidator() const;

    // All folders of the account, in the service's order. They are not kept.
    void fetchFolders(Completion<std::vector<DropboxFolder>, IntegrationLoadError> completion);

    std::shared_ptr<ExportProgress> export_(DropboxExporterConfiguration configuration,
                                            std::optional<ExportFilePolicy> policy,
                                            Completion<void, IntegrationExportError> completion);

  private:
    DropboxExporterConfiguration offered(IntegrationAttachments attachments) const;

    void fetchData(StepRun& run, DataCompletion done) override;
    void loadFolders(StepRun& run, LoadCompletion<std::vector<DropboxFolder>> done);

    void findExisting(StepRun& run, const std::vector<std::string>& fileNames,
                      const std::optional<std::string>& folder, FoundCompletion done) override;
    Making checking(const std::vector<std::string>& names) const override;
    void uploadFile(StepRun& run, const Upload& upload, StepCompletion<void> done) override;
    bool isReplaced(const DropboxMetadata& file, const std::string& name,
                    const std::optional<std::string>& folder) const override;
    std::string storedName(std::string name) const override;
    bool nameSameFile(const std::string& one, const std::string& other) const override;

    template <class Done> std::shared_ptr<DropboxClient> createDropboxClient(StepRun& run, Done& done);
};

} // namespace zelto
