#include <ZeltoIntegrations/Import/ServiceImporter.h>

#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>

#include <Platform/FileManager.h>
#include <Platform/FileNames.h>
#include <Platform/Operations/ContainedException.h>

#include <utility>

namespace zelto {

namespace {

using LoadError = IntegrationLoadError;

// The text that analytics gets.
std::string analyticsText(LoadError error) {
    switch (error) {
    case LoadError::internalError:
        return "internal_error";
    case LoadError::oauthError:
        return "oauth_error";
    case LoadError::connectionError:
        return "connection_error";
    }
    std::unreachable();
}

} // namespace

// One call of downloadFiles(). Any thread.
class ServiceImporter::Download {
  public:
    explicit Download(std::vector<DownloadFileInfo> infos)
        : infos_(std::move(infos)), progress_(std::make_shared<ImportProgress>(infos_.size())),
          results_(infos_.size()) {}

    const std::vector<DownloadFileInfo>& infos() const { return infos_; }

    const std::shared_ptr<ImportProgress>& progress() const { return progress_; }

    void end(std::size_t index, DownloadResult result) {
        {
            const std::lock_guard guard(lock_);
            results_[index] = std::move(result);
        }
        progress_->endFile(index);
    }

    // When every file has come.
    std::vector<std::string> paths() const {
        const std::lock_guard guard(lock_);
        std::vector<std::string> paths;
        for (const auto& result : results_) {
            paths.push_back((*result)->native());
        }
        return paths;
    }

    ImportReport report() const {
        const std::lock_guard guard(lock_);
        ImportReport report;
        for (std::size_t index = 0; index < infos_.size(); ++index) {
            report.files.push_back({infos_[index], results_[index]});
        }
        return report;
    }

