#include <Support/DriveScenario.h>
#include <Support/GoogleDriveExport.h>
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

struct PdfScenario : DriveScenario<GoogleDriveExport, GoogleDriveServer> {
    static constexpr auto name = "PdfAndFiles";
    static constexpr bool replacesUncheckedMessage = false;

    static std::vector<FailingStep> failingSteps() {
        return DriveScenario::failingSteps(
            "Google Drive", "trashed", [](const std::string& file) { return R"({"name":")" + file + '"'; });
    }

    static Texts refreshWarnings() { return {"Google Drive checking files error: authorizationError"}; }

    static void put(GoogleDriveServer& server, const Texts& names) {
        server.files = GoogleDriveService::listing(names);
    }

    static std::vector<GoogleDriveFile> existed(const Texts& names) {
        std::vector<GoogleDriveFile> files;
        for (const auto& each : names) {
            files.push_back(googleDriveFile(each));
        }
        return files;
    }

    static bool isCheck(const ReceivedRequest& request) { return request.target.contains("trashed"); }

    static bool replaces(const ReceivedRequest& upload) {
        EXPECT_TRUE(upload.method == "PATCH" || upload.method == "POST") << upload.method;
        return upload.method == "PATCH";
    }

    static void setFolder(GoogleDriveExporterConfiguration& configuration, std::string folder) {
        configuration.selectedFolderId = std::move(folder);
    }
};

struct TextScenario : PdfScenario {
    static constexpr auto name = "TextAndFiles";

    static void prepare(GoogleDriveExport& one) {
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

struct GoogleDriveData {
    using Export = GoogleDriveExport;
    using Server = GoogleDriveServer;
    static constexpr auto name = "User";
    static constexpr auto email = "me@example.org";
    static constexpr auto identifier = "GoogleDrive+me@example.org";

    static GoogleDriveUser data() { return {.displayName = "Me", .email = "me@example.org"}; }

    static Texts lines() { return {"GET /drive/v3/about?fields=user"}; }

    static auto parts() {
        return std::tuple(
            LoadedPart<GoogleDriveExporter, GoogleDriveUser>{&GoogleDriveExporter::myUser, "myUser", data()});
    }
};

using Scenarios = testing::Types<PdfScenario, TextScenario>;

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(GoogleDrive, ExportCancellation, Scenarios, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(GoogleDrive, ExportHost, Scenarios, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(GoogleDrive, ExportStatus, PdfScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(GoogleDrive, ExportTitle, PdfScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(GoogleDrive, ExportAttachments, PdfScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(GoogleDrive, DriveExportPolicy, PdfScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(GoogleDrive, TokenRefresh, PdfScenario, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(GoogleDrive, LoadedData, GoogleDriveData, NamedByFacts);

} // namespace zelto
