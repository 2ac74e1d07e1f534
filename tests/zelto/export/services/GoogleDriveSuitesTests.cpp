#include <zelto/Suites/DriveCommandsSuite.h>
#include <zelto/Suites/ExportCommandsSuite.h>
#include <zelto/Suites/RefreshCommandsSuite.h>

#include <export/services/GoogleDriveAdapter.h>

#include <Support/ExportScenario.h>
#include <Support/GoogleDriveExport.h>

namespace zelto {

namespace {

struct GoogleDriveFacts {
    using Server = GoogleDriveServer;
    static constexpr auto name = "GoogleDrive";
    static constexpr auto type = ServiceType::GoogleDrive;
    static constexpr auto exportType = "pdf";
    static constexpr auto made = "file \"Title.pdf\"";

    static void listTargets(Server& service) {
        service.folders =
            R"({"files":[{"id":"f1","name":"Home","mimeType":"application/vnd.google-apps.folder"},)"
            R"({"id":"f2","name":"Plans","mimeType":"application/vnd.google-apps.folder"},)"
            R"({"id":"f3","name":"Plans","mimeType":"application/vnd.google-apps.folder"}]})";
    }

    static constexpr auto targetPaths = "/\nHome\nf2\nf3\n";
    static constexpr auto targetLines = "/  (root)\nHome  (f1)\nPlans  (f2)\nPlans  (f3)\n";
    static constexpr auto targetData =
        R"("folders":[{"id":"f1","name":"Home"},{"id":"f2","name":"Plans"},{"id":"f3","name":"Plans"}])";

    static constexpr auto folder = "Home";
    static constexpr auto folderTexts = {"Home", "home", "f1"};
    static constexpr auto folderKey = "selectedFolderId";
    static constexpr auto folderData = R"("f1")";
    static constexpr auto folderPart = R"("parents":["f1"])";
    static constexpr auto ambiguousName = "plans";
    static constexpr auto ambiguity =
        "--target: \"plans\" means several: Plans (f2), Plans (f3); give the identifier.";
    static constexpr auto absence =
        "--target: there is no folder \"Nowhere\"; there are /, Home, Plans, Plans.";

    static void have(Server& service, const std::vector<std::string>& names) {
        std::string listed;
        for (const auto& each : names) {
            listed += (listed.empty() ? "" : ",") +
                      (R"({"id":"x1","name":")" + each + R"(","mimeType":"application/octet-stream"})");
        }
        service.files = R"({"files":[)" + listed + "]}";
    }

    static std::string existing(const std::string& file) { return file; }

    static constexpr auto checkLine =
        "GET /drive/v3/files?fields=files%28id%2Cname%2CmimeType%29&q=%27root%27%20in%20parents%20and%20trashed"
        "%20%3D%20false";
    static constexpr auto makingLine = "POST /upload/drive/v3/files?uploadType=multipart";
    static constexpr auto replacingLine = "PATCH /upload/drive/v3/files/x1?uploadType=multipart";
    static constexpr auto makes = R"({"name":"Title.pdf","mimeType":"application/pdf"})";
    static constexpr auto replaces = R"({"name":"Title.pdf","mimeType":"application/pdf"})";

    static std::vector<std::string> dryRunLines() {
        const std::string origin = "https://www.googleapis.com";
        const auto upload = "POST " + origin + "/upload/drive/v3/files?uploadType=multipart";
        return {"GET " + origin + std::string(checkLine).substr(4), upload, upload};
    }

    static std::vector<ExpectedPreview> previews() {
        return {{"pdf", R"({"pdf":{"name":"Project kick-off: lighthouse relaunch & first week.pdf"}})",
                 "Project kick-off: lighthouse relaunch & first week.pdf"}};
    }

    static constexpr auto takenTypes = "pdf, plainText";
    static constexpr auto otherType = "backLink";
    static constexpr auto notMade = "GoogleDrive did not take the file \"Title.pdf\"";
    static constexpr auto notMadeError = "internalError";
    static constexpr bool tellsErrorsApart = true;
    static constexpr auto unknownOutcome = "file \"Title.pdf\"";
    static constexpr auto madeData = R"([{"kind":"file","name":"Title.pdf"}])";
};

cli::SentRequest upload(std::uint64_t size) {
    return {.method = "POST",
            .url = "https://www.googleapis.com/upload/drive/v3/files?uploadType=multipart",
            .bodySize = size * 2,
            .parts = {{.name = "1", .contentType = "application/json", .text = R"({"name":"a.bin"})"},
                      {.name = "2", .contentType = "application/octet-stream", .size = size}}};
}

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(GoogleDrive, DriveCommands, GoogleDriveFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(GoogleDrive, ExportCommands, GoogleDriveFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(GoogleDrive, RefreshCommands, GoogleDriveFacts, NamedByFacts);

TEST(GoogleDriveLimits, AreThoseOfTheFileInAnUpload) {
    GoogleDriveExport one;
    const auto passed = [&](std::uint64_t size) {
        return cli::GoogleDriveAdapter::passedLimits(*one.exporter(), {}, {upload(size)});
    };
    EXPECT_EQ(passed(4'999'999), std::vector<cli::PassedLimit>());
    EXPECT_EQ(passed(5'000'000), std::vector<cli::PassedLimit>());
    EXPECT_EQ(passed(5'000'001),
              (std::vector<cli::PassedLimit>{{"the file \"a.bin\"", 5'000'000, 5'000'001, "bytes"}}));
}

} // namespace zelto
