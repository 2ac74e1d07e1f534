#include <Support/HubspotExport.h>
#include <Support/Suites/ExportCancellationSuite.h>
#include <Support/Suites/ExportHostSuite.h>
#include <Support/Suites/ExportStatusSuite.h>
#include <Support/Suites/LoadedDataSuite.h>
#include <Support/Suites/TokenRefreshSuite.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = IntegrationExportError;
using enum HostMistake;

constexpr auto userWarning = "Hubspot loading user error: ";
constexpr auto contactWarning = "Hubspot creation contact error: ";
constexpr auto contactMade = "contact ana@example.org";

// What is made needs no record, only an object.
std::vector<FailingResponse> noObject() {
    return {
        {"no JSON", PlayedResponse::json("<html>"), "dataParseError"},
        {"no object", PlayedResponse::json("[]"), "dataParseError"},
        {"nothing", {.status = 204}, "dataParseError"},
    };
}

struct HubspotScenario {
    using Export = HubspotExport;
    using Server = HubspotServer;
    static constexpr int refusedFormatUnits = 0;
    static constexpr auto refreshError = Error::oauthError;

    static Texts refreshWarnings() { return {std::string(userWarning) + "authorizationError"}; }

    // The text or its parts, and behind them the requests.
    static Texts withRequests(Texts events, int objects) {
        Texts requests = {"request", "storage", "progress",             // the user
                          "request", "request", "request",  "progress", // the contacts
                          "request", "progress"};                       // the e-mail or note
        for (int each = 1; each < objects; ++each) {
            requests.insert(requests.end(), {"request", "progress"});
        }
        requests.insert(requests.end(),
                        {"analytics", "storage", "storage", "storage", "storage", "completion", "ended"});
        events.insert(events.end(), requests.begin(), requests.end());
        return events;
    }

    static std::vector<FailingStep> stepsBefore() {
        return {
            {"/oauth/v1/access-tokens/token", std::nullopt, userWarning, {}, 0, unreadableResponses()},
            {"POST /crm/v3/objects/contacts",
             std::nullopt,
             contactWarning,
             {contactMade},
             0,
             unreadableResponses()},
        };
    }
};

struct EmailScenario : HubspotScenario {
    static constexpr auto name = "Email";

    static void prepare(HubspotExport&) {}

    static Texts events() { return withRequests({"started", "messagePlainText", "html", "progress"}, 1); }

    static Texts made() { return {contactMade, "email"}; }

    // An e-mail has the form of its body that the host has.
    static std::vector<HostFailure> hostFailures() {
        return {
            {"messagePlainText", {hasNoValue, throws, dropsItsCallback}, {}, made()},
            {"html", {hasNoValue, throws, dropsItsCallback}, {}, made()},
        };
    }

    static std::vector<FailingStep> failingSteps() {
        auto steps = stepsBefore();
        steps.push_back({"POST /crm/v3/objects/emails", std::nullopt,
                         "Hubspot creation email error: ", made(), 1, noObject()});
        return steps;
    }
};

struct NoteAndMeetingScenario : HubspotScenario {
    static constexpr auto name = "NoteAndMeeting";

    static void prepare(HubspotExport& one) { one.exportNote(); }

    static Texts events() {
        return withRequests({"started", "messagePlainText", "progress", "meetTranscript", "meetTranscript",
                             "link", "progress"},
                            2);
    }

    static Texts made() { return {contactMade, "note", "meeting"}; }

    static std::vector<HostFailure> hostFailures() {
        const auto noText = failure(Error::createBodyError);
        return {
            {"messagePlainText", {hasNoValue, throws, dropsItsCallback}, noText, {}},
            {"meetTranscript", {hasNoValue, throws, dropsItsCallback}, {}, made()},
            {"link", {hasNoValue, throws, dropsItsCallback}, {}, made()},
        };
    }

    static std::vector<FailingStep> failingSteps() {
        auto steps = stepsBefore();
        steps.push_back({"POST /crm/v3/objects/notes",
                         std::nullopt,
                         "Hubspot creation note error: ",
                         {contactMade, "note"},
                         1,
                         noObject()});
        steps.push_back({"POST /crm/v3/objects/meetings", std::nullopt,
                         "Hubspot creation meeting error: ", made(), 2, noObject()});
        return steps;
    }
};

struct HubspotData {
    using Export = HubspotExport;
    using Server = HubspotServer;
    static constexpr auto name = "UserAndStages";
    static constexpr auto email = "me@example.org";
    static constexpr auto identifier = "Hubspot+me@example.org";
    static constexpr bool areSideBySide = true;
    static constexpr bool loadsWhatIsMissing = true;

    static HubspotFullData data() {
        return {std::vector<HubspotPayloadContactLifecycleStage>{
            {.id = "lead", .label = "Lead", .displayOrder = 1, .archived = false},
            {.id = "7", .label = "Stammkunde 🌳", .displayOrder = 2, .archived = true}}};
    }

    static Texts lines() {
        return {"GET /oauth/v1/access-tokens/token",
                "GET /crm/v3/pipelines/contacts/contacts-lifecycle-pipeline/stages"};
    }

    static auto parts() {
        return std::tuple(LoadedPart{&HubspotExporter::contactLifecycleStages, "contactLifecycleStages",
                                     *data().contactLifecycleStages},
                          LoadedPart{&HubspotExporter::userEmail, "userEmail", std::string(email)});
    }
};

using Scenarios = testing::Types<EmailScenario, NoteAndMeetingScenario>;

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Hubspot, ExportCancellation, Scenarios, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Hubspot, ExportHost, Scenarios, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Hubspot, ExportStatus, Scenarios, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Hubspot, TokenRefresh, Scenarios, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Hubspot, LoadedData, HubspotData, NamedByFacts);

} // namespace zelto
