#pragma once

#include <ZeltoHost/Folder/FolderFiles.h>
#include <ZeltoIntegrations/ICloud/ICloudClient.h>

#include <ZeltoCommonLogger/LoggerClient.h>

#include <filesystem>
#include <memory>
#include <optional>

namespace zelto {

class ServiceAccountConfiguration;

// A client of iCloud Drive for accounts that are a folder, which the system or another program keeps
// synchronised: each file is copied into it by the rules of FolderFiles, under its cleaned name.
//
// Everything is done before an operation returns; what is cancelled by then, from another thread, ends with
// `canceled` and leaves nothing. A file that cannot be read or written is an `internalError`, whose reason is
// logged. Any thread.
class ICloudFolderClient final : public ICloudClient, protected LoggerClient {
  public:
    explicit ICloudFolderClient(std::filesystem::path folder, FolderUse use = FolderUse::writes);

    // The client of an account that setFolder has made one of a folder; null for other accounts.
    static std::shared_ptr<ICloudFolderClient> of(const ServiceAccountConfiguration& account,
                                                  FolderUse use = FolderUse::writes);

    // Makes it an account of that folder, whose path is made absolute.
    static void setFolder(ServiceAccountConfiguration& account, const std::filesystem::path& folder);
    static std::optional<std::filesystem::path> folderOf(const ServiceAccountConfiguration& account);

    void uploadFile(std::filesystem::path file, Completion<void, ICloudClientError> completion) override;

    void cancelAllOperations() override { files_->cancelAll(); }

    void close() override { files_->close(); }

    // What it has made, and why not.
    std::shared_ptr<const FolderFiles> files() const { return files_; }

  private:
    const std::shared_ptr<FolderFiles> files_;
};

} // namespace zelto
