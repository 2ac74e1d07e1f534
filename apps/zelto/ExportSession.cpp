#include "ExportSession.h"

#include "ServiceNames.h"

#include <ZeltoIntegrations/Agenda/AgendaExporter.h>
#include <ZeltoIntegrations/Bear/BearExporter.h>
#include <ZeltoIntegrations/OmniFocus/OmniFocusExporter.h>
#include <ZeltoIntegrations/Things/ThingsExporter.h>
#include <ZeltoIntegrations/TwoDo/TwoDoExporter.h>

#include <algorithm>
#include <future>

namespace zelto::cli {

namespace {

// Calls an asynchronous operation and waits for what it completes with.
template <class T, class F> T waitFor(F operation) {
    // Shared, since the caller may go on while the completion's thread is still on its way out of it.
    const auto promise = std::make_shared<std::promise<T>>();
    auto future = promise->get_future();
    operation([promise](T value) { promise->set_value(std::move(value)); });
    return future.get();
}

template <class Exporter, class Configuration> class TypedSession final : public ExportSession {
  public:
    TypedSession(std::shared_ptr<Exporter> exporter, std::string service)
        : exporter_(std::move(exporter)), service_(std::move(service)) {}

    Outcome<std::string> offeredConfiguration() override {
        const auto configuration = offered();
        if (!configuration) {
            return failure(configuration.error());
        }
        constexpr auto indent = 2;
        auto text = JSONEncoder{.indent = indent}.encode(*configuration);
        if (!text) {
            return failure(
                Failure{"internalError", "The configuration has no JSON: " + text.error().message(), ""});
        }
        return *std::move(text);
    }

    std::string takenTypes() override {
        std::string names;
        if (const auto configuration = offered()) {
            for (const auto type : configuration->supportedContentTypes) {
                names += (names.empty() ? "" : ", ") + std::string(nameOf(type));
            }
        }
        return names;
    }

    Outcome<std::optional<IntegrationExportPreview>>
    preview(std::optional<IntegrationExportContentType> type) override {
        const auto configuration = offered();
        if (!configuration) {
            return failure(configuration.error());
        }
        return waitFor<std::optional<IntegrationExportPreview>>([&](auto done) {
            exporter_->loadPreview(type.value_or(configuration->saveAs), std::move(done));
        });
    }

    Outcome<ExporterResult<void>>
    run(const ConfigurationEdits& edits,
        const std::function<void(std::shared_ptr<ExportProgress>)>& onStarted) override {
        auto configuration = offered();
        if (!configuration) {
            return failure(configuration.error());
        }
        if (const auto applied = apply(edits, *configuration, service_); !applied) {
            return failure(applied.error());
        }
        return waitFor<ExporterResult<void>>(
            [&](auto done) { onStarted(exporter_->export_(*std::move(configuration), std::move(done))); });
    }

  private:
    Outcome<Configuration> offered() {
        auto result = waitFor<Result<Configuration, IntegrationLoadError>>(
            [&](auto done) { exporter_->loadConfiguration(std::move(done)); });
        if (!result) {
            return failure(Failure{std::string(nameOf(result.error())),
                                   "The configuration of " + service_ + " could not be loaded.", ""});
        }
        return *std::move(result);
    }

    std::shared_ptr<Exporter> exporter_;
    std::string service_;
};

struct SessionRow {
    ServiceType type;
    std::unique_ptr<ExportSession> (*open)(IntegrationsManager& manager,
                                           const ServiceAccountConfiguration& account,
                                           std::shared_ptr<IntegrationsDataInteractorProtocol> message);
};

constexpr auto actionSource = "zelto";

template <class Exporter, class Configuration>
std::unique_ptr<ExportSession> open(IntegrationsManager& manager, const ServiceAccountConfiguration& account,
                                    std::shared_ptr<IntegrationsDataInteractorProtocol> message) {
    auto exporter = manager.createServiceExporter<Exporter>(account, std::move(message), actionSource, false);
    return std::make_unique<TypedSession<Exporter, Configuration>>(std::move(exporter),
                                                                   displayName(account.serviceType()));
}

constexpr SessionRow rows[] = {
    {ServiceType::Agenda, open<AgendaExporter, AgendaConfiguration>},
    {ServiceType::Bear, open<BearExporter, BearExportConfiguration>},
    {ServiceType::OmniFocus, open<OmniFocusExporter, OmniFocusConfiguration>},
    {ServiceType::Things, open<ThingsExporter, ThingsConfiguration>},
    {ServiceType::Type2Do, open<TwoDoExporter, TwoDoConfiguration>},
};

} // namespace

bool canExport(ServiceType type) {
    return std::ranges::find(rows, type, &SessionRow::type) != std::end(rows);
}

Failure cannotExport(ServiceType type) {
    return {"unsupportedService", "This version cannot export to " + displayName(type) + ".",
            "zelto services"};
}

Outcome<std::unique_ptr<ExportSession>>
openExportSession(IntegrationsManager& manager, const ServiceAccountConfiguration& account,
                  std::shared_ptr<IntegrationsDataInteractorProtocol> message) {
    const auto row = std::ranges::find(rows, account.serviceType(), &SessionRow::type);
    if (row == std::end(rows)) {
        return failure(cannotExport(account.serviceType()));
    }
    return row->open(manager, account, std::move(message));
}

} // namespace zelto::cli
