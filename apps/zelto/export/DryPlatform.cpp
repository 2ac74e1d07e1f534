#include "export/DryPlatform.h"

#include "accounts/FolderAccounts.h"

#include <ZeltoHost/Folder/FolderFiles.h>
#include <ZeltoIntegrations/Evernote/EvernoteClient.h>
#include <ZeltoIntegrations/ICloud/ICloudClient.h>

namespace zelto::cli {

namespace {

class DryEvernoteClient final : public EvernoteClient {
  public:
    void fetchData(Completion<EvernoteData, EvernoteClientError> completion) override {
        completion(failure(EvernoteClientError::connectionError));
    }

    void createNote(std::string /*title*/, std::string /*content*/, EvernoteNotebook /*notebook*/,
                    std::vector<EvernoteTag> /*tags*/, std::vector<EvernoteAttachment> /*attachments*/,
                    std::string /*sourceUrl*/, Completion<void, EvernoteClientError> completion) override {
        completion({});
    }

    void cancelAllOperations() override {}
};

} // namespace

std::shared_ptr<EvernoteClient>
DryPlatform::evernoteClient(const ServiceAccountConfiguration& configuration) {
    return isFolderAccount(configuration) ? std::make_shared<DryEvernoteClient>() : nullptr;
}

std::shared_ptr<ICloudClient> DryPlatform::iCloudClient(const ServiceAccountConfiguration& configuration) {
    return HostPlatformInteractor::iCloudClient(configuration, FolderUse::plans);
}

} // namespace zelto::cli
