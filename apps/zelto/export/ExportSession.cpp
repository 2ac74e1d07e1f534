#include "export/ExportSession.h"

#include "accounts/ServiceNames.h"
#include "base/Waiting.h"
#include "export/ExportFailures.h"
#include "export/ServiceTargets.h"

#include <ZeltoIntegrations/Agenda/AgendaExporter.h>
#include <ZeltoIntegrations/Bear/BearExporter.h>
#include <ZeltoIntegrations/OmniFocus/OmniFocusExporter.h>
#include <ZeltoIntegrations/Things/ThingsExporter.h>
#include <ZeltoIntegrations/Trello/TrelloExporter.h>
#include <ZeltoIntegrations/TwoDo/TwoDoExporter.h>

#include <Platform/Joined.h>

#include <algorithm>
#include <iterator>
#include <type_traits>

namespace zelto::cli {

namespace {

// An exporter that loads what its exports can be put into.
template <class Exporter>
concept HasTargets = requires {
    typename Exporter::FullData;
};

template <class Configuration> std::string titleOf(const Configuration& configuration) {
    if constexpr (requires { configuration.userTitle; }) {
        return configuration.userTitle.value_or("");
    } else {
        return {};
    }
}

template <class Configuration> std::vector<std::string> attachmentNames(const Configuration& configuration) {
    std::vector<std::string> names;
    if constexpr (requires { configuration.attachments.list; }) {
        for (const auto& attachment : configuration.attachments.selected()) {
            names.push_back(attachment.name);
        }
    }
    return names;
}

// "all" selects what can be selected; the rest must not go unsaid.
template <class Configuration>
std::vector<std::string> namesLeftOut(const Configuration& configuration,
                                      const std::vector<std::string>& asked) {
    std::vector<std::string> names;
    if constexpr (requires { configuration.attachments.list; }) {
        for (const auto& attachment : configuration.attachments.list) {
            if (attachment.state == IntegrationAttachmentState::restricted &&
                std::ranges::find(asked, "all") != asked.end()) {
                names.push_back(attachment.name);
            }
        }
    }
    return names;
}

template <class Exporter> class TypedSession final : public ExportSession {
    using Configuration = typename Exporter::Configuration;

  public:
    TypedSession(std::shared_ptr<Exporter> exporter, const ServiceAccountConfiguration& account)
        : exporter_(std::move(exporter)), service_(displayName(account.serviceType())),
          account_(account.identifier()) {}

    Outcome<std::string> offeredConfiguration(const std::optional<std::string>& target) override {
        ConfigurationEdits edits;
        edits.target = target;
        const auto configuration = edited(edits);
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
        return joined(exporter_->contentTypes(exporter_->exportTarget()).supported, ", ",
                      [](IntegrationExportContentType type) { return nameOf(type); });
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

    Outcome<LoadedTargets> targets(bool refresh) override {
        if constexpr (HasTargets<Exporter>) {
            const auto data = loaded(refresh);
            if (!data) {
                return failure(data.error());
            }
            const auto json = JSONValue::of(*data);
            if (!json || !json->asObject()) {
                return failure(Failure{"internalError", "The data of " + service_ + " have no JSON.", ""});
            }
            return LoadedTargets{targetTree(*data), *json->asObject()};
        } else {
            return wrongUsage("There is nothing to choose for an export to " + service_ + ".",
                              "zelto export --help");
        }
    }

    bool isOverNetwork() const override { return std::is_base_of_v<NetworkExporter, Exporter>; }

    Outcome<ExportPlan> plan(const ConfigurationEdits& edits) override {
        const auto configuration = edited(edits);
        if (!configuration) {
            return failure(configuration.error());
        }
        return ExportPlan{titleOf(*configuration), configuration->exportType(), target_,
                          attachmentNames(*configuration)};
    }

    Outcome<ExporterResult<void>>
    run(const ConfigurationEdits& edits,
        const std::function<void(std::shared_ptr<ExportProgress>)>& onStarted) override {
        auto configuration = edited(edits);
        if (!configuration) {
            return failure(configuration.error());
        }
        return waitFor<ExporterResult<void>>(
            [&](auto done) { onStarted(exporter_->export_(*std::move(configuration), std::move(done))); });
    }

    ExportReport report() const override {
        if constexpr (std::is_base_of_v<NetworkExporter, Exporter>) {
            return exporter_->exportReport();
        } else {
            return {};
        }
    }

    const std::string& target() const override { return target_; }

    const std::vector<std::string>& leftOut() const override { return leftOut_; }

  private:
    Outcome<Configuration> offered() {
        auto result = waitFor<Result<Configuration, IntegrationLoadError>>(
            [&](auto done) { exporter_->loadConfiguration(std::move(done)); });
        if (!result) {
            return failure(loadFailure(result.error(), service_, account_));
        }
        // A type that is not taken may have been stored as the last one, by an export that it made fail.
        result->saveAs =
            ExportServiceHelper::saveAs(result->saveAs, exporter_->contentTypes(exporter_->exportTarget()));
        return *std::move(result);
    }

    Outcome<Configuration> edited(const ConfigurationEdits& edits) {
        if constexpr (HasTargets<Exporter>) {
            // What is offered follows from the data, the default target for one.
            const auto data = loaded(false);
            if (!data) {
                return failure(data.error());
            }
            return editedWith(edits, [&](Configuration& configuration) {
                return chooseTarget(configuration, targetTree(*data), *data, edits.target);
            });
        } else {
            return editedWith(edits, [&](Configuration&) -> Outcome<void> {
                return edits.target ? notTaken(service_, "target", "--target") : Outcome<void>();
            });
        }
    }

    Outcome<Configuration> editedWith(const ConfigurationEdits& edits, const auto& choose) {
        auto configuration = offered();
        if (!configuration) {
            return failure(configuration.error());
        }
        const auto applied = apply(edits, *configuration, service_);
        leftOut_ = namesLeftOut(*configuration, edits.attach);
        if (const auto outcome = applied ? choose(*configuration) : applied; !outcome) {
            return failure(outcome.error());
        }
        return configuration;
    }

    template <class Data>
    Outcome<void> chooseTarget(Configuration& configuration, const TargetTree& tree, const Data& data,
                               const std::optional<std::string>& wanted) {
        if (wanted) {
            const auto path = findTarget(tree, *wanted, account_);
            if (!path) {
                return failure(path.error());
            }
            setTarget(configuration, data, *path);
        }
        target_ = targetName(configuration);
        return target_.empty() ? failure(noTarget(tree, service_, account_)) : Outcome<void>();
    }

    auto loaded(bool refresh) {
        using Data = typename Exporter::FullData;
        const auto load = [&](bool force) {
            return waitFor<Result<std::optional<Data>, IntegrationLoadError>>(
                [&](auto done) { exporter_->loadData(force, std::move(done)); });
        };
        auto data = load(refresh);
        if (data && !*data && !refresh) {
            data = load(true);
        }
        if (!data || !*data) {
            const auto error = data ? IntegrationLoadError::internalError : data.error();
            return Outcome<Data>(failure(loadFailure(error, service_, account_)));
        }
        return Outcome<Data>(**std::move(data));
    }

    std::shared_ptr<Exporter> exporter_;
    std::string service_;
    std::string account_;
    std::string target_;
    std::vector<std::string> leftOut_;
};

struct SessionRow {
    ServiceType type;
    std::unique_ptr<ExportSession> (*open)(IntegrationsManager& manager,
                                           const ServiceAccountConfiguration& account,
                                           std::shared_ptr<IntegrationsDataInteractorProtocol> message);
};

constexpr auto actionSource = "zelto";

template <class Exporter>
std::unique_ptr<ExportSession> open(IntegrationsManager& manager, const ServiceAccountConfiguration& account,
                                    std::shared_ptr<IntegrationsDataInteractorProtocol> message) {
    auto exporter = manager.createServiceExporter<Exporter>(account, std::move(message), actionSource, false);
    return std::make_unique<TypedSession<Exporter>>(std::move(exporter), account);
}

constexpr SessionRow rows[] = {
    {ServiceType::Agenda, open<AgendaExporter>},       {ServiceType::Bear, open<BearExporter>},
    {ServiceType::OmniFocus, open<OmniFocusExporter>}, {ServiceType::Things, open<ThingsExporter>},
    {ServiceType::Trello, open<TrelloExporter>},       {ServiceType::Type2Do, open<TwoDoExporter>},
};

} // namespace

std::vector<ServiceType> exportableServices() {
    std::vector<ServiceType> types;
    std::ranges::transform(rows, std::back_inserter(types), &SessionRow::type);
    return types;
}

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
