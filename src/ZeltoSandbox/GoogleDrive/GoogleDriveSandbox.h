#pragma once

#include <ZeltoSandbox/Drives/Drive.h>
#include <ZeltoSandbox/GoogleDrive/GoogleDriveErrors.h>
#include <ZeltoSandbox/GoogleDrive/GoogleDriveUpload.h>
#include <ZeltoSandbox/OAuth/SecretTable.h>
#include <ZeltoSandbox/SandboxService.h>

#include <memory>

namespace zelto::sandbox {

// The part of the Google Drive API, version 3, that lists, uploads and downloads files.
class GoogleDriveSandbox final : public SandboxService {
  public:
    static std::unique_ptr<SandboxService> make(SandboxContext& context, const SandboxServiceRow& row);

    explicit GoogleDriveSandbox(SandboxContext& context);

    SandboxResponse respond(const SandboxRequest& request) override;
    SandboxResponse failure(int status) const override;
    JSONObject state() const override;
    void reset() override;

  private:
    // Where the next page of a list begins, and of which one.
    struct NextPage {
        std::string query;
        std::string orderBy;
        std::size_t position = 0;
    };

    static const SandboxEndpoint<GoogleDriveSandbox> endpoints[];

    SandboxResponse routed(const SandboxRequest& request);
    SandboxResponse about(const SandboxRequest& request);
    SandboxResponse list(const SandboxRequest& request);
    SandboxResponse file(const SandboxRequest& request);
    SandboxResponse create(const SandboxRequest& request);
    SandboxResponse update(const SandboxRequest& request);

    // The records that the query selects, in their order.
    Result<std::vector<const DriveEntry*>, GoogleError> selected(const NextPage& page);
    Result<NextPage, GoogleError> pageOf(const SandboxRequest& request);
    // Checked as an upload; the error is why it is refused.
    Result<GoogleDriveUpload, GoogleError> uploadOf(const SandboxRequest& request);
    Result<const DriveEntry*, GoogleError> parentOf(const GoogleDriveUpload& upload);

    Drive& drive() const { return *drive_; }

    SandboxContext& context_;
    std::unique_ptr<Drive> drive_;
    SecretTable<NextPage> nextPages_;
};

} // namespace zelto::sandbox
