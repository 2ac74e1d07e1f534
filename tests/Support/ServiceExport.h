#pragma once

#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>
#include <ZeltoIntegrations/Export/ServiceExporter.h>

#include <Support/Completed.h>
#include <Support/FakeDataInteractor.h>
#include <Support/FakePlatformInteractor.h>
#include <Support/FakeStorage.h>

#include <memory>
#include <optional>
#include <utility>

namespace zelto {

// One exporter with fakes around it, each of its operations run from call to completion. The exporter, and
// the account with it, is kept from run to run.
template <class Exporter> class ServiceExport {
  public:
    using Configuration = typename Exporter::Configuration;
    using VoidResult = ExporterResult<void>;
    using Done = Completion<void, IntegrationExportError>;

    explicit ServiceExport(ServiceAccountConfiguration ofAccount) : account(std::move(ofAccount)) {}

    std::shared_ptr<Exporter> exporter() {
        if (!exporter_) {
            exporter_ = exporterFor(data);
        }
        return exporter_;
    }

    // The next one is made anew, with the account as it is set then.
    void releaseExporter() { exporter_ = nullptr; }

    // Releases the exporter; whether nothing else keeps it.
    [[nodiscard]] bool isGoneOnceReleased() {
        const std::weak_ptr<Exporter> released = exporter_;
        releaseExporter();
        return isGone(released);
    }

    std::shared_ptr<Exporter>
    exporterFor(std::shared_ptr<IntegrationsDataInteractorProtocol> interactorOfData) const {
        if constexpr (requires { Exporter::emailValidator; }) {
            return made(std::move(interactorOfData),
                        [](const std::string& text) { return text.contains('@'); });
        } else {
            return made(std::move(interactorOfData));
        }
    }

    std::shared_ptr<ExportProgress> start(Done done) {
        if constexpr (requires { exporter()->export_(configuration, policy, std::move(done)); }) {
            return exporter()->export_(configuration, policy, std::move(done));
        } else {
            return exporter()->export_(configuration, std::move(done));
        }
    }

    VoidResult run() {
        Completed<VoidResult> completed;
        progress = start(completed.template callback<Done>());
        return completed.value();
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

    // The type in the configuration, by whichever name the service has it.
    IntegrationExportContentType& contentType() {
        if constexpr (requires { configuration.saveAs; }) {
            return configuration.saveAs;
        } else {
            return configuration.selectedExportKind;
        }
    }

    ServiceAccountConfiguration account;
    std::optional<ExportFilePolicy> policy; // where exports have one
    bool attachmentsAreSelectedByDefault = true;
    Configuration configuration;
    std::shared_ptr<FakeDataInteractor> data = std::make_shared<FakeDataInteractor>();
    std::shared_ptr<FakePlatformInteractor> interactor = std::make_shared<FakePlatformInteractor>();
    std::shared_ptr<FakeStorage> storage = std::make_shared<FakeStorage>();
    std::shared_ptr<ExportProgress> progress; // of the last run

  private:
    template <class... More>
    std::shared_ptr<Exporter> made(std::shared_ptr<IntegrationsDataInteractorProtocol> interactorOfData,
                                   More... more) const {
        return std::make_shared<Exporter>(account, storage, interactor, std::move(interactorOfData), "test",
                                          attachmentsAreSelectedByDefault, std::move(more)...);
    }

    std::shared_ptr<Exporter> exporter_;
};

} // namespace zelto
