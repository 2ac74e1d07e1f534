#include <Support/Suites/ExportAttachmentsSuite.h>
#include <Support/Suites/ExportSuites.h>
#include <Support/TodoistExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = IntegrationExportError;
using enum HostMistake;

struct TodoistScenario : ScenarioWithFiles<TodoistExport, TodoistServer> {
    static constexpr auto name = "TextAndFiles";
    static constexpr int refusedFormatUnits = 0;
    static constexpr auto noTargetError = Error::createTaskError;
    static constexpr std::optional<std::size_t> attachmentLimit = std::nullopt;

    static Texts events() {
        return {"started",         "messagePlainText",
                "progress", //
                "fetchAttachment", "request",
                "progress", //
                "fetchAttachment", "request",
                "progress", //
                "fetchAttachment", "request",
                "progress", //
                "request",         "progress",
                "progress",        "analytics", //
                "storage",         "storage",
                "storage",         "storage", //
                "completion",      "ended"};
    }

    static Texts made() { return {"file a.txt", "file b.txt", "file c.txt", "task"}; }

    static Texts madeWithoutTarget() { return {"file a.txt", "file b.txt", "file c.txt"}; }

    static std::vector<HostFailure> hostFailures() {
        const auto noText = failure(Error::createBodyError);
        const auto noFile = failure(Error::uploadAttachmentError);
        const auto noAttachment = failure(Error::internalError);
        const Texts madeBefore = {"file a.txt"};
        return {
            {"messagePlainText", {hasNoValue, throws, dropsItsCallback}, noText, {}},
            {"fetchAttachment", {throws, dropsItsCallback}, noAttachment, madeBefore},
            {"fetchAttachment", {hasNoValue, namesAWebPage, namesAMissingFile}, noFile, madeBefore},
        };
    }

    static std::vector<FailingStep> failingSteps() {
        constexpr auto upload = "Todoist creation attachment error: ";
        const auto files = madeWithoutTarget();
        return {
            {R"(filename="a.txt")", Error::uploadAttachmentError, upload, {"file a.txt"}, 0, noUpload()},
            {R"(filename="b.txt")",
             Error::uploadAttachmentError,
             upload,
             {"file a.txt", "file b.txt"},
             1,
             noUpload()},
            {R"(filename="c.txt")", Error::uploadAttachmentError, upload, files, 2, noUpload()},
            {R"("commands")", Error::createTaskError, "Todoist creation task error: ", made(), 3,
             noOutcome()},
        };
    }

    static TodoistSaveToInfo goneTarget() { return {{.id = "gone"}}; }

    // Those of a free account hold where the account is not known.
    static std::vector<FileSizeLimit<TodoistExporter>> fileSizeLimits() {
        constexpr std::int64_t freeLimit = 5'242'880;
        constexpr std::int64_t premiumLimit = 104'857'600;
        return {
            {[](TodoistExporter&) {}, freeLimit},
            {[](TodoistExporter& exporter) { exporter.myUser.set(TodoistUser{.email = "e"}); }, freeLimit},
            {[](TodoistExporter& exporter) {
                 exporter.myUser.set(TodoistUser{.email = "e", .isPremium = true});
             },
             premiumLimit},
        };
    }

  private:
    static std::vector<FailingResponse> noUpload() {
        return {
            {"no JSON", PlayedResponse::json("<html>"), "dataParseError"},
            {"no object", PlayedResponse::json("[]"), "dataParseError"},
            {"nothing", {.status = 204}, "dataParseError"},
        };
    }

    static std::vector<FailingResponse> noOutcome() {
        auto responses = unreadableResponses();
        for (const auto* body : {R"({"sync_status":{}})", R"({"sync_status":{},"temp_id_mapping":{"t":5}})",
                                 R"({"sync_status":["ok"],"temp_id_mapping":{}})",
                                 "{\"sync_status\":{\"\xFF\":\"ok\"},\"temp_id_mapping\":{}}"}) {
            responses.push_back({body, PlayedResponse::json(body), "dataParseError"});
        }
        return responses;
    }
};

struct TodoistData {
    using Export = TodoistExport;
    using Server = TodoistServer;
    static constexpr auto name = "UserAndProjects";
    static constexpr auto email = "me@example.org";
    static constexpr auto identifier = "Todoist+me@example.org";

    static TodoistFullData data() {
        return {.user = {.email = "me@example.org"}, .projects = {{"p1", "Inbox"}, {"p2", "Work"}}};
    }

    static Texts lines() { return {"POST /api/v1/sync"}; }

    static auto parts() {
        return std::tuple(LoadedPart{&TodoistExporter::myUser, "myUser", data().user},
                          LoadedPart{&TodoistExporter::myProjects, "myProjects", data().projects});
    }
};

} // namespace

ZELTO_EXPORT_SUITES(Todoist, TodoistScenario, TodoistScenario, TodoistData);
INSTANTIATE_TYPED_TEST_SUITE_P(Todoist, ExportAttachments, TodoistScenario, NamedByFacts);

} // namespace zelto
