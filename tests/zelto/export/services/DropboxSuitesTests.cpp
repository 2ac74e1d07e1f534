#include <zelto/Suites/DriveCommandsSuite.h>
#include <zelto/Suites/ExportCommandsSuite.h>
#include <zelto/Suites/RefreshCommandsSuite.h>

#include <export/services/DropboxAdapter.h>

#include <Support/DropboxExport.h>
#include <Support/ExportScenario.h>

namespace zelto {

namespace {

struct DropboxFacts {
    using Server = DropboxServer;
    static constexpr auto name = "Dropbox";
    static constexpr auto type = ServiceType::Dropbox;
    static constexpr auto exportType = "pdf";
    static constexpr auto made = "file \"Title.pdf\"";

    static void listTargets(Server& service) {
        service.entries =
            R"({"cursor":"c1","entries":[{".tag":"folder","id":"id:p","name":"Plans","path_lower":"/team/plans"},)"
            R"({".tag":"file","id":"id:a","name":"a.txt","path_lower":"/team/a.txt"},)"
            R"({".tag":"folder","id":"id:w","name":"Team","path_lower":"/team"},)"
            R"({".tag":"folder","id":"id:h","name":"Home","path_lower":"/home"},)"
            R"({".tag":"folder","id":"id:q","name":"Plans","path_lower":"/home/plans"}],"has_more":false})";
    }

    static constexpr auto targetPaths = "/\n/Home\n/Home/Plans\n/Team\n/Team/Plans\n";
    static constexpr auto targetLines = "/\nHome  (id:h)\n  Plans  (id:q)\nTeam  (id:w)\n  Plans  (id:p)\n";
    static constexpr auto targetData =
        R"("folders":[{"id":"id:p","name":"Plans","path":"/team/plans"},)"
        R"({"id":"id:w","name":"Team","path":"/team"},{"id":"id:h","name":"Home","path":"/home"},)"
        R"({"id":"id:q","name":"Plans","path":"/home/plans"}])";

    static constexpr auto folder = "/Team/Plans";
    static constexpr auto folderTexts = {"/Team/Plans", "team/plans/", "id:p"};
    static constexpr auto folderKey = "selectedFolderPath";
    static constexpr auto folderData = R"("/team/plans")";
    static constexpr auto folderPart = R"("path":"/team/plans/Title.pdf")";
    static constexpr auto ambiguousName = "plans";
    static constexpr auto ambiguity = "--target: \"plans\" means several: /Home/Plans (id:q), /Team/Plans "
                                      "(id:p); give the identifier.";
    static constexpr auto absence =
        "--target: there is no folder \"Nowhere\"; there are /, /Home, /Home/Plans, /Team, /Team/Plans.";

    static void have(Server& service, const std::vector<std::string>& names) {
        std::string found;
        for (const auto& each : names) {
            found += (found.empty() ? "" : ",") +
                     (R"({"metadata":{"metadata":{".tag":"file","id":"id:)" + each + R"(","name":")" + each +
                      R"(","path_lower":"/)" + toASCIILower(each) + R"("}}})");
        }
        service.matches = R"({"has_more":false,"matches":[)" + found + "]}";
    }

    // The path, as the service gives it.
    static std::string existing(const std::string& file) { return "/" + toASCIILower(file); }

    static constexpr auto checkLine = "POST /2/files/search_v2";
    static constexpr auto makingLine = "POST /2/files/upload";
    static constexpr auto replacingLine = "POST /2/files/upload";
    static constexpr auto makes = R"("mode":"add","autorename":true)";
    static constexpr auto replaces = R"("mode":"overwrite","autorename":false)";

    static std::vector<std::string> dryRunLines() {
        return {"POST https://api.dropboxapi.com/2/files/search_v2",
                "POST https://content.dropboxapi.com/2/files/upload",
                "POST https://content.dropboxapi.com/2/files/upload"};
    }

    static std::vector<ExpectedPreview> previews() {
        return {{"pdf", R"({"pdf":{"name":"Project kick-off: lighthouse relaunch & first week.pdf"}})",
                 "Project kick-off: lighthouse relaunch & first week.pdf"}};
    }

    static constexpr auto takenTypes = "pdf, plainText";
    static constexpr auto otherType = "backLink";
    static constexpr auto notMade = "Dropbox did not take the file \"Title.pdf\"";
    static constexpr auto notMadeError = "internalError";
    static constexpr bool tellsErrorsApart = true;
    static constexpr auto unknownOutcome = "file \"Title.pdf\"";
    static constexpr auto madeData = R"([{"kind":"file","name":"Title.pdf"}])";
};

cli::SentRequest upload(std::uint64_t size) {
    return {.method = "POST",
            .url = "https://content.dropboxapi.com/2/files/upload",
            .headers = {{"dropbox-api-arg", R"({"path":"/team/B\u00fccher.zip"})"}},
            .bodySize = size};
}

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Dropbox, DriveCommands, DropboxFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Dropbox, ExportCommands, DropboxFacts, NamedByFacts);
INSTANTIATE_TYPED_TEST_SUITE_P(Dropbox, RefreshCommands, DropboxFacts, NamedByFacts);

TEST(DropboxLimits, AreThoseOfOneUpload) {
    DropboxExport one;
    const auto passed = [&](const cli::SentRequest& request) {
        return cli::DropboxAdapter::passedLimits(*one.exporter(), {}, {request});
    };
    EXPECT_EQ(passed(upload(157'286'399)), std::vector<cli::PassedLimit>());
    EXPECT_EQ(passed(upload(157'286'400)), std::vector<cli::PassedLimit>());
    EXPECT_EQ(
        passed(upload(157'286'401)),
        (std::vector<cli::PassedLimit>{{"the file \"Bücher.zip\"", 157'286'400, 157'286'401, "bytes"}}));
    auto search = upload(157'286'401);
    search.url = "https://api.dropboxapi.com/2/files/search_v2";
    EXPECT_EQ(passed(search), std::vector<cli::PassedLimit>());
}

} // namespace zelto
