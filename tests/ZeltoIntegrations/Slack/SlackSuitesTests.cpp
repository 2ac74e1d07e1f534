#include <Support/SlackExport.h>
#include <Support/Suites/ExportSuites.h>
#include <Support/TextScenario.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = IntegrationExportError;
using Type = IntegrationExportContentType;
using enum HostMistake;

struct SlackScenario : TextScenario<SlackExport, SlackServer> {
    static constexpr auto name = "Message";

    static Texts events() { return eventsWith("messagePlainText"); }

    static Texts eventsWith(const std::string& operation) {
        return {"started",    operation, "progress", "request", "progress", //
                "analytics",  "storage", "storage",  "storage", "storage",  //
                "completion", "ended"};
    }

    static Texts made() { return {"message"}; }

    static std::vector<HostFailure> hostFailures() { return failuresOf("messagePlainText"); }

    static std::vector<HostFailure> failuresOf(const std::string& operation) {
        return {{operation, {hasNoValue, throws, dropsItsCallback}, failure(Error::createBodyError), {}}};
    }

    static std::vector<FailingStep> failingSteps() {
        auto unreadable = unreadableResponses();
        for (const auto* body :
             {R"({"ok":false,"error":"channel_not_found"})", R"({"ok":false,"channel":"C1","ts":"1"})",
              R"({"channel":"C1","ts":"1"})", R"({"ok":true,"channel":"C1"})", R"({"ok":true,"ts":"1"})",
              R"({"ok":true,"channel":"C1","ts":1})",
              R"({"ok":true,"channel":"C1","ts":"1","message":{"text":"x"}})", "[]",
              "{\"ok\":true,\"channel\":\"\xFF\",\"ts\":\"1\"}"}) {
            unreadable.push_back({body, PlayedResponse::json(body), "dataParseError"});
        }
        return {
            {"/api/chat.postMessage", std::nullopt, "Slack creation message error: ", made(), 0, unreadable}};
    }

    static SlackSaveToInfo goneTarget() { return SlackSaveToInfo::user("gone"); }
};

// The summary of a meeting in place of a mail's text.
struct MeetingNoteScenario : SlackScenario {
    static constexpr auto name = "MeetingNote";

    static void prepare(Export& one) {
        one.data->target = IntegrationExportTarget::meetingNote;
        one.configuration.saveAs = Type::mtSummaryBacklink;
        one.configuration.saveTo = SlackSaveToInfo::user("U2");
    }

    static Texts events() { return eventsWith("meetTranscript"); }

    static std::vector<HostFailure> hostFailures() { return failuresOf("meetTranscript"); }
};

struct LinkScenario : SlackScenario {
    static constexpr auto name = "Link";

    static void prepare(Export& one) {
        one.configuration.saveAs = Type::webLink;
        one.configuration.userNote = "My note";
    }

    static Texts events() { return eventsWith("link"); }

    static std::vector<HostFailure> hostFailures() { return failuresOf("link"); }
};

struct SlackData {
    using Export = SlackExport;
    using Server = SlackServer;
    static constexpr auto name = "UserChannelsAndUsers";
    static constexpr auto email = "me@Harbour";
    static constexpr auto identifier = "Slack+me@Harbour";
    static constexpr bool areSideBySide = true;
    static constexpr bool loadsWhatIsMissing = true;

    static SlackFullData data() {
        return {.me = SlackSelfUser{.userID = "U1", .user = "me", .team = "Harbour"},
                .channels = slackChannels(),
                .users = slackUsers()};
    }

    static Texts lines() {
        return {"GET /api/auth.test",
                "GET /api/conversations.list?types=public_channel,private_channel,mpim"
                "&exclude_archived=true&limit=1000",
                "GET /api/users.list?limit=500"};
    }

    static auto parts() {
        return std::tuple(LoadedPart{&SlackExporter::me, "me", *data().me},
                          LoadedPart{&SlackExporter::channels, "channels", data().channels},
                          LoadedPart{&SlackExporter::users, "users", data().users});
    }
};

using Scenarios = testing::Types<SlackScenario, MeetingNoteScenario, LinkScenario>;

} // namespace

ZELTO_EXPORT_SUITES(Slack, Scenarios, SlackScenario, SlackData);

} // namespace zelto
