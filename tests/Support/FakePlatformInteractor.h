#pragma once

#include <ZeltoIntegrations/Export/IntegrationsPlatformInteractorProtocol.h>

#include <Platform/DateFormatter.h>

#include <filesystem>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace zelto {

struct FakeDateFormatter final : IntegrationsDateFormatter {
    std::string string(Date date, const std::string& format) override {
        return DateFormatter(format, "en_US", "UTC").string(date);
    }

    std::string string(Date date, const std::string& format, const std::string& localeName) override {
        return DateFormatter(format, localeName, "UTC").string(date);
    }
};

// One analytics event of an export.
struct ExportEvent {
    ServiceType service;
    IntegrationExportContentType exportType;
    std::vector<std::string> modifiedFields;
    std::optional<std::string> actionSource;
    std::optional<std::string> exportError;

    bool operator==(const ExportEvent&) const = default;
};

// One of an import.
struct ImportEvent {
    ServiceType service;
    ImportActionType actionType;
    std::optional<std::string> actionSource;
    std::optional<std::string> importError;

    bool operator==(const ImportEvent&) const = default;
};

// A host that records its calls; its dates are in UTC and American English.
class FakePlatformInteractor final : public IntegrationsPlatformInteractorProtocol {
  public:
    // What opening a URL does; by default it works at once.
    std::function<void(const URL&, Callback<bool>)> openURL = [](const URL&, Callback<bool> done) {
        done(true);
    };
    // What making a PDF does; by default it fails.
    std::function<void(const std::string&, const std::filesystem::path&, Callback<bool>)> makePdf =
        [](const std::string&, const std::filesystem::path&, Callback<bool> done) { done(false); };
    std::function<std::shared_ptr<EvernoteClient>(const ServiceAccountConfiguration&)> clientOfEvernote =
        [](const auto&) { return nullptr; };
    // Called after an export event was recorded.
    std::function<void()> onExportEvent = [] {};
    std::function<void()> onAdded = [] {};
    std::function<void()> onRemoved = [] {};

    std::shared_ptr<EvernoteClient>
    evernoteClient(const ServiceAccountConfiguration& configuration) override {
        return clientOfEvernote(configuration);
    }

    std::shared_ptr<RemindersClient> remindersClient() override { return nullptr; }

    std::shared_ptr<IntegrationsDateFormatter> dateFormatter() override {
        return std::make_shared<FakeDateFormatter>();
    }

    void convert(std::string html, std::filesystem::path toPdf, Callback<bool> completion) override {
        makePdf(html, toPdf, std::move(completion));
    }

    void executeAction(URL url, Callback<bool> completion) override {
        {
            const std::lock_guard guard(lock_);
            openedURLs_.push_back(url.absoluteString());
        }
        openURL(url, std::move(completion));
    }

    void postExportEvent(ServiceType service, IntegrationExportContentType exportType,
                         const std::vector<std::string>& modifiedFields,
                         const std::optional<std::string>& actionSource,
                         const std::optional<std::string>& exportError) override {
        {
            const std::lock_guard guard(lock_);
            exportEvents_.push_back({service, exportType, modifiedFields, actionSource, exportError});
        }
        onExportEvent();
    }

    void postImportEvent(ServiceType service, ImportActionType actionType,
                         const std::optional<std::string>& actionSource,
                         const std::optional<std::string>& importError) override {
        const std::lock_guard guard(lock_);
        importEvents_.push_back({service, actionType, actionSource, importError});
    }

    void integrationServiceDidAdded(const ServiceAccountConfiguration& configuration) override {
        {
            const std::lock_guard guard(lock_);
            added_.push_back(configuration.identifier());
        }
        onAdded();
    }

    void integrationServiceDidRemoved(const ServiceAccountConfiguration& configuration) override {
        {
            const std::lock_guard guard(lock_);
            removed_.push_back(configuration.identifier());
        }
        onRemoved();
    }

    std::vector<std::string> openedURLs() const { return locked(openedURLs_); }

    std::vector<ExportEvent> exportEvents() const { return locked(exportEvents_); }

    std::vector<ImportEvent> importEvents() const { return locked(importEvents_); }

    std::vector<std::string> added() const { return locked(added_); }

    std::vector<std::string> removed() const { return locked(removed_); }

  private:
    template <class T> T locked(const T& value) const {
        const std::lock_guard guard(lock_);
        return value;
    }

    mutable std::mutex lock_;
    std::vector<std::string> openedURLs_;
    std::vector<ExportEvent> exportEvents_;
    std::vector<ImportEvent> importEvents_;
    std::vector<std::string> added_;
    std::vector<std::string> removed_;
};

} // namespace zelto
