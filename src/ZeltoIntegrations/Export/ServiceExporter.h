#pragma once

#include <ZeltoIntegrations/Accounts/ServiceConfigurationsStorage.h>
#include <ZeltoIntegrations/Client/CancellableServiceClient.h>
#include <ZeltoIntegrations/Content/IntegrationError.h>
#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>
#include <ZeltoIntegrations/Content/IntegrationsDataInteractorProtocol.h>
#include <ZeltoIntegrations/Export/ExportConfig.h>
#include <ZeltoIntegrations/Export/ExportProgress.h>
#include <ZeltoIntegrations/Export/ExporterAsyncOperation.h>
#include <ZeltoIntegrations/Export/IntegrationsPlatformInteractorProtocol.h>
#include <ZeltoIntegrations/Export/TaskRunner.h>

#include <ZeltoCommonLogger/LoggerClient.h>

#include <Platform/Operations/ContainedException.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zelto {

// The common base of all exporters, built per mail: a serial queue of steps, the account, the host's three
// objects and the way one export is closed. A concrete exporter adds `contentTypes(target)`,
// `loadConfiguration(completion)`, `loadPreview(type, completion)` and `export_(configuration, completion)`.
//
// Steps run on queue threads, never on the caller's, and so do completions, except that of an export which
// ends before its first step (`unsupportedFormat`): it comes before `export_` returns. An export in progress
// keeps its exporter alive. Nothing that was done on the service is rolled back after a failure.
class ServiceExporter : public LoggerClient, public std::enable_shared_from_this<ServiceExporter> {
  public:
    ServiceExporter(ServiceAccountConfiguration configuration,
                    std::shared_ptr<ServiceConfigurationsStorage> configurationStorage,
                    std::shared_ptr<IntegrationsPlatformInteractorProtocol> platformInteractor,
                    std::shared_ptr<IntegrationsDataInteractorProtocol> dataInteractor,
                    std::optional<std::string> actionSource, bool attachmentsAreSelectedByDefault);
    virtual ~ServiceExporter();

    // The exporter's own copy of the account: refreshed tokens and cached values land here.
    ServiceAccountConfiguration accountConfiguration() const;
    // Changes that copy; saveConfiguration() is the caller's to call. No other thread changes it meanwhile,
    // and the function calls nothing of this exporter.
    void modifyAccountConfiguration(const std::function<void(ServiceAccountConfiguration&)>& change);

    IntegrationExportTarget exportTarget() const;

    // The content type of the last export with this account.
    std::optional<IntegrationExportContentType> lastExportContentType() const;
    void setLastExportContentType(std::optional<IntegrationExportContentType> type);

    // A cached value of the account. Setting one saves the whole account through the storage.
    template <class T> std::optional<T> getCachedValue(const std::string& key) const {
        return accountConfiguration().getCachedItem<T>(key);
    }

    template <class T> void setCachedValue(const std::optional<T>& value, const std::string& key) {
        modifyAccountConfiguration(
            [&](ServiceAccountConfiguration& account) { account.setCachedItem(value, key); });
        saveConfiguration();
    }

    // Fills the caches with what the service knows of the account. An exporter without such data fails with
    // `internalError`.
    virtual void fetchServiceData(Completion<void, IntegrationLoadError> withCompletion);
    // The e-mail or login of the signed-in user, from the data fetched.
    virtual std::optional<std::string> loadUserEmail();

    void saveConfiguration();

  protected:
    // Takes refreshed tokens into the exporter's copy of the account, and saves the account if it is still
    // stored: one that was removed meanwhile stays removed.
    void takeRefreshedTokens(const ServiceAccountCredentials& credentials);

    // Delivers the result of one export: the first call counts.
    template <class T> using ResultMediator = std::function<void(ExporterResult<T>)>;
    // Produces the configuration that the exporter itself would have offered.
    template <class C> using OriginalConfigBlock = std::function<void(Completion<C, IntegrationLoadError>)>;

    // A step of an export, which keeps its result for the later ones.
    template <class T> using Step = std::shared_ptr<ExporterAsyncOperation<ExporterResult<T>>>;

    // Adds the steps to the queue; they run one after the other in this order.
    void execute(const std::vector<std::shared_ptr<Operation>>& operations) { tasks_.execute(operations); }

    template <class R>
    static std::shared_ptr<ExporterAsyncOperation<R>>
    createAsyncTask(typename ExporterAsyncOperation<R>::Task operation) {
        return TaskRunner::createAsyncTask<R>(std::move(operation));
    }

    static std::shared_ptr<BlockOperation> createSyncTask(std::move_only_function<void()> block) {
        return TaskRunner::createSyncTask(std::move(block));
    }

    TaskRunner& tasks() { return tasks_; }

    // The result of an earlier step; one that never came to its end has none.
    template <class T> static ExporterResult<T> resultOf(const Step<T>& step) {
        return step->result().value_or(failure(IntegrationExportError::internalError));
    }

