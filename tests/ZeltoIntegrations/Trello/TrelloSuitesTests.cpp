#include <ZeltoIntegrations/Trello/TrelloConstants.h>

#include <Support/Suites/ExportAttachmentsSuite.h>
#include <Support/Suites/ExportCancellationSuite.h>
#include <Support/Suites/ExportHostSuite.h>
#include <Support/Suites/ExportStatusSuite.h>
#include <Support/Suites/ExportTargetSuite.h>
#include <Support/Suites/ExportTitleSuite.h>
#include <Support/Suites/LoadedDataSuite.h>
#include <Support/TrelloExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = IntegrationExportError;
using enum HostMistake;

struct TrelloScenario : ScenarioWithFiles<TrelloExport, TrelloServer> {
    static constexpr auto name = "PdfAndFiles";
    static constexpr int refusedFormatUnits = 7;
    static constexpr auto noTargetError = Error::createTaskError;
    static constexpr std::optional<std::size_t> attachmentLimit = 100;

    static Texts events() {
        return {"started",
                "link",
                "messagePlainText",
                "request",
                "progress", //
                "html",
                "convert",
                "progress",
                "request",
                "progress", //
                "fetchAttachment",
                "progress",
                "request",
                "progress", //
                "fetchAttachment",
                "progress",
                "request",
                "progress", //
                "fetchAttachment",
                "progress",
                "request",
                "progress", //
                "analytics",
                "storage",
                "storage",
                "completion",
                "ended"};
    }

    static Texts made() { return {"card", "file Title.pdf", "file a.txt", "file b.txt", "file c.txt"}; }

    static Texts madeWithoutTarget() { return {}; }

    // A card needs no text, and the steps behind a failure run.
    static std::vector<HostFailure> hostFailures() {
        const auto noPdf = failure(Error::convertError);
        const auto noFile = failure(Error::uploadAttachmentError);
        const auto noAttachment = failure(Error::internalError);
        const Texts withoutPdf = {"card", "file a.txt", "file b.txt", "file c.txt"};
        const Texts withoutSecond = {"card", "file Title.pdf", "file a.txt", "file c.txt"};
        return {
            {"link", {hasNoValue, throws, dropsItsCallback}, {}, made()},
            {"messagePlainText", {hasNoValue, throws, dropsItsCallback}, {}, made()},
            {"html", {hasNoValue, throws, dropsItsCallback}, noPdf, withoutPdf},
            {"convert", {hasNoValue, throws, dropsItsCallback}, noPdf, withoutPdf},
            {"convert", {namesAMissingFile}, noFile, withoutPdf},
            {"fetchAttachment", {throws, dropsItsCallback}, noAttachment, withoutSecond},
            {"fetchAttachment", {hasNoValue, namesAWebPage, namesAMissingFile}, noFile, withoutSecond},
        };
    }

    static std::vector<FailingStep> failingSteps() {
        constexpr auto upload = "Trello creation attachment error: ";
        return {
            {"/1/cards?",
             Error::createTaskError,
             "Trello creation card error: ",
             {"card"},
             0,
             unreadableResponses()},
            {"Title.pdf", Error::uploadAttachmentError, upload, made(), 4, unreadableResponses()},
            {"a.txt", Error::uploadAttachmentError, upload, made(), 4, unreadableResponses()},
            {"c.txt", Error::uploadAttachmentError, upload, made(), 4, unreadableResponses()},
        };
    }

    static TrelloSaveToInfo goneTarget() { return {.board = {.id = "gone"}, .list = {.id = "too"}}; }

    // Those of a free account hold where the account is not known.
    static std::vector<FileSizeLimit<TrelloExporter>> fileSizeLimits() {
        constexpr std::int64_t freeLimit = 10'485'760;
        constexpr std::int64_t premiumLimit = 262'144'000;
        return {
            {[](TrelloExporter&) {}, freeLimit},
            {[](TrelloExporter& exporter) { exporter.user.set(TrelloUser{.email = "e"}); }, freeLimit},
            {[](TrelloExporter& exporter) { exporter.user.set(TrelloUser{.email = "e", .isPremium = true}); },
             premiumLimit},
        };
    }
};

struct TrelloData {
    using Export = TrelloExport;
    using Server = TrelloServer;
    static constexpr auto name = "UserAndBoards";
    static constexpr auto email = "me@example.org";
    static constexpr auto identifier = "Trello+me@example.org";

    static TrelloFullData data() {
        return {.user = {.email = "me@example.org", .fullName = "Me"},
                .boards = {{.id = "b1",
                            .name = "Work",
                            .pinned = true,
                            .lists = {{.id = "l1", .idBoard = "b1", .name = "To Do"}}}}};
    }

    static Texts lines() {
        const auto signature = "key=" + TrelloConstants::clientKey() + "&token=token";
        return {"GET /1/members/me?fields=idEnterprise,idPremOrgsAdmin,products,email,fullName,avatarUrl&" +
                    signature,
                "GET /1/members/me/boards?fields=id,name,closed,pinned&"
                "list_fields=id,name,closed,idBoard&lists=open&" +
                    signature};
    }

    static auto parts() {
        return std::tuple(LoadedPart{&TrelloExporter::user, "user", data().user},
                          LoadedPart{&TrelloExporter::allBoards, "allBoards", data().boards});
    }
};

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Trello, ExportCancellation, TrelloScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Trello, ExportHost, TrelloScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Trello, ExportStatus, TrelloScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Trello, ExportTitle, TrelloScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Trello, ExportTarget, TrelloScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Trello, ExportAttachments, TrelloScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Trello, LoadedData, TrelloData, NamedByFacts);

} // namespace zelto
