#include <Support/OneNoteExport.h>
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
using Type = IntegrationExportContentType;
using Error = IntegrationExportError;
using enum HostMistake;

const auto noBody = failure(Error::createBodyError);
const auto noAttachment = failure(Error::uploadAttachmentError);
const Result<void, IntegrationExportError> success;

// The steps that follow the body's, whatever this is made of.
Texts withFilesAndPage(Texts body) {
    for (const auto* event :
         {"progress", "fetchAttachment", "progress", "fetchAttachment", "progress", "fetchAttachment",
          "progress", "request", "progress", "analytics", "storage", "storage", "completion", "ended"}) {
        body.emplace_back(event);
    }
    return body;
}

struct OneNoteScenario : ScenarioWithFiles<OneNoteExport, OneNoteServer> {
    static constexpr int refusedFormatUnits = 0;
    static constexpr auto noTargetError = Error::internalError;
    static constexpr auto refreshError = Error::oauthError;
    static constexpr std::optional<std::size_t> attachmentLimit = std::nullopt;

    static Texts made() { return {"page"}; }

    static Texts madeWithoutTarget() { return {}; }

    static std::vector<HostFailure> attachmentFailures() {
        return {
            {"fetchAttachment", {hasNoValue}, noAttachment, {}},
            {"fetchAttachment", {throws, dropsItsCallback}, failure(Error::internalError), {}},
            {"fetchAttachment", {namesAWebPage, namesAMissingFile}, success, made()},
        };
    }

    static std::vector<HostFailure> headerFailures() {
        return {
            {"link", {hasNoValue, throws, dropsItsCallback}, noBody, {}},
            {"htmlHeader", {hasNoValue, throws, dropsItsCallback}, success, made()},
        };
    }

    static std::vector<HostFailure> together(const std::vector<std::vector<HostFailure>>& lists) {
        std::vector<HostFailure> all;
        for (const auto& each : lists) {
            all.insert(all.end(), each.begin(), each.end());
        }
        return all;
    }

    // A page needs no record.
    static std::vector<FailingStep> failingSteps() {
        return {{"/pages",
                 std::nullopt,
                 "OneNote creation page error: ",
                 made(),
                 0,
                 {{"no JSON", PlayedResponse::json("<html>"), "dataParseError"}}}};
    }

    static OneNoteSaveToInfo goneTarget() {
        return {.notebook = {.id = "gone"}, .section = {.id = "too", .notebookId = "gone"}};
    }

    static std::vector<FileSizeLimit<OneNoteExporter>> fileSizeLimits() {
        return {{[](OneNoteExporter&) {}, 104'857'600}};
    }

    static Texts refreshWarnings() { return {"OneNote creation page error: authorizationError"}; }
};

struct PdfScenario : OneNoteScenario {
    static constexpr auto name = "PdfAndFiles";

    static Texts events() { return withFilesAndPage({"started", "html", "convert", "link", "htmlHeader"}); }

    static std::vector<HostFailure> hostFailures() {
        return together({{{"html", {hasNoValue, throws, dropsItsCallback}, noBody, {}},
                          {"convert", {hasNoValue, throws, dropsItsCallback, namesAMissingFile}, noBody, {}}},
                         headerFailures(),
                         attachmentFailures()});
    }
};

struct MessageScenario : OneNoteScenario {
    static constexpr auto name = "MessageAndFiles";

    static void prepare(OneNoteExport& one) {
        one.configuration.saveAs = Type::emailBacklink;
        OneNoteScenario::prepare(one);
    }

    static Texts events() { return withFilesAndPage({"started", "link", "htmlHeader", "html"}); }

    static std::vector<HostFailure> hostFailures() {
        return together({{{"html", {hasNoValue, throws, dropsItsCallback}, noBody, {}}},
                         headerFailures(),
                         attachmentFailures()});
    }
};

struct SummaryScenario : OneNoteScenario {
    static constexpr auto name = "SummaryAndFiles";

    static void prepare(OneNoteExport& one) {
        one.data->target = IntegrationExportTarget::meetingNote;
        one.configuration.saveAs = Type::mtSummaryBacklink;
        OneNoteScenario::prepare(one);
    }

    static Texts events() { return withFilesAndPage({"started", "link", "htmlHeader", "meetTranscript"}); }

    static std::vector<HostFailure> hostFailures() {
        return together({{{"meetTranscript", {hasNoValue, throws, dropsItsCallback}, noBody, {}}},
                         headerFailures(),
                         attachmentFailures()});
    }
};

// Nothing is asked of the host for the link, so the first step may end before the export is watched.
struct ExternalLinkScenario : OneNoteScenario {
    static constexpr auto name = "ExternalLinkAndFiles";

    static void prepare(OneNoteExport& one) {
        one.configuration.saveAs = Type::externalLink;
        OneNoteScenario::prepare(one);
    }

    static Texts events() { return withFilesAndPage({"started"}); }

    static std::vector<HostFailure> hostFailures() { return attachmentFailures(); }
};

struct OneNoteData {
    using Export = OneNoteExport;
    using Server = OneNoteServer;
    static constexpr auto name = "UserAndNotebooks";
    static constexpr auto email = "me@example.org";
    static constexpr auto identifier = "OneNote+me@example.org";
    static constexpr bool areSideBySide = true;

    static OneNoteFullData data() {
        return {.user = {.id = "u1", .name = "Me", .email = "me@example.org"},
                .notebooks = {oneNoteNotebook()}};
    }

    static Texts lines() {
        return {"GET /v1.0/me", "GET /v1.0/me/onenote/notebooks", "GET /v1.0/me/onenote/sections"};
    }

    static auto parts() {
        return std::tuple(LoadedPart{&OneNoteExporter::myUser, "myUser", data().user},
                          LoadedPart{&OneNoteExporter::myNotebooks, "myNotebooks", data().notebooks});
    }
};

using Scenarios = testing::Types<PdfScenario, MessageScenario, SummaryScenario>;
using AllScenarios = testing::Types<PdfScenario, MessageScenario, SummaryScenario, ExternalLinkScenario>;

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(OneNote, ExportCancellation, Scenarios, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(OneNote, ExportHost, AllScenarios, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(OneNote, ExportStatus, PdfScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(OneNote, ExportTitle, PdfScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(OneNote, ExportTarget, PdfScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(OneNote, ExportAttachments, PdfScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(OneNote, TokenRefresh, PdfScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(OneNote, LoadedData, OneNoteData, NamedByFacts);

} // namespace zelto
