#include <Support/NotionExport.h>
#include <Support/Suites/ExportSuites.h>
#include <Support/TextScenario.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = IntegrationExportError;
using Type = IntegrationExportContentType;
using enum HostMistake;

struct NotionScenario : TextScenario<NotionExport, NotionServer> {
    static constexpr auto name = "Page";

    static Texts events() {
        return {"started",
                "headerComponents",
                "formattedBodyComponents",
                "linkComponents",
                "progress",
                "request",
                "progress",  //
                "analytics", //
                "storage",
                "storage",
                "storage",
                "storage", //
                "completion",
                "ended"};
    }

    static Texts made() { return {"page"}; }

    // What the host has not got is not on the page.
    static std::vector<HostFailure> hostFailures() {
        const auto noContent = failure(Error::internalError);
        const ExporterResult<void> success;
        return {
            {"headerComponents", {hasNoValue}, success, made()},
            {"headerComponents", {throws, dropsItsCallback}, noContent, {}},
            {"formattedBodyComponents", {hasNoValue}, success, made()},
            {"formattedBodyComponents", {throws, dropsItsCallback}, noContent, {}},
            {"linkComponents", {hasNoValue, throws, dropsItsCallback}, success, made()},
        };
    }

    static std::vector<FailingStep> failingSteps() {
        auto unreadable = unreadableResponses();
        for (const auto* body : {R"({"object":"page"})", R"({"id":null})", R"({"id":7})",
                                 R"({"id":"p","created_time":"yesterday"})", "[]", "{\"id\":\"\xFF\"}"}) {
            unreadable.push_back({body, PlayedResponse::json(body), "dataParseError"});
        }
        return {{"/v1/pages", std::nullopt, "Notion creation page error: ", made(), 0, unreadable}};
    }

    static NotionSaveToInfo goneTarget() {
        return NotionSaveToInfo::task({.project = {"gone", "Gone"},
                                       .assignee = NotionUser{.id = "u"},
                                       .status = NotionStatus{"s", "Open"},
                                       .dueDate = Date::fromReferenceSeconds(60)});
    }
};

// The summary of a meeting in place of a mail's body.
struct MeetingNoteScenario : NotionScenario {
    static constexpr auto name = "MeetingNote";

    static void prepare(Export& one) {
        one.data->target = IntegrationExportTarget::meetingNote;
        one.configuration.saveAs = Type::mtSummaryBacklink;
    }

    static Texts events() {
        auto all = NotionScenario::events();
        std::ranges::replace(all, "formattedBodyComponents", summary);
        return all;
    }

    static std::vector<HostFailure> hostFailures() {
        auto all = NotionScenario::hostFailures();
        for (auto& each : all) {
            each.operation = each.operation == "formattedBodyComponents" ? summary : each.operation;
        }
        return all;
    }

    static constexpr auto summary = "formattedMeetingSummaryComponents";
};

struct LinkScenario : NotionScenario {
    static constexpr auto name = "Link";

    static void prepare(Export& one) { one.configuration.saveAs = Type::webLink; }

    static Texts events() {
        auto all = NotionScenario::events();
        std::erase(all, "headerComponents");
        std::erase(all, "formattedBodyComponents");
        return all;
    }

    static std::vector<HostFailure> hostFailures() {
        return {
            {"linkComponents", {hasNoValue, throws, dropsItsCallback}, failure(Error::createBodyError), {}}};
    }
};

struct NotionData {
    using Export = NotionExport;
    using Server = NotionServer;
    static constexpr auto name = "UserAndDatabases";
    static constexpr auto email = "me@example.org";
    static constexpr auto identifier = "Notion+me@example.org";
    static constexpr bool areSideBySide = true;
    static constexpr bool loadsWhatIsMissing = true;

    static NotionFullData data() {
        return {.me = {.id = "u1", .name = "Me", .email = "me@example.org"},
                .databases = notionDatabases(),
                .users = {}};
    }

    static Texts lines() { return {"GET /v1/users/me", "POST /v1/search"}; }

    static auto parts() {
        return std::tuple(LoadedPart{&NotionExporter::me, "me", data().me},
                          LoadedPart{&NotionExporter::databases, "databases", data().databases},
                          LoadedPart{&NotionExporter::users, "users", data().users});
    }
};

using Scenarios = testing::Types<NotionScenario, MeetingNoteScenario, LinkScenario>;

} // namespace

ZELTO_EXPORT_SUITES(Notion, Scenarios, NotionScenario, NotionData);

} // namespace zelto
