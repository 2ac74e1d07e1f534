#include <Support/AsanaExport.h>
#include <Support/Suites/ExportAttachmentsSuite.h>
#include <Support/Suites/ExportCancellationSuite.h>
#include <Support/Suites/ExportHostSuite.h>
#include <Support/Suites/ExportStatusSuite.h>
#include <Support/Suites/ExportTargetSuite.h>
#include <Support/Suites/ExportTitleSuite.h>
#include <Support/Suites/LoadedDataSuite.h>
#include <Support/Suites/TokenRefreshSuite.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = IntegrationExportError;
using enum HostMistake;

struct AsanaScenario : ScenarioWithFiles<AsanaExport, AsanaServer> {
    static constexpr auto name = "PdfAndFiles";
    static constexpr int refusedFormatUnits = 6;
    static constexpr auto noTargetError = Error::createTaskError;
    static constexpr auto refreshError = Error::createTaskError;
    static constexpr std::optional<std::size_t> attachmentLimit = std::nullopt;

    static Texts events() {
        return {"started",         "html",    "convert",  "progress",   "request",
                "progress",        "request", "progress", // the task, the PDF
                "fetchAttachment", "request", "progress", //
                "fetchAttachment", "request", "progress", //
                "fetchAttachment", "request", "progress", //
                "analytics",       "storage", "storage",  "completion", "ended"};
    }

    static Texts made() { return {"task", "file Title.pdf", "file a.txt", "file b.txt", "file c.txt"}; }

    static Texts madeWithoutTarget() { return {}; }

    static std::vector<HostFailure> hostFailures() {
        const auto noPdf = failure(Error::convertError);
        const auto noFile = failure(Error::uploadAttachmentError);
        const auto noAttachment = failure(Error::internalError);
        const Texts madeBefore = {"task", "file Title.pdf", "file a.txt"};
        return {
            {"html", {hasNoValue, throws, dropsItsCallback}, noPdf, {}},
            {"convert", {hasNoValue, throws, dropsItsCallback}, noPdf, {}},
            {"convert", {namesAMissingFile}, noFile, {"task"}},
            {"fetchAttachment", {hasNoValue, throws, dropsItsCallback}, noAttachment, madeBefore},
            {"fetchAttachment", {namesAWebPage, namesAMissingFile}, noFile, madeBefore},
        };
    }

    // The upload of a file needs no record.
    static std::vector<FailingStep> failingSteps() {
        constexpr auto upload = "Asana creation attachment error: ";
        const auto all = made();
        return {
            {"projects=p1",
             Error::createTaskError,
             "Asana creation task error: ",
             {"task"},
             0,
             unreadableResponses()},
            {"Title.pdf", Error::uploadAttachmentError, upload, {all.begin(), all.begin() + 2}, 1},
            {"a.txt", Error::uploadAttachmentError, upload, {all.begin(), all.begin() + 3}, 2},
            {"c.txt", Error::uploadAttachmentError, upload, all, 4},
        };
    }

    static AsanaSaveToInfo goneTarget() {
        return {.workspace = {.id = "gone"}, .project = {.id = "too"}, .user = {.id = "u"}};
    }

    static std::vector<FileSizeLimit<AsanaExporter>> fileSizeLimits() {
        return {{[](AsanaExporter&) {}, 104'857'600}};
    }

    static Texts refreshWarnings() { return {"Asana creation task error: authorizationError"}; }
};

struct AsanaData {
    using Export = AsanaExport;
    using Server = AsanaServer;
    static constexpr auto name = "UserAndWorkspaces";
    static constexpr auto email = "me@example.org";
    static constexpr auto identifier = "Asana+me@example.org";

    static AsanaFullData data() {
        return {.user = {.id = "u1", .name = "Me", .email = "me@example.org"},
                .workspaces = {asanaWorkspace()}};
    }

    static Texts lines() {
        return {"GET /api/1.0/users/me", "GET /api/1.0/workspaces", "GET /api/1.0/workspaces/w1/users",
                "GET /api/1.0/workspaces/w1/projects?opt_fields=id,name,archived,public&limit=100"};
    }

    static auto parts() {
        return std::tuple(LoadedPart{&AsanaExporter::myUser, "myUser", data().user},
                          LoadedPart{&AsanaExporter::myWorkspaces, "myWorkspaces", data().workspaces});
    }
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Asana, ExportCancellation, AsanaScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Asana, ExportHost, AsanaScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Asana, ExportStatus, AsanaScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Asana, ExportTitle, AsanaScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Asana, ExportTarget, AsanaScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Asana, ExportAttachments, AsanaScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Asana, TokenRefresh, AsanaScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Asana, LoadedData, AsanaData, NamedByFacts);

} // namespace zelto
