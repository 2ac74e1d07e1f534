#include <ZeltoIntegrations/Export/ServiceExporter.h>

#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>

#include <utility>

namespace zelto {

namespace {

constexpr auto lastExportContentTypeKey = "lastExportContentType";

} // namespace

ServiceExporter::ServiceExporter(ServiceAccountConfiguration configuration,
                                 std::shared_ptr<ServiceConfigurationsStorage> configurationStorage,
                                 std::shared_ptr<IntegrationsPlatformInteractorProtocol> platformInteractor,
                                 std::shared_ptr<IntegrationsDataInteractorProtocol> dataInteractor,
                                 std::optional<std::string> actionSource,
                                 bool attachmentsAreSelectedByDefault)
    : configurationStorage_(std::move(configurationStorage)),
      platformInteractor_(std::move(platformInteractor)), dataInteractor_(std::move(dataInteractor)),
      accountConfiguration_(std::move(configuration)), actionSource_(std::move(actionSource)),
      attachmentsAreSelectedByDefault_(attachmentsAreSelectedByDefault) {}

ServiceExporter::~ServiceExporter() = default;

ServiceAccountConfiguration ServiceExporter::accountConfiguration() const {
    const std::lock_guard guard(lock_);
    return accountConfiguration_;
}

void ServiceExporter::modifyAccountConfiguration(
    const std::function<void(ServiceAccountConfiguration&)>& change) {
    const std::lock_guard guard(lock_);
    change(accountConfiguration_);
    ++accountChanges_;
}

IntegrationExportTarget ServiceExporter::exportTarget() const {
    return dataInteractor_->exportTarget();
}

std::optional<IntegrationExportContentType> ServiceExporter::lastExportContentType() const {
    return getCachedValue<IntegrationExportContentType>(lastExportContentTypeKey);
}

void ServiceExporter::setLastExportContentType(std::optional<IntegrationExportContentType> type) {
    setCachedValue(type, lastExportContentTypeKey);
}

void ServiceExporter::fetchServiceData(Completion<void, IntegrationLoadError> withCompletion) {
    lvxLogError("fetchServiceData is not implemented", "fetchServiceData(withCompletion:)");
    withCompletion(failure(IntegrationLoadError::internalError));
}

std::optional<std::string> ServiceExporter::loadUserEmail() {
    lvxLogError("loadUserEmail is not implemented", "loadUserEmail()");
    return std::nullopt;
}

// Two savings at a time end with the newest copy: whoever saved an older one saves again.
void ServiceExporter::saveConfiguration() {
    std::unique_lock guard(lock_);
    std::uint64_t saved = 0;
    do {
        saved = accountChanges_;
        const auto account = accountConfiguration_;
        guard.unlock();
        configurationStorage_->save(account);
        guard.lock();
    } while (saved != accountChanges_);
}

void ServiceExporter::takeRefreshedTokens(const ServiceAccountCredentials& credentials) {
    modifyAccountConfiguration([&](ServiceAccountConfiguration& account) {
        if (account.credentials) {
            ServiceCredentialsManager::fill(credentials, *account.credentials);
        }
    });
    if (configurationStorage_->load(accountConfiguration().identifier())) {
        saveConfiguration();
    }
}

std::shared_ptr<ExportProgress> ServiceExporter::refuseFormat(std::size_t unitCount,
                                                              const ResultMediator<void>& finish) {
    finish(failure(IntegrationExportError::unsupportedFormat));
    return std::make_shared<ExportProgress>(static_cast<std::int64_t>(unitCount));
}

std::string ServiceExporter::titleOr(const std::optional<std::string>& userTitle) const {
    return userTitle ? *userTitle : dataInteractor().title();
}

void ServiceExporter::postExportEvent(IntegrationExportContentType exportType,
                                      const std::vector<std::string>& modifiedFields,
                                      const ExporterResult<void>& result) {
    std::optional<std::string> error;
    if (!result) {
        error = nameOf(result.error());
    }
    platformInteractor_->postExportEvent(accountConfiguration().serviceType(), exportType, modifiedFields,
                                         actionSource_, error);
}

} // namespace zelto
