#pragma once

#include "base/Waiting.h"
#include "export/ExportFailures.h"
#include "export/ExportSession.h"
#include "export/NamedConfiguration.h"
#include "export/ServiceAdapter.h"

#include <ZeltoHost/Platform/HostPlatformInteractor.h>
#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

namespace zelto::cli {

// The session of any service, by its adapter.
template <class Adapter> class AdaptedSession final : public ExportSession {
    using Exporter = typename Adapter::Exporter;
    using Configuration = typename Adapter::Configuration;
    using NoData = std::optional<std::monostate>; // of a service without targets

  public:
    // The platform is for exporters that take a client of it, and may be null where nothing is exported.
    AdaptedSession(std::shared_ptr<Exporter> exporter, std::string service, std::string account,
                   std::shared_ptr<HostPlatformInteractor> platform = nullptr)
        : exporter_(std::move(exporter)), service_(std::move(service)), account_(std::move(account)),
          platform_(std::move(platform)) {}

    Outcome<JSONObject> offeredConfiguration(const std::optional<std::string>& target,
                                             ConfigurationForm form) override {
        ConfigurationEdits edits;
        edits.target = target;
        if (const auto plan = prepare(edits, DataLoading::whereMissing); !plan) {
            return failure(plan.error());
        }
        auto members = membersOf(*prepared_);
        if (form == ConfigurationForm::names) {
            writeNames(members);
            writeTargetNames(members);
        }
        return members;
    }

    std::vector<std::string> takenTypes() override {
        std::vector<std::string> names;
        for (const auto type : types().supported) {
            names.emplace_back(nameOf(type));
        }
        return names;
    }

    std::string usualType() override { return std::string(nameOf(types().default_)); }

    Outcome<std::optional<IntegrationExportPreview>>
    preview(std::optional<IntegrationExportContentType> type) override {
        auto configuration = offered();
        if (!configuration) {
            return failure(configuration.error());
        }
        const auto* offeredType = Adapter::fields(*configuration).saveAs;
        return waitFor<std::optional<IntegrationExportPreview>>([&](auto done) {
            exporter_->loadPreview(type.value_or(offeredType ? *offeredType : types().default_),
                                   std::move(done));
        });
    }

    Outcome<LoadedTargets> targets(bool refresh) override {
        if constexpr (HasChoices<Adapter>) {
            auto data = loaded(refresh);
            const bool isMissing = data && !*data && !refresh;
            data = isMissing ? loaded(true) : std::move(data);
            if (!data) {
                return failure(data.error());
            }
            if (!*data) {
                return failure(loadFailure(IntegrationLoadError::internalError, service_, account_));
            }
            const auto json = JSONValue::of(**data);
            if (!json || !json->asObject()) {
                return failure(Failure{"internalError", "The data of " + service_ + " have no JSON.", ""});
            }
            return LoadedTargets{Adapter::targetTree(**data), *json->asObject(),
                                 moreTargets(**data, refresh || isMissing)};
        } else {
            return wrongUsage("There is nothing to choose for an export to " + service_ + ".",
                              "zelto export --help");
        }
    }

    bool isOnWeb() const override { return Adapter::isOnWeb; }

    Outcome<ExportPlan> prepare(const ConfigurationEdits& edits, DataLoading loading) override {
        if (edits.policy && !Adapter::takesPolicy) {
            return notTaken(service_, "policy", "--policy");
        }
        if (const auto option = edits.contacts.firstOption(); !KeepsContacts<Adapter> && !option.empty()) {
            return wrongUsage(service_ + " keeps no contacts: leave out " + option + ".");
        }
        policy_ = edits.policy;
        if constexpr (HasTargets<Adapter>) {
            const auto data = targetData(edits, loading);
            if (!data) {
                return failure(data.error());
            }
            auto plan = preparedPlan(edits, *data);
            const auto chosen = plan ? chooseTarget(*plan, *data, edits.target) : failure(plan.error());
            return chosen ? plan : failure(chosen.error());
        } else if (edits.target) {
            return notTaken(service_, "target", "--target");
        } else if constexpr (KeepsContacts<Adapter>) {
            const auto data = stageData(edits, loading);
            return data ? preparedPlan(edits, *data) : failure(data.error());
        } else {
            return preparedPlan(edits, NoData());
        }
    }

    std::vector<std::string> existingFiles() const override {
        if constexpr (Adapter::takesPolicy) {
            return Adapter::existingFiles(*exporter_);
        }
        return {};
    }

    std::string assumption(const std::vector<SentRequest>& requests) const override {
        if (!Adapter::takesPolicy || policy_ == ExportFilePolicy::keepBoth) {
            return Adapter::assumption(requests);
        }
        return std::string("Shown as for a folder without files of these names, which is not looked at; ") +
               (policy_ ? "such files would be replaced." : "with such files the export would end there.");
    }

    ExporterResult<void> run(const OnStarted& onStarted) override {
        // Overriding needs what the check of an export without a policy has found.
        if (policy_ != ExportFilePolicy::overrideExisting) {
            return runOnce(policy_, onStarted);
        }
        const auto result = runOnce(std::nullopt, onStarted);
        const bool exists = !result && result.error() == IntegrationExportError::fileAlreadyExists;
        return exists ? runOnce(policy_, onStarted) : result;
    }

    ExportReport report() const override { return Adapter::report(*exporter_); }

    StandInResponse standInResponse(const SentRequest& request) const override {
        return {Adapter::standInResponse(request), Adapter::standInStatus(request)};
    }

    std::vector<PassedLimit> passedLimits(const std::vector<SentRequest>& requests) const override {
        return Adapter::passedLimits(*exporter_, *prepared_, requests);
    }

    bool tellsMissingTargets() const override { return Adapter::tellsMissingTargets; }

    std::optional<RefusalAdvice> adviceOn(const ExportReport::Refused& refused) const override {
        return Adapter::adviceOn({refused.reason, refused.words});
    }

    std::vector<std::string> refusals(const std::vector<SentRequest>& requests) const override {
        return Adapter::refusals(requests);
    }

  private:
    IntegrationExportContentTypes types() const { return exporter_->contentTypes(exporter_->exportTarget()); }

    Outcome<Configuration> offered() {
        auto result = waitFor<Result<Configuration, IntegrationLoadError>>(
            [&](auto done) { exporter_->loadConfiguration(std::move(done)); });
        if (!result) {
            return failure(loadFailure(result.error(), service_, account_));
        }
        // A type that is not taken may have been stored as the last one, by an export that it made fail.
        if (auto* saveAs = Adapter::fields(*result).saveAs) {
            *saveAs = ExportServiceHelper::saveAs(*saveAs, types());
        }
        return *std::move(result);
    }

    template <class Data>
    Outcome<ExportPlan> preparedPlan(const ConfigurationEdits& edits, const Data& data) {
        auto configuration = edits.whole || edits.over ? fromFiles(edits, data) : offered();
        if (!configuration) {
            return failure(configuration.error());
        }
        const auto fields = Adapter::fields(*configuration);
        auto used = withoutSetTags(edits, *configuration, data);
        auto unused =
            takeUnused(used, Adapter::unusedOptions(edits.saveAs.value_or(configuration->exportType())));
        if (const auto applied = apply(used, fields, service_); !applied) {
            return failure(applied.error());
        }
        if (const auto set = setContacts(*configuration, edits, data); !set) {
            return failure(set.error());
        }
        ExportPlan plan{.title = fields.title ? fields.title->value_or("") : "",
                        .saveAs = configuration->exportType(),
                        .target = {},
                        .attachments = selectedNames(fields),
                        .tags = fields.tags ? *fields.tags : std::vector<std::string>(),
                        .leftOut = namesLeftOut(edits, fields),
                        .unused = std::move(unused),
                        .missingTarget = {}};
        prepared_ = *std::move(configuration);
        return plan;
    }

    template <class Data>
    Outcome<void> setContacts(Configuration& configuration, const ConfigurationEdits& edits,
                              const Data& data) const {
        if constexpr (KeepsContacts<Adapter>) {
            return Adapter::setContacts(configuration, data, edits.contacts, exporter_->exportTarget(),
                                        account_);
        }
        return {};
    }

    // Sets the tags where they are more than names, which are then no edit any more.
    template <class Data>
    static ConfigurationEdits withoutSetTags(ConfigurationEdits edits, Configuration& configuration,
                                             const Data& data) {
        if constexpr (HasNamedTags<Adapter>) {
            if (const auto names = std::exchange(edits.tags, std::nullopt)) {
                Adapter::setTags(configuration, data, *names);
            }
        }
        return edits;
    }

    // The configuration that the files of --config and --config-over give.
    template <class Data>
    Outcome<Configuration> fromFiles(const ConfigurationEdits& edits, const Data& data) {
        auto members = edits.whole ? checked(*edits.whole) : offeredMembers();
        const auto over = members && edits.over ? checked(*edits.over) : members;
        if (!over) {
            return failure(over.error());
        }
        if (edits.over) {
            replaceMembers(*members, *over);
        }
        const auto& file = edits.over ? edits.over->name : edits.whole->name;
        if (const auto identified = identifyAttachments(*members, file); !identified) {
            return failure(identified.error());
        }
        return withNamedTarget(*std::move(members), data, namesOfFiles(edits));
    }

    static std::string namesOfFiles(const ConfigurationEdits& edits) {
        if (!edits.whole || !edits.over) {
            return edits.over ? edits.over->name : edits.whole->name;
        }
        return edits.whole->name + " and " + edits.over->name;
    }

    static Outcome<JSONObject> checked(const ConfigurationFile& file) {
        const auto known = checkKeys(file.members, jsonKeys(std::type_identity<Configuration>()), file.name);
        return known ? Outcome<JSONObject>(file.members) : failure(known.error());
    }

    Outcome<JSONObject> offeredMembers() {
        const auto configuration = offered();
        return configuration ? Outcome<JSONObject>(membersOf(*configuration))
                             : failure(configuration.error());
    }

    Outcome<void> identifyAttachments(JSONObject& members, const std::string& file) {
        auto* const written = members.find("attachments");
        if (!written || !areNamed(*written)) {
            return {};
        }
        auto configuration = offered();
        if (!configuration) {
            return failure(configuration.error());
        }
        const auto* attachments = Adapter::fields(*configuration).attachments;
        auto named = attachmentsNamed(*written, attachments ? *attachments : IntegrationAttachments(), file);
        if (!named) {
            return failure(named.error());
        }
        *written = membersOf(*named);
        return {};
    }

    template <class Data>
    Outcome<Configuration> withNamedTarget(JSONObject members, const Data& data, const std::string& files) {
        const auto* target = members.find("saveTo");
        const auto named = target && !isTargetItself(*target) ? namedTarget(*target) : std::nullopt;
        if (named) {
            members.erase("saveTo");
        }
        auto configuration = JSONValue(std::move(members)).as<Configuration>();
        if (!configuration) {
            return failure(configurationFailure(configuration.error(), files));
        }
        if constexpr (HasTargets<Adapter>) {
            if (const auto set = named ? setTarget(*configuration, data, *named) : Outcome<void>(); !set) {
                return failure(set.error());
            }
        }
        return *std::move(configuration);
    }

    template <class Data>
    Outcome<void> setTarget(Configuration& configuration, const Data& data, const NamedTarget& named) {
        if (!data) {
            return failure(targetsUnknown(service_, account_));
        }
        const auto path = findTarget(Adapter::targetTree(*data), named, personKey(), account_);
        if (!path) {
            return failure(path.error());
        }
        Adapter::setTarget(configuration, *data, *path);
        if constexpr (HasPeople<Adapter>) {
            return setPerson(configuration, *data, *path, named);
        }
        return {};
    }

    static constexpr std::string_view personKey() {
        if constexpr (HasPeople<Adapter>) {
            return Adapter::personKey;
        }
        return {};
    }

    template <class Data>
    Outcome<void> setPerson(Configuration& configuration, const Data& data, const TargetPath& path,
                            const NamedTarget& named) {
        const auto* name = named.find(Adapter::personKey);
        if (!name) {
            return {};
        }
        const auto index = findNode(Adapter::people(data, path), *name, Adapter::personKey, account_);
        if (!index) {
            return failure(index.error());
        }
        Adapter::setPerson(configuration, data, path, *index);
        return {};
    }

    // A target that the account's data do not have any more stays as the record has it.
    void writeTargetNames(JSONObject& members) {
        if constexpr (HasTargets<Adapter>) {
            auto* const target = members.find("saveTo");
            const auto data = loaded(false);
            if (!target || !data || !*data) {
                return;
            }
            const auto tree = Adapter::targetTree(**data);
            const auto path = pathIn(tree, *target);
            auto names = path ? std::optional(namesOf(tree, *path)) : std::nullopt;
            if constexpr (HasPeople<Adapter>) {
                names = path ? withPerson(*std::move(names), *target, Adapter::people(**data, *path))
                             : std::nullopt;
            }
            if (names) {
                *target = *std::move(names);
            }
        }
    }

    // Whether it is the record of the target, rather than names of its levels.
    static bool isTargetItself(const JSONValue& saveTo) {
        return HasTargetItself<Adapter> && saveTo.find("id") != nullptr;
    }

    static std::optional<TargetPath> pathIn(const TargetTree& tree, const JSONValue& saveTo) {
        if constexpr (HasTargetItself<Adapter>) {
            return pathTo(indexOf(tree.nodes, &saveTo));
        } else if constexpr (HasTargetIdentifier<Adapter>) {
            return pathTo(indexWithIdentifier(tree.nodes, Adapter::targetIdentifier(saveTo)));
        } else {
            const auto* levels = levelsIn(saveTo);
            return levels ? pathOf(tree, *levels) : std::nullopt;
        }
    }

    static std::optional<TargetPath> pathTo(std::optional<std::size_t> index) {
        return index ? std::optional(TargetPath{*index}) : std::nullopt;
    }

    static const JSONValue* levelsIn(const JSONValue& saveTo) {
        if constexpr (HasDeepLevels<Adapter>) {
            return Adapter::levelsIn(saveTo);
        }
        return &saveTo;
    }

    template <class Data> std::string moreTargets(const Data& data, bool isFresh) const {
        if constexpr (MayHaveMoreTargets<Adapter>) {
            return Adapter::moreTargets(*exporter_, data, isFresh);
        }
        return {};
    }

    static std::optional<JSONObject> withPerson(JSONObject names, const JSONValue& target,
                                                const std::vector<TargetNode>& people) {
        const auto index = indexOf(people, target.find(Adapter::personKey));
        if (!index) {
            return std::nullopt;
        }
        names.set(Adapter::personKey, uniqueName(people, *index));
        return names;
    }

    ExporterResult<void> runOnce(std::optional<ExportFilePolicy> policy, const OnStarted& onStarted) {
        return waitFor<ExporterResult<void>>([&](auto done) { onStarted(started(policy, std::move(done))); });
    }

    std::shared_ptr<ExportProgress> started(std::optional<ExportFilePolicy> policy,
                                            Completion<void, IntegrationExportError> done) {
        if constexpr (TakesHostClient<Adapter>) {
            return exporter_->export_(*prepared_, Adapter::hostClient(*platform_, *exporter_),
                                      std::move(done));
        } else {
            return Adapter::export_(*exporter_, *prepared_, policy, std::move(done));
        }
    }

    // Without a target, the exporter is what refuses the export.
    template <class Data>
    Outcome<void> chooseTarget(ExportPlan& plan, const std::optional<Data>& data,
                               const std::optional<std::string>& wanted) {
        if (wanted && !data) {
            return failure(targetsUnknown(service_, account_));
        }
        const auto tree = data ? Adapter::targetTree(*data) : TargetTree();
        const auto path = wanted ? findTarget(tree, *wanted, account_) : TargetPath();
        if (!path) {
            return failure(path.error());
        }
        if (wanted) {
            Adapter::setTarget(*prepared_, *data, *path);
        }
        plan.target = targetNameIn(tree);
        // A configuration may have but the target's identifier.
        if (wanted && !plan.target.empty()) {
            plan.target = cli::targetName(tree, *path);
        }
        if (plan.target.empty() && Adapter::needsTarget) {
            plan.missingTarget = noTarget(tree, service_, account_);
        }
        return {};
    }

    std::string targetNameIn(const TargetTree& tree) const {
        auto name = Adapter::targetName(*prepared_);
        if constexpr (HasTargetIdentifier<Adapter>) {
            const auto path = pathTo(indexWithIdentifier(tree.nodes, name));
            return path ? cli::targetName(tree, *path) : name;
        }
        return name;
    }

    auto loaded(bool force) {
        using Data = std::optional<typename Adapter::TargetData>;
        auto data = waitFor<Result<Data, IntegrationLoadError>>(
            [&](auto done) { Adapter::loadTargetData(*exporter_, force, std::move(done)); });
        if (data) {
            return Outcome<Data>(*std::move(data));
        }
        const auto refusal = Adapter::lastRefusal(*exporter_);
        const auto advice = refusal ? Adapter::adviceOn({std::nullopt, refusal->words}) : std::nullopt;
        return Outcome<Data>(failure(loadFailure(data.error(), service_, account_, refusal, advice)));
    }

    // What a stage is chosen from by its label.
    auto stageData(const ConfigurationEdits& edits, DataLoading loading) {
        if (!edits.contacts.stage) {
            return decltype(loaded(false))(std::nullopt);
        }
        return loading == DataLoading::never ? loaded(false) : loadedWhereMissing();
    }

    auto targetData(const ConfigurationEdits& edits, DataLoading loading) {
        // What is offered where a target is needed follows from the data: the default target.
        if (!Adapter::needsTarget && !edits.target && !namesTarget(edits.whole) && !namesTarget(edits.over)) {
            return decltype(loaded(false))(std::nullopt);
        }
        return loading == DataLoading::never ? loaded(false) : loadedWhereMissing();
    }

    static bool namesTarget(const std::optional<ConfigurationFile>& file) {
        return file && file->members.find("saveTo");
    }

    auto loadedWhereMissing() {
        auto data = loaded(false);
        return data && !*data ? loaded(true) : data;
    }

    std::shared_ptr<Exporter> exporter_;
    std::string service_;
    std::string account_;
    std::shared_ptr<HostPlatformInteractor> platform_;
    std::optional<Configuration> prepared_;
    std::optional<ExportFilePolicy> policy_;
};

} // namespace zelto::cli