    // Counts a step that ends. True if the export goes on; a cancelled one is stopped, and `completion` gets
    // `canceled`.
    template <class T> bool update(ExportProgress& progress, const ResultMediator<T>& completion) {
        progress.setCompletedUnitCount(progress.completedUnitCount() + 1);
        if (!progress.isCancelled()) {
            return true;
        }
        cancelTasks();
        if (completion) {
            completion(failure(IntegrationExportError::canceled));
        }
        return false;
    }

    void updateActiveClient(std::shared_ptr<CancellableServiceClient> client) {
        tasks_.updateActiveClient(std::move(client));
    }

    // Closes an export: posts the analytics event, has the configuration store its last-export settings (for
    // a failed export too) and calls the completion, in this order.
    template <ExportConfig C, class T>
    ResultMediator<T> createResultMediator(C configuration, OriginalConfigBlock<C> originalConfigBlock,
                                           Completion<T, IntegrationExportError> completion) {
        auto closing = std::make_shared<Completion<T, IntegrationExportError>>(std::move(completion));
        auto isDelivered = std::make_shared<std::atomic_flag>();
        return [self = shared_from_this(), configuration = std::move(configuration),
                originalConfigBlock = std::move(originalConfigBlock), closing,
                isDelivered](ExporterResult<T> result) {
            if (isDelivered->test_and_set()) {
                return;
            }
            self->close(configuration, originalConfigBlock, closing, std::move(result));
        };
    }

    // The same for an export without a value, which is compared with what loadConfiguration() offers.
    template <ExportConfig C>
    ResultMediator<void> createResultMediator(C configuration,
                                              Completion<void, IntegrationExportError> completion) {
        // The mediator keeps the exporter, and has made sure of its class before it asks.
        return createResultMediator<C, void>(
            std::move(configuration),
            [this](Completion<C, IntegrationLoadError> offered) {
                static_cast<typename C::Exporter&>(*this).loadConfiguration(std::move(offered));
            },
            std::move(completion));
    }

    template <ExportConfig C>
    void postAnalytics(const C& originalConfig, const C& userConfig, const ExporterResult<void>& result) {
        postExportEvent(userConfig.exportType(),
                        originalConfig.diff(userConfig, attachmentsAreSelectedByDefault_), result);
    }

    // Finishes an export of a type that the service does not take.
    static std::shared_ptr<ExportProgress> refuseFormat(std::size_t unitCount,
                                                        const ResultMediator<void>& finish);

    // The user's title, or the one that the message suggests.
    std::string titleOr(const std::optional<std::string>& userTitle) const;

    void cancelTasks() { tasks_.cancelTasks(); }

    IntegrationsPlatformInteractorProtocol& platformInteractor() const { return *platformInteractor_; }

    IntegrationsDataInteractorProtocol& dataInteractor() const { return *dataInteractor_; }

  private:
    template <ExportConfig C, class T>
    void close(const C& configuration, const OriginalConfigBlock<C>& originalConfigBlock,
               const std::shared_ptr<Completion<T, IntegrationExportError>>& closing,
               ExporterResult<T> result) {
        if (!dynamic_cast<typename C::Exporter*>(this)) {
            return (*closing)(failure(IntegrationExportError::internalError));
        }
        const auto conclude = [self = shared_from_this(), configuration, closing,
                               result = std::move(result)](const C& original) {
            containingExceptions("The analytics of an export", [&] {
                self->postAnalytics(original, configuration,
                                    result ? ExporterResult<void>() : failure(result.error()));
            });
            containingExceptions("The storing of an export's settings", [&] {
                configuration.storeLastExportInfo(dynamic_cast<typename C::Exporter&>(*self));
            });
            containingExceptions("The completion of an export", [&] { (*closing)(result); });
        };
        // Without an original there is nothing to compare with, so nothing counts as changed.
        containingExceptions("The loading of a configuration", [&] {
            originalConfigBlock([conclude, configuration](const Result<C, IntegrationLoadError>& original) {
                conclude(original ? *original : configuration);
            });
        });
    }

    void postExportEvent(IntegrationExportContentType exportType,
                         const std::vector<std::string>& modifiedFields, const ExporterResult<void>& result);

    TaskRunner tasks_{1};
    const std::shared_ptr<ServiceConfigurationsStorage> configurationStorage_;
    const std::shared_ptr<IntegrationsPlatformInteractorProtocol> platformInteractor_;
    const std::shared_ptr<IntegrationsDataInteractorProtocol> dataInteractor_;
    mutable std::mutex lock_; // guards the account
    ServiceAccountConfiguration accountConfiguration_;
    std::uint64_t accountChanges_ = 0;
    const std::optional<std::string> actionSource_;
    const bool attachmentsAreSelectedByDefault_;
};

} // namespace zelto