  private:
    const std::vector<DownloadFileInfo> infos_;
    const std::shared_ptr<ImportProgress> progress_;
    mutable std::mutex lock_;
    std::vector<std::optional<DownloadResult>> results_;
};

ServiceImporter::ServiceImporter(ServiceAccountConfiguration configuration,
                                 std::shared_ptr<IntegrationsPlatformInteractorProtocol> platformInteractor,
                                 std::optional<std::string> actionSource)
    : platformInteractor_(std::move(platformInteractor)), actionSource_(std::move(actionSource)),
      accountConfiguration_(std::move(configuration)) {}

ServiceImporter::~ServiceImporter() = default;

ServiceAccountConfiguration ServiceImporter::accountConfiguration() const {
    const std::lock_guard guard(lock_);
    return accountConfiguration_;
}

void ServiceImporter::setAccountConfiguration(ServiceAccountConfiguration configuration) {
    const std::lock_guard guard(lock_);
    accountConfiguration_ = std::move(configuration);
}

void ServiceImporter::setDownloadFolder(std::optional<std::filesystem::path> folder) {
    const std::lock_guard guard(lock_);
    downloadFolder_ = std::move(folder);
}

void ServiceImporter::downloadFile(std::string fileId, std::string fileName,
                                   Completion<std::string, LoadError> completion) {
    const auto run = newRun();
    const auto goal = goalFor(fileName);
    if (!goal) {
        return completion(failure(LoadError::internalError));
    }
    performDownload(*run, DownloadFileInfo(std::move(fileId), std::move(fileName)), *goal, nullptr,
                    [self = shared_from_this(), run,
                     completion = std::move(completion)](const DownloadResult& result) mutable {
                        completion(result ? Result<std::string, LoadError>(result->native())
                                          : failure(loadError(result.error().service)));
                    });
}

std::shared_ptr<ImportProgress>
ServiceImporter::downloadFiles(std::vector<DownloadFileInfo> fileInfos,
                               Completion<std::vector<std::string>, LoadError> completion) {
    const auto download = std::make_shared<Download>(std::move(fileInfos));
    {
        const std::lock_guard guard(lock_);
        lastDownload_ = download;
    }
    auto finish = [download, completion = std::make_shared<Completion<std::vector<std::string>, LoadError>>(
                                 std::move(completion))](Result<void, LoadError> result) {
        (*completion)(result ? Result<std::vector<std::string>, LoadError>(download->paths())
                             : failure(result.error()));
    };
    auto run = std::make_shared<TypedRun<LoadError>>(nullptr, std::make_shared<ExportReportLog>(),
                                                     FailureRule::goOn, std::move(finish));
    remember(run);
    download->progress()->setCancellationHandler([weakly = std::weak_ptr(run)] {
        if (const auto cancelled = weakly.lock()) {
            cancelled->cancelRequests();
        }
    });
    Steps<ServiceImporter, LoadError> steps(shared_from_this(), tasks_, std::move(run));
    for (std::size_t index = 0; index < download->infos().size(); ++index) {
        steps.add<std::string>(&ServiceImporter::downloadStep, download, index);
    }
    steps.execute();
    return download->progress();
}

void ServiceImporter::downloadStep(StepRun& run, const std::shared_ptr<Download>& download, std::size_t index,
                                   Completion<std::string, LoadError> done) {
    const auto& info = download->infos()[index];
    DownloadCompletion ended = [this, download, index,
                                done = std::move(done)](const DownloadResult& result) mutable {
        const auto error = result ? std::nullopt : std::optional(loadError(result.error().service));
        download->end(index, result);
        postAnalytics(ImportActionType::downloadFile, error);
        done(error ? Result<std::string, LoadError>(failure(*error)) : result->native());
    };
    auto goal = goalFor(info.fileName());
    if (!goal) {
        return ended(failure(DownloadError{ServiceClientError::internalError, goal.error()}));
    }
    performDownload(
        run, info, *std::move(goal),
        [progress = download->progress(), index](const DownloadedBytes& bytes) {
            progress->setBytes(index, bytes);
        },
        std::move(ended));
}

void ServiceImporter::performDownload(StepRun&, const DownloadFileInfo&, std::filesystem::path,
                                      DownloadProgress, DownloadCompletion done) {
    done(failure(DownloadError{}));
}

ImportReport ServiceImporter::importReport() const {
    std::unique_lock guard(lock_);
    const auto download = lastDownload_;
    guard.unlock();
    return download ? download->report() : ImportReport();
}

std::optional<ServiceRefusal> ServiceImporter::lastRefusal() const {
    const std::lock_guard guard(lock_);
    return lastRefusal_;
}

void ServiceImporter::cancelTasks() {
    std::unique_lock guard(lock_);
    const auto runs = runs_;
    guard.unlock();
    for (const auto& each : runs) {
        if (const auto run = each.lock()) {
            run->cancelRequests();
        }
    }
}

std::shared_ptr<StepRun> ServiceImporter::newRun() {
    auto run = std::make_shared<StepRun>(nullptr, std::make_shared<ExportReportLog>());
    remember(run);
    return run;
}

void ServiceImporter::remember(const std::shared_ptr<StepRun>& run) {
    const std::lock_guard guard(lock_);
    std::erase_if(runs_, [](const auto& each) { return each.expired(); });
    runs_.push_back(run);
    lastRefusal_.reset();
}

ServiceClientError ServiceImporter::reasonForNoClient(const StepRun& run) {
    return run.isCancelled() ? ServiceClientError::connectionError : ServiceClientError::oauthError;
}

AccountAuthoriser::TokensObserver ServiceImporter::tokensObserver() {
    return [weakly = weak_from_this()](const ServiceAccountCredentials& refreshed) {
        if (const auto importer = weakly.lock()) {
            importer->takeRefreshedTokens(refreshed);
        }
    };
}

ServiceClient::RefusalObserver ServiceImporter::refusalObserver() {
    return [weakly = weak_from_this()](const ServiceRefusal& refusal) {
        if (const auto importer = weakly.lock()) {
            importer->noteRefusal(refusal);
        }
    };
}

void ServiceImporter::takeRefreshedTokens(const ServiceAccountCredentials& credentials) {
    const std::lock_guard guard(lock_);
    if (accountConfiguration_.credentials) {
        ServiceCredentialsManager::fill(credentials, *accountConfiguration_.credentials);
    }
}

void ServiceImporter::noteRefusal(const ServiceRefusal& refusal) {
    const std::lock_guard guard(lock_);
    lastRefusal_ = refusal;
}

Result<std::filesystem::path, FileError> ServiceImporter::goalFor(const std::string& fileName) const {
    const auto name = cleanedFileName(fileName);
    std::unique_lock guard(lock_);
    const auto folder = downloadFolder_;
    guard.unlock();
    return folder ? *folder / name : FileManager::temporaryPath(name);
}

void ServiceImporter::postAnalytics(ImportActionType actionType, std::optional<LoadError> importError) {
    containingExceptions("The analytics of an import", [&] {
        platformInteractor_->postImportEvent(accountConfiguration().serviceType(), actionType, actionSource_,
                                             importError.transform(analyticsText));
    });
}

} // namespace zelto
