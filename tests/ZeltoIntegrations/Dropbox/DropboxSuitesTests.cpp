#include <Support/DriveScenario.h>
#include <Support/DropboxExport.h>
#include <Support/Suites/DriveExportSuite.h>
#include <Support/Suites/ExportCancellationSuite.h>
#include <Support/Suites/ExportHostSuite.h>
#include <Support/Suites/ExportStatusSuite.h>
#include <Support/Suites/ExportTitleSuite.h>
#include <Support/Suites/LoadedDataSuite.h>
#include <Support/Suites/TokenRefreshSuite.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using enum HostMistake;

struct PdfScenario : DriveScenario<DropboxExport, DropboxServer> {
    static constexpr auto name = "PdfAndFiles";
    static constexpr bool replacesUncheckedMessage = true;

    static std::vector<FailingStep> failingSteps() {
        return DriveScenario::failingSteps("Dropbox", "/2/files/search_v2", [](const std::string& file) {
            return R"({"path":"/)" + file + '"';
        });
    }

    static Texts refreshWarnings() { return {"Dropbox checking files error: authorizationError"}; }

    static void put(DropboxServer& server, const Texts& names) {
        // The search finds none of the others.
        const bool isFound = names != Texts{"other.pdf"};
        server.matches = DropboxService::matching(isFound ? names : Texts());
    }

    static std::vector<DropboxMetadata> existed(const Texts& names) {
        std::vector<DropboxMetadata> matches;
        for (const auto& each : names) {
            matches.push_back(dropboxMatch(each));
        }
        return matches;
    }

    static bool isCheck(const ReceivedRequest& request) { return request.target == "/2/files/search_v2"; }

    static bool replaces(const ReceivedRequest& upload) {
        const auto arguments = upload.headers.value("Dropbox-API-Arg").value();
        const bool overwrites = arguments.contains(R"("mode":"overwrite","autorename":false)");
        EXPECT_NE(overwrites, arguments.contains(R"("mode":"add","autorename":true)")) << arguments;
        return overwrites;
    }

    static void setFolder(DropboxExporterConfiguration& configuration, std::string folder) {
        configuration.selectedFolderPath = std::move(folder);
    }
};

struct TextScenario : PdfScenario {
    static constexpr auto name = "TextAndFiles";

    static void prepare(DropboxExport& one) {
        PdfScenario::prepare(one);
        one.configuration.selectedExportKind = IntegrationExportContentType::plainText;
    }

    static Texts events() { return withFiles({"started", "messagePlainText"}); }

    static Texts made() { return {"file Title.txt", "file a.txt", "file b.txt", "file c.txt"}; }

    static std::vector<HostFailure> hostFailures() {
        return withAttachments(
            {{"messagePlainText", {hasNoValue}, failure(Error::createBodyError), {}},
             {"messagePlainText", {throws, dropsItsCallback}, failure(Error::createBodyError), {}}},
            made());
    }
};

struct DropboxData {
    using Export = DropboxExport;
    using Server = DropboxServer;
    static constexpr auto name = "User";
    static constexpr auto email = "me@example.org";
    static constexpr auto identifier = "Dropbox+me@example.org";

    static DropboxUser data() { return {.email = "me@example.org"}; }

    static Texts lines() { return {"POST /2/users/get_current_account"}; }

    static auto parts() {
        return std::tuple(
            LoadedPart<DropboxExporter, DropboxUser>{&DropboxExporter::myUser, "myUser", data()});
    }
};

using Scenarios = testing::Types<PdfScenario, TextScenario>;

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Dropbox, ExportCancellation, Scenarios, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Dropbox, ExportHost, Scenarios, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Dropbox, ExportStatus, PdfScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Dropbox, ExportTitle, PdfScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Dropbox, ExportAttachments, PdfScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Dropbox, DriveExportPolicy, PdfScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Dropbox, TokenRefresh, PdfScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Dropbox, LoadedData, DropboxData, NamedByFacts);

} // namespace zelto
