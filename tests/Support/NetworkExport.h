#pragma once

#include <ZeltoIntegrations/Accounts/ServiceCredentialsManager.h>
#include <ZeltoIntegrations/Export/NetworkExporter.h>

#include <Support/MemoryKeyChain.h>
#include <Support/ServiceExport.h>
#include <Support/TemporaryFolder.h>

#include <concepts>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zelto {

// What loading the data of a service gives.
template <class FullData> using LoadResult = Result<std::optional<FullData>, IntegrationLoadError>;

// An export to a service on the web: the account "me@example.org" has the access token "token", and the host
// gives the files of attachments and makes PDFs.
template <std::derived_from<NetworkExporter> ExporterType>
class NetworkExport : public ServiceExport<ExporterType> {
  public:
    using Exporter = ExporterType;

    explicit NetworkExport(ServiceType service)
        : ServiceExport<Exporter>(ServiceAccountConfiguration(service, "me@example.org", true)) {
        storeToken();
        data->linkText = "[mail](zelto://m)";
        data->htmlText = "<p>Body</p>";
        data->fileOf = [this](std::int64_t id) {
            const std::lock_guard guard(hostLock_);
            return URL::file(files.at(static_cast<std::size_t>(id)));
        };
        interactor->makePdf = [this](const std::string& html, const std::filesystem::path& path,
                                     Callback<bool> done) {
            writePdf(html, path);
            done(true);
        };
    }

    // The exporter goes before what it uses.
    ~NetworkExport() {
        this->releaseExporter();
        // A cancelled export ends without waiting for the host, which may have been at work on its files.
        const std::lock_guard guard(hostLock_);
    }

    // Adds a selected attachment of that content.
    void attach(std::string_view name, std::string_view content = "content") {
        attachFile(folder.write(name, content));
    }

    void attachFile(const std::filesystem::path& file) {
        IntegrationAttachment attachment{static_cast<std::int64_t>(files.size()), file.filename().string(),
                                         static_cast<std::int64_t>(std::filesystem::file_size(file))};
        data->attachments.list.push_back(attachment);
        attachment.state = IntegrationAttachmentState::selected;
        this->configuration.attachments.list.push_back(attachment);
        files.push_back(file);
    }

    // The token "token" has expired, and "refresh-1" brings a new one.
    void expireToken() {
        auto secrets = *account.credentials;
        secrets.accessToken = "token";
        secrets.refreshToken = "refresh-1";
        secrets.expirationDate = Date::fromReferenceSeconds(0);
        ServiceCredentialsManager::store(secrets);
    }

    // The access token and the refresh token as they are in the key chain.
    ServiceAccountCredentials storedTokens() const {
        auto secrets = *account.credentials;
        ServiceCredentialsManager::load(secrets);
        return secrets;
    }

    auto load(bool force) {
        using Loaded = LoadResult<typename Exporter::FullData>;
        Completed<Loaded> completed;
        this->exporter()->loadData(force, completed.template callback<Callback<Loaded>>());
        return completed.value();
    }

    Result<void, IntegrationLoadError> fetch() {
        Completed<Result<void, IntegrationLoadError>> completed;
        this->exporter()->fetchServiceData(
            completed.template callback<Completion<void, IntegrationLoadError>>());
        return completed.value();
    }

    using ServiceExport<Exporter>::account;
    using ServiceExport<Exporter>::data;
    using ServiceExport<Exporter>::interactor;

    MemoryKeyChain keyChain;
    TemporaryFolder folder;
    std::vector<std::filesystem::path> files;    // by attachment
    std::vector<std::filesystem::path> pdfPaths; // that were made

  private:
    std::mutex hostLock_;

    void writePdf(const std::string& html, const std::filesystem::path& path) {
        const std::lock_guard guard(hostLock_);
        pdfPaths.push_back(path);
        std::ofstream(path, std::ios::binary) << "%PDF " << html;
    }

    void storeToken() {
        account.credentials = ServiceAccountCredentials::forIdentifier(account.identifier());
        auto secrets = *account.credentials;
        secrets.accessToken = "token";
        secrets.expirationDate = Date::distantFuture();
        ServiceCredentialsManager::store(secrets);
    }
};

} // namespace zelto
