#pragma once

#include <ZeltoHost/PDF/PDFConverter.h>
#include <ZeltoIntegrations/Export/IntegrationsPlatformInteractorProtocol.h>

#include <TrovenhalCommon/Protected.h>
#include <ZeltoCommonLogger/LoggerClient.h>

#include <functional>
#include <memory>
#include <optional>

namespace zelto {

class FolderFiles;
class ICloudClient;
enum class FolderUse;

// A ready-made platform of the integrations: PDF files by PDFConverter, dates by HostDateFormatter, URLs by a
// function of the caller, such as URLOpener's, the accounts of Evernote and of iCloud Drive that are folders
// by EvernoteFolderClient and ICloudFolderClient. Analytics events and changes of accounts are logged at the
// trace level. It has no client of Reminders. Any thread.
class HostPlatformInteractor : public IntegrationsPlatformInteractorProtocol, protected LoggerClient {
  public:
    using URLHandler = std::function<void(const URL&, Callback<bool>)>;

    explicit HostPlatformInteractor(URLHandler openURL, PDFConverterOptions pdfOptions = {});

    std::shared_ptr<EvernoteClient> evernoteClient(const ServiceAccountConfiguration& configuration) override;
    std::shared_ptr<RemindersClient> remindersClient() override;
    std::shared_ptr<IntegrationsDateFormatter> dateFormatter() override;
    // The reason of a failure is logged, and given by lastPDFError().
    void convert(std::string html, std::filesystem::path toPdf, Callback<bool> completion) override;
    void executeAction(URL url, Callback<bool> completion) override;
    void postExportEvent(ServiceType service, IntegrationExportContentType exportType,
                         const std::vector<std::string>& modifiedFields,
                         const std::optional<std::string>& actionSource,
                         const std::optional<std::string>& exportError) override;
    void postImportEvent(ServiceType service, ImportActionType actionType,
                         const std::optional<std::string>& actionSource,
                         const std::optional<std::string>& importError) override;
    void integrationServiceDidAdded(const ServiceAccountConfiguration& configuration) override;
    void integrationServiceDidRemoved(const ServiceAccountConfiguration& configuration) override;

    // For ICloudExporter: the client of an account that is a folder; null for other accounts.
    virtual std::shared_ptr<ICloudClient> iCloudClient(const ServiceAccountConfiguration& configuration);

    // The error of the last conversion that failed.
    std::optional<PDFError> lastPDFError() const { return lastPDFError_.value(); }

    // What the client of a folder that was given last has made; null before.
    std::shared_ptr<const FolderFiles> lastFiles() const { return lastFiles_.value(); }

  protected:
    std::shared_ptr<ICloudClient> iCloudClient(const ServiceAccountConfiguration& configuration,
                                               FolderUse use);

  private:
    const URLHandler openURL_;
    const std::shared_ptr<IntegrationsDateFormatter> dateFormatter_;
    Protected<std::optional<PDFError>> lastPDFError_;
    Protected<std::shared_ptr<const FolderFiles>> lastFiles_;
    PDFConverter pdfConverter_; // last: its conversions end with it
};

} // namespace zelto
