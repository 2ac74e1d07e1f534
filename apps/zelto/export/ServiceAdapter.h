#pragma once

#include "export/ContactEdits.h"
#include "export/EditableFields.h"
#include "export/PassedLimit.h"
#include "export/RefusalAdvice.h"
#include "export/SentRequest.h"
#include "export/Targets.h"

#include <ZeltoIntegrations/Content/IntegrationError.h>
#include <ZeltoIntegrations/Export/ExportProgress.h>
#include <ZeltoIntegrations/Export/ExportReport.h>

#include <Platform/JSON/JSONValue.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

// What the command line has to know of a service beside its exporter. The adapter of a service derives from
// ApplicationAdapter or WebAdapter, redeclares what is different for its service, and has one row in
// ServiceTable.cpp. All members are static.
//
// An adapter whose service has targets also gives:
//
//     using TargetData = …;                             what the targets are chosen from, with JSON
//     static TargetTree targetTree(const TargetData&);
//     static void setTarget(Configuration&, const TargetData&, const TargetPath&);
//     static std::string targetName(const Configuration&);    empty while none is chosen
//
// and, where an export without a target is complete (it goes into the root folder, for one),
//
//     static constexpr bool needsTarget = false;
//
// and, where the levels of a target lie deeper in the configuration's "saveTo", in this part of it (null
// where they have no names),
//
//     static const JSONValue* levelsIn(const JSONValue& saveTo);
//
// and, where a target has one level, whose own record "saveTo" is,
//
//     static constexpr bool hasTargetItself = true;
//
// and, where "saveTo" and targetName have the target's identifier alone, where it is in "saveTo" (empty for
// none),
//
//     static std::string targetIdentifier(const JSONValue& saveTo);
//
// and, where the service may have more targets than it lists, what says so of the data (empty where it lists
// all); `isFresh` where the exporter has just loaded them from the service,
//
//     static std::string moreTargets(const Exporter&, const TargetData&, bool isFresh);
//
// and, where something of a target is for a person, under a key of its own in the configuration's "saveTo",
//
//     static constexpr std::string_view personKey;
//     static std::vector<TargetNode> people(const TargetData&, const TargetPath&);
//     static void setPerson(Configuration&, const TargetData&, const TargetPath&, std::size_t index);
//
// An adapter whose service's tags are more than their names gives, for those of --tags,
//
//     static void setTags(Configuration&, const std::optional<TargetData>&, const std::vector<std::string>&);
//
// An adapter whose service has no targets, but a list that an option chooses from, gives TargetData and
// targetTree alone. One whose service keeps contacts gives, for the options of ContactEdits,
//
//     static Outcome<void> setContacts(Configuration&, const std::optional<TargetData>&, const ContactEdits&,
//                                      IntegrationExportTarget, const std::string& account);
//
// where the data are loaded if a stage is named.
//
// An adapter whose exporter's export_ takes a client of the host's gives it:
//
//     static std::shared_ptr<Client> hostClient(HostPlatformInteractor&, const Exporter&);

namespace zelto::cli {

template <class E> struct ServiceAdapter {
    using Exporter = E;
    using Configuration = typename E::Configuration;

    static EditableFields fields(Configuration& configuration) { return usualFields(configuration); }

    // The options that an export of that type makes no use of: "--title" and "--note" may be among them.
    static std::vector<UnusedOption> unusedOptions(IntegrationExportContentType /*type*/) { return {}; }

    static constexpr bool needsTarget = true;

    // Whether the service responds with 404, and with that alone, where it does not have a target.
    static constexpr bool tellsMissingTargets = false;

    // What the service's own words for a refusal mean; nullopt for what any service's refusal means.
    static std::optional<RefusalAdvice> adviceOn(const RefusedRequest& /*refused*/) { return std::nullopt; }

    // In a dry run: a sentence about what is taken for granted of the service; empty for nothing.
    static std::string assumption(const std::vector<SentRequest>& /*requests*/) { return {}; }

    // In a dry run: what of the requests the service would refuse, beside what passes a limit; in sentences.
    static std::vector<std::string> refusals(const std::vector<SentRequest>& /*requests*/) { return {}; }

    // The data that the targets are chosen from: as they were loaded last, or with `force` from the service.
    template <class Done> static void loadTargetData(Exporter& exporter, bool force, Done done) {
        exporter.loadData(force, std::move(done));
    }

    // Whether export_ takes a policy for files that exist already. The adapter of such a service also gives
    //
    //     static std::vector<std::string> existingFiles(const Exporter&); // as they are shown
    static constexpr bool takesPolicy = false;

    static std::shared_ptr<ExportProgress> export_(Exporter& exporter, Configuration configuration,
                                                   std::optional<ExportFilePolicy> /*policy*/,
                                                   Completion<void, IntegrationExportError> completion) {
        return exporter.export_(std::move(configuration), std::move(completion));
    }
};

// An application on this machine, which is handed one URL.
template <class E> struct ApplicationAdapter : ServiceAdapter<E> {
    static constexpr bool isOnWeb = false;

    static ExportReport report(const E& /*exporter*/) { return {}; }

    static std::optional<ServiceRefusal> lastRefusal(const E& /*exporter*/) { return std::nullopt; }

    static std::string standInResponse(const SentRequest& /*request*/) { return {}; }

    static int standInStatus(const SentRequest& /*request*/) { return 200; }

    static std::vector<PassedLimit> passedLimits(const E& /*exporter*/,
                                                 const typename E::Configuration& /*configuration*/,
                                                 const std::vector<SentRequest>& /*requests*/) {
        return {};
    }
};

// A service that is reached by requests.
template <class E> struct WebAdapter : ServiceAdapter<E> {
    static constexpr bool isOnWeb = true;

    static ExportReport report(const E& exporter) { return exporter.exportReport(); }

    // Of the request that failed last.
    static std::optional<ServiceRefusal> lastRefusal(const E& exporter) { return exporter.lastRefusal(); }

    // In a dry run: the JSON that a request is responded to with, as if the service had done what was asked.
    static std::string standInResponse(const SentRequest& /*request*/) { return "{}"; }

    static int standInStatus(const SentRequest& /*request*/) { return 200; }

    // In a dry run: what the export would pass of the limits that the service publishes.
    static std::vector<PassedLimit> passedLimits(const E& /*exporter*/,
                                                 const typename E::Configuration& /*configuration*/,
                                                 const std::vector<SentRequest>& /*requests*/) {
        return {};
    }
};

template <class Adapter>
concept HasChoices = requires {
    typename Adapter::TargetData;
};

template <class Adapter>
concept HasTargets = HasChoices<Adapter> && requires {
    &Adapter::setTarget;
};

template <class Adapter>
concept KeepsContacts = HasChoices<Adapter> && requires {
    &Adapter::setContacts;
};

template <class Adapter>
concept HasDeepLevels = requires(const JSONValue& saveTo) {
    Adapter::levelsIn(saveTo);
};

template <class Adapter>
concept HasTargetItself = requires {
    Adapter::hasTargetItself;
};

template <class Adapter>
concept HasTargetIdentifier = requires(const JSONValue& saveTo) {
    Adapter::targetIdentifier(saveTo);
};

template <class Adapter>
concept MayHaveMoreTargets = requires {
    &Adapter::moreTargets;
};

template <class Adapter>
concept HasNamedTags = HasTargets<Adapter> && requires {
    &Adapter::setTags;
};

template <class Adapter>
concept TakesHostClient = requires {
    &Adapter::hostClient;
};

template <class Adapter>
concept HasPeople = HasTargets<Adapter> && requires {
    Adapter::personKey;
};

} // namespace zelto::cli
