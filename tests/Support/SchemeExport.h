#pragma once

#include <ZeltoIntegrations/Agenda/AgendaExporter.h>
#include <ZeltoIntegrations/Bear/BearExporter.h>
#include <ZeltoIntegrations/OmniFocus/OmniFocusExporter.h>
#include <ZeltoIntegrations/Things/ThingsExporter.h>
#include <ZeltoIntegrations/TwoDo/TwoDoExporter.h>

#include <Platform/ISO8601.h>

#include <Support/Completed.h>
#include <Support/FakeDataInteractor.h>
#include <Support/FakePlatformInteractor.h>
#include <Support/FakeStorage.h>

#include <functional>
#include <memory>
#include <optional>

namespace zelto {

using VoidResult = ExporterResult<void>;

// Exports through one exporter with fakes around it, each run from call to completion. The exporter's account
// is kept from run to run.
template <class Exporter> class SchemeExport {
  public:
    using Configuration = typename Exporter::Configuration;

    Configuration configuration = withTitle();
    std::shared_ptr<FakeDataInteractor> data = std::make_shared<FakeDataInteractor>();
    std::shared_ptr<FakePlatformInteractor> interactor = std::make_shared<FakePlatformInteractor>();
    std::shared_ptr<FakeStorage> storage = std::make_shared<FakeStorage>();
    std::shared_ptr<ExportProgress> progress;
    // Called when export_ has returned, before the first step runs.
    std::function<void(ExportProgress&)> onStarted = [](ExportProgress&) {};

    std::shared_ptr<Exporter> exporter() { return exporter_ ? exporter_ : exporter_ = exporterFor(data); }

    std::shared_ptr<Exporter>
    exporterFor(std::shared_ptr<IntegrationsDataInteractorProtocol> interactorOfData) {
        return std::make_shared<Exporter>(ServiceAccountConfiguration(ServiceType::Bear, std::nullopt, true),
                                          storage, interactor, std::move(interactorOfData), "test", true);
    }

    VoidResult run() {
        Completed<VoidResult> completed;
        // Holds the first text back until the caller of export_ has its progress.
        std::promise<void> started;
        const auto asked = data->onAsked;
        data->onAsked = [&, hasStarted = started.get_future().share()](const std::string& operation) {
            hasStarted.wait();
            asked(operation);
        };
        progress = exporter()->export_(
            configuration, completed.template callback<Completion<void, IntegrationExportError>>());
        onStarted(*progress);
        started.set_value();
        const auto result = completed.value();
        data->onAsked = asked;
        return result;
    }

    void cancel() { progress->cancel(); }

    // Of the last export that opened one.
    std::string openedURL() const {
        const auto urls = interactor->openedURLs();
        return urls.empty() ? "<none>" : urls.back();
    }

    Configuration offered() {
        Completed<Result<Configuration, IntegrationLoadError>> completed;
        exporter()->loadConfiguration(
            completed.template callback<Completion<Configuration, IntegrationLoadError>>());
        return completed.value().value();
    }

    std::optional<IntegrationExportPreview> preview(IntegrationExportContentType type) {
        Completed<std::optional<IntegrationExportPreview>> completed;
        exporter()->loadPreview(
            type, completed.template callback<Callback<std::optional<IntegrationExportPreview>>>());
        return completed.value();
    }

  private:
    static Configuration withTitle() {
        Configuration configuration;
        configuration.userTitle = "Title";
        return configuration;
    }

    std::shared_ptr<Exporter> exporter_;
};

} // namespace zelto
