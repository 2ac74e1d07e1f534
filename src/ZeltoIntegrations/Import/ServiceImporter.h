#pragma once

#include <ZeltoIntegrations/Accounts/ServiceAccountConfiguration.h>
#include <ZeltoIntegrations/Client/AccountClient.h>
#include <ZeltoIntegrations/Content/IntegrationError.h>
#include <ZeltoIntegrations/Export/IntegrationsPlatformInteractorProtocol.h>
#include <ZeltoIntegrations/Export/StepRun.h>
#include <ZeltoIntegrations/Import/DownloadFileInfo.h>
#include <ZeltoIntegrations/Import/ImportProgress.h>
#include <ZeltoIntegrations/Import/ImportReport.h>
#include <ZeltoIntegrations/Import/IntegrationImportFile.h>

#include <Platform/Completion.h>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zelto {

// Brings files of a cloud drive to disk; the counterpart of ServiceExporter. A concrete importer adds the
// listing of a folder, `fetchFiles(folder, completion)`.
//
// Always made with std::make_shared. Any thread. Completions come on the thread on which a session delivers
// or on one of a queue. Downloads keep the importer alive until they have ended; a listing does not, and
// fails when the importer is released before it came. Refreshed tokens go to the key chain and to the
// importer's own copy of the account; an importer has no storage.
class ServiceImporter : public std::enable_shared_from_this<ServiceImporter> {
  public:
    ServiceImporter(ServiceAccountConfiguration configuration,
                    std::shared_ptr<IntegrationsPlatformInteractorProtocol> platformInteractor,
                    std::optional<std::string> actionSource);
    virtual ~ServiceImporter();
    ServiceImporter(const ServiceImporter&) = delete;
    ServiceImporter& operator=(const ServiceImporter&) = delete;

    // The importer's own copy of the account.
    ServiceAccountConfiguration accountConfiguration() const;
    void setAccountConfiguration(ServiceAccountConfiguration configuration);

    // The folder, which must exist, that files are put into from now on. Without one each file lies in a
    // folder of its own in the temporary directory, which goes when the process ends.
    void setDownloadFolder(std::optional<std::filesystem::path> folder);

    // Brings one file to disk and completes with its path: the name is cleaned by cleanedFileName() and
    // numbered where it is taken. While it comes, it lies beside it as ".part".
    void downloadFile(std::string fileId, std::string fileName,
                      Completion<std::string, IntegrationLoadError> completion);

    // Brings the files to disk, side by side, and completes with their paths in the order of the list, or
    // with the first failure in that order when all have ended. Posts an analytics event for each. Cancelling
    // the progress ends the downloads with `connectionError`; when the completion comes, nothing is left of
    // what had not come whole.
    std::shared_ptr<ImportProgress>
    downloadFiles(std::vector<DownloadFileInfo> fileInfos,
                  Completion<std::vector<std::string>, IntegrationLoadError> completion);

    // Of the last call of downloadFiles(), also while it runs.
    ImportReport importReport() const;

    // Of the last request that failed since a listing or download was begun last; no value where none has.
    std::optional<ServiceRefusal> lastRefusal() const;

    // Ends everything under way with `connectionError`.
    void cancelTasks();

  protected:
    // A download as a part of a run. A concrete importer sends one request by the client of the run.
    virtual void performDownload(StepRun& run, const DownloadFileInfo& file, std::filesystem::path goal,
                                 DownloadProgress onBytes, DownloadCompletion done);

    // The run of a listing, which is one request.
    std::shared_ptr<StepRun> newRun();

    // The run's client with the account's credentials. Where there is none, `done` has got why, and null is
    // returned: `oauthError` for an account without credentials, `connectionError` for a run that was
    // cancelled.
    template <class Client, class Authoriser, class T>
    std::shared_ptr<Client> clientOf(StepRun& run, Completion<T, IntegrationLoadError>& done) {
        auto client = madeClientOf<Client, Authoriser>(run);
        if (!client) {
            done(failure(loadError(reasonForNoClient(run))));
        }
        return client;
    }

    template <class Client, class Authoriser>
    std::shared_ptr<Client> clientOf(StepRun& run, DownloadCompletion& done) {
        auto client = madeClientOf<Client, Authoriser>(run);
        if (!client) {
            done(failure(DownloadError{reasonForNoClient(run)}));
        }
        return client;
    }

    // The completion of the request of a listing, of which `toFile` makes each entry. It holds the importer
    // weakly, and fails once that is gone.
    template <class Entry, class ToFile>
    Completion<std::vector<Entry>, ServiceClientError>
    listed(std::shared_ptr<StepRun> run, ToFile toFile,
           Completion<std::vector<IntegrationImportFile>, IntegrationLoadError> done) {
        return [weakly = weak_from_this(), run = std::move(run), toFile,
                done = std::move(done)](Result<std::vector<Entry>, ServiceClientError> entries) mutable {
            if (weakly.expired() || !entries) {
                return done(
                    failure(entries ? IntegrationLoadError::internalError : loadError(entries.error())));
            }
            std::vector<IntegrationImportFile> files;
            files.reserve(entries->size());
            for (auto& entry : *entries) {
                files.push_back(toFile(std::move(entry)));
            }
            done(std::move(files));
        };
    }

  private:
    class Download;

    template <class Client, class Authoriser> std::shared_ptr<Client> madeClientOf(StepRun& run) {
        return run.client<Client>([&]() -> std::shared_ptr<Client> {
            const auto credentials = accountConfiguration().credentials;
            if (!credentials) {
                return nullptr;
            }
            return makeAccountClient<Client, Authoriser>(*credentials, tokensObserver(), refusalObserver());
        });
    }

    static ServiceClientError reasonForNoClient(const StepRun& run);

    AccountAuthoriser::TokensObserver tokensObserver();
    ServiceClient::RefusalObserver refusalObserver();
    void takeRefreshedTokens(const ServiceAccountCredentials& credentials);
    void noteRefusal(const ServiceRefusal& refusal);
    void remember(const std::shared_ptr<StepRun>& run);
    Result<std::filesystem::path, FileError> goalFor(const std::string& fileName) const;
    void downloadStep(StepRun& run, const std::shared_ptr<Download>& download, std::size_t index,
                      Completion<std::string, IntegrationLoadError> done);
    void postAnalytics(ImportActionType actionType, std::optional<IntegrationLoadError> importError);

    TaskRunner tasks_;
    const std::shared_ptr<IntegrationsPlatformInteractorProtocol> platformInteractor_;
    const std::optional<std::string> actionSource_;
    mutable std::mutex lock_; // guards what follows
    ServiceAccountConfiguration accountConfiguration_;
    std::optional<std::filesystem::path> downloadFolder_;
    std::vector<std::weak_ptr<StepRun>> runs_;
    std::shared_ptr<const Download> lastDownload_;
    std::optional<ServiceRefusal> lastRefusal_;
};

} // namespace zelto
