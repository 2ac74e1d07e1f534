#include <ZeltoHost/Platform/HostPlatformInteractor.h>

#include <ZeltoHost/Evernote/EvernoteFolderClient.h>
#include <ZeltoHost/ICloud/ICloudFolderClient.h>
#include <ZeltoHost/Platform/HostDateFormatter.h>

#include <Platform/Joined.h>

namespace zelto {

HostPlatformInteractor::HostPlatformInteractor(URLHandler openURL, PDFConverterOptions pdfOptions)
    : openURL_(std::move(openURL)), dateFormatter_(std::make_shared<HostDateFormatter>()),
      pdfConverter_(std::move(pdfOptions)) {}

std::shared_ptr<EvernoteClient>
HostPlatformInteractor::evernoteClient(const ServiceAccountConfiguration& configuration) {
    auto client = EvernoteFolderClient::of(configuration);
    lastFiles_.exchange(client ? client->files() : nullptr);
    return client;
}

std::shared_ptr<ICloudClient>
HostPlatformInteractor::iCloudClient(const ServiceAccountConfiguration& configuration) {
    return iCloudClient(configuration, FolderUse::writes);
}

std::shared_ptr<ICloudClient>
HostPlatformInteractor::iCloudClient(const ServiceAccountConfiguration& configuration, FolderUse use) {
    auto client = ICloudFolderClient::of(configuration, use);
    lastFiles_.exchange(client ? client->files() : nullptr);
    return client;
}

std::shared_ptr<RemindersClient> HostPlatformInteractor::remindersClient() {
    return nullptr;
}

std::shared_ptr<IntegrationsDateFormatter> HostPlatformInteractor::dateFormatter() {
    return dateFormatter_;
}

void HostPlatformInteractor::convert(std::string html, std::filesystem::path toPdf,
                                     Callback<bool> completion) {
    pdfConverter_.convert(
        std::move(html), std::move(toPdf),
        [this, completion = std::move(completion)](const Result<void, PDFError>& result) mutable {
            if (!result) {
                lastPDFError_.exchange(result.error());
                lvxLogError("No PDF was made: " + result.error().message(),
                            "convert(html:toPdf:completion:)");
            }
            completion(result.has_value());
        });
}

void HostPlatformInteractor::executeAction(URL url, Callback<bool> completion) {
    openURL_(url, std::move(completion));
}

void HostPlatformInteractor::postExportEvent(ServiceType service, IntegrationExportContentType exportType,
                                             const std::vector<std::string>& modifiedFields,
                                             const std::optional<std::string>& actionSource,
                                             const std::optional<std::string>& exportError) {
    logger().trace("Export: service " + std::string(nameOf(service)) + ", type " +
                       std::string(nameOf(exportType)) + ", modified " + joined(modifiedFields, ",") +
                       ", source " + actionSource.value_or("none") + ", error " +
                       exportError.value_or("none"),
                   "postExportEvent");
}

void HostPlatformInteractor::postImportEvent(ServiceType service, ImportActionType actionType,
                                             const std::optional<std::string>& actionSource,
                                             const std::optional<std::string>& importError) {
    logger().trace("Import: service " + std::string(nameOf(service)) + ", action " +
                       std::string(nameOf(actionType)) + ", source " + actionSource.value_or("none") +
                       ", error " + importError.value_or("none"),
                   "postImportEvent");
}

void HostPlatformInteractor::integrationServiceDidAdded(const ServiceAccountConfiguration& configuration) {
    logger().trace("Added " + configuration.identifier(), "integrationServiceDidAdded");
}

void HostPlatformInteractor::integrationServiceDidRemoved(const ServiceAccountConfiguration& configuration) {
    logger().trace("Removed " + configuration.identifier(), "integrationServiceDidRemoved");
}

} // namespace zelto
