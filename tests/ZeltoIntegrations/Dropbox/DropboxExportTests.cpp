#include <Support/Completed.h>
#include <Support/DropboxExport.h>
#include <Support/LogCapture.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = IntegrationExportError;
using Type = IntegrationExportContentType;

class DropboxExportTest : public testing::Test {
  protected:
    static std::string search(const std::string& query, const std::string& path) {
        const auto body = R"({"match_field_options":{"include_highlights":false},"options":{"file_status":)"
                          R"("active","filename_only":false,"max_results":1000,"path":")" +
                          path + R"("},"query":")" + query + R"("})";
        return "POST /2/files/search_v2\nContent-Type: application/json\nAuthorization: Bearer token\n"
               "Content-Length: " +
               std::to_string(body.size()) + "\n\n" + body;
    }

    static std::string upload(const std::string& path, const std::string& mode, const std::string& content) {
        return "POST /2/files/upload\nDropbox-API-Arg: {\"path\":\"" + path + "\"," + mode +
               ",\"mute\":false}\nContent-Type: application/octet-stream\nAuthorization: Bearer token\n"
               "Content-Length: " +
               std::to_string(content.size()) + "\n\n" + content;
    }

    static constexpr auto add = R"("mode":"add","autorename":true)";
    static constexpr auto overwrite = R"("mode":"overwrite","autorename":false)";

    DropboxExport one;
    DropboxServer service; // behind what its requests write to
};

} // namespace

TEST_F(DropboxExportTest, ChecksTheNamesAndAddsTheFiles) {
    one.attach("a.txt", "A");
    one.attach("\u00fc & b.txt", "B");
    one.configuration.selectedFolderPath = "/Team/Pl\u00e4ne";
    EXPECT_TRUE(one.run());
    EXPECT_EQ(one.progress->totalUnitCount(), 5);
    EXPECT_EQ(service.texts(), (Texts{search("Title.pdf OR a.txt OR \u00fc   b.txt", "/Team/Pl\u00e4ne"),
                                      upload(R"(/Team/Pl\u00e4ne/Title.pdf)", add, "%PDF <p>Body</p>"),
                                      upload(R"(/Team/Pl\u00e4ne/a.txt)", add, "A"),
                                      upload(R"(/Team/Pl\u00e4ne/\u00fc & b.txt)", add, "B")}));
    EXPECT_EQ(one.exporter()->exportReport(),
              (ExportReport{
                  .made = {{"file", "Title.pdf", {}}, {"file", "a.txt", {}}, {"file", "\u00fc & b.txt", {}}},
                  .refused = {}}));
}

TEST_F(DropboxExportTest, OverridingSendsNoSearchAndOverwritesTheMessage) {
    one.attach("a.txt", "A");
    one.policy = ExportFilePolicy::overrideExisting;
    EXPECT_TRUE(one.run());
    EXPECT_EQ(service.texts(),
              (Texts{upload("/Title.pdf", overwrite, "%PDF <p>Body</p>"), upload("/a.txt", add, "A")}));
}

TEST_F(DropboxExportTest, OverwritesAnAttachmentOnlyWhereAMatchHasExactlyItsName) {
    one.attach("a.txt", "A");
    one.attach("B.txt", "B");
    one.attach("c.txt", "C");
    service.matches = DropboxService::matching({"my a.txt", "b.txt", "c.txt"});
    EXPECT_EQ(one.run(), failure(Error::fileAlreadyExists));
    EXPECT_EQ(one.exporter()->existedFiles(),
              (std::vector{dropboxMatch("my a.txt"), dropboxMatch("b.txt"), dropboxMatch("c.txt")}));
    one.policy = ExportFilePolicy::overrideExisting;
    EXPECT_TRUE(one.run());
    const auto texts = service.texts();
    EXPECT_EQ(Texts(texts.begin() + 1, texts.end()),
              (Texts{upload("/Title.pdf", overwrite, "%PDF <p>Body</p>"), upload("/a.txt", add, "A"),
                     upload("/B.txt", add, "B"), upload("/c.txt", overwrite, "C")}));
}

TEST_F(DropboxExportTest, ReplacesTheMessageByNoAttachmentOfItsNameInAnotherCase) {
    one.attach("TITLE.PDF", "A");
    service.matches = DropboxService::matching({"TITLE.PDF"});
    EXPECT_EQ(one.run(), failure(Error::fileAlreadyExists));
    one.policy = ExportFilePolicy::overrideExisting;
    EXPECT_TRUE(one.run());
    const auto texts = service.texts();
    EXPECT_EQ(Texts(texts.begin() + 1, texts.end()),
              (Texts{upload("/Title.pdf", overwrite, "%PDF <p>Body</p>"), upload("/TITLE.PDF", add, "A")}));
}

TEST_F(DropboxExportTest, ReplacesNoFolderAndNothingInAFolderBelow) {
    one.attach("a.txt", "A");
    one.attach("b.txt", "B");
    one.attach("c.txt", "C");
    one.configuration.selectedFolderPath = "/Team";
    const auto match = [](const std::string& tag, const std::string& name, const std::string& path) {
        return R"({"metadata":{"metadata":{".tag":")" + tag + R"(","id":"id:)" + name + R"(","name":")" +
               name + R"(","path_lower":")" + path + R"("}}})";
    };
    service.matches = R"({"matches":[)" + match("folder", "a.txt", "/team/a.txt") + "," +
                      match("file", "b.txt", "/team/plans/b.txt") + "," +
                      match("file", "c.txt", "/team/c.txt") + "]}";
    EXPECT_EQ(one.run(), failure(Error::fileAlreadyExists));
    EXPECT_EQ(one.exporter()->existedFiles().size(), 3U);
    one.policy = ExportFilePolicy::overrideExisting;
    EXPECT_TRUE(one.run());
    const auto texts = service.texts();
    EXPECT_EQ(
        Texts(texts.begin() + 1, texts.end()),
        (Texts{upload("/Team/Title.pdf", overwrite, "%PDF <p>Body</p>"), upload("/Team/a.txt", add, "A"),
               upload("/Team/b.txt", add, "B"), upload("/Team/c.txt", overwrite, "C")}));
}

TEST_F(DropboxExportTest, NamesCanBeCheckedWithoutAnExport) {
    const auto exporter = one.exporter();
    const auto checked = [&](const std::vector<std::string>& names) {
        Completed<Result<std::vector<DropboxMetadata>, IntegrationLoadError>> end;
        exporter->checkFilesExists(
            names, "/Team", end.callback<Completion<std::vector<DropboxMetadata>, IntegrationLoadError>>());
        return end.value();
    };
    EXPECT_EQ(checked({}), std::vector<DropboxMetadata>());
    EXPECT_EQ(checked({"a.txt"}), std::vector<DropboxMetadata>());
    service.matches = DropboxService::matching({"my a.txt"});
    EXPECT_EQ(checked({"a.txt", "b.txt"}), std::vector{dropboxMatch("my a.txt")});
    EXPECT_EQ(exporter->existedFiles(), std::vector<DropboxMetadata>());
    service.respondTo("search_v2", PlayedResponse::json("{}", 500));
    EXPECT_EQ(checked({"a.txt"}), failure(IntegrationLoadError::internalError));
    EXPECT_EQ(service.texts(),
              (Texts{search("a.txt", "/Team"), search("a.txt OR b.txt", "/Team"), search("a.txt", "/Team")}));
}

TEST_F(DropboxExportTest, GivesFilesNamesThatTheServiceTakes) {
    one.configuration.userTitle = "C:\\plan";
    one.attach("1.txt", "A");
    one.attach("2.txt", "B");
    one.configuration.attachments.list[0].name = "a\\b/c.txt";
    one.configuration.attachments.list[1].name = "..";
    EXPECT_TRUE(one.run());
    EXPECT_EQ(service.texts(), (Texts{search("C _plan.pdf OR a_b_c.txt OR unnamed", ""),
                                      upload("/C:_plan.pdf", add, "%PDF <p>Body</p>"),
                                      upload("/a_b_c.txt", add, "A"), upload("/unnamed", add, "B")}));
}

TEST_F(DropboxExportTest, ATextGoesOutAsUTF8) {
    one.configuration.selectedExportKind = Type::plainText;
    one.configuration.userTitle = "\u00dcber/Plan";
    one.data->plainText = "B\u00f6dy\r\n";
    EXPECT_TRUE(one.run());
    EXPECT_EQ(service.texts(),
              (Texts{search("Uber_Plan.txt", ""), upload("/Uber_Plan.txt", add, "B\u00f6dy\r\n")}));
    EXPECT_TRUE(one.data->askedLinks().empty());

    one.data->plainText = "\xFF";
    EXPECT_EQ(one.run(), failure(Error::createBodyError));
    EXPECT_EQ(service.lines().size(), 2U);
}

TEST_F(DropboxExportTest, SaysWhatTheServiceSaysOfARefusedCheck) {
    const LogCapture log;
    service.respondTo(
        "search_v2",
        PlayedResponse::json(R"({"error_summary":"path/not_found/..","error":{".tag":"path"}})", 409));
    EXPECT_EQ(one.run(), failure(Error::internalError));
    EXPECT_EQ(one.exporter()->exportReport().refused,
              (std::vector<ExportReport::Refused>{{.kind = "file",
                                                   .name = "Title.pdf",
                                                   .reason = ServiceClientError::apiCallError,
                                                   .words = "path/not_found/.."}}));
    EXPECT_EQ(log.messages(LogLevel::warn), Texts{"Dropbox checking files error: apiCallError"});
}

TEST_F(DropboxExportTest, SaysWhatTheServiceSaysOfARefusedFile) {
    service.respondTo("/2/files/upload",
                      {.status = 400, .body = "Error in call to API function \"files/upload\"\n"});
    EXPECT_EQ(one.run(), failure(Error::internalError));
    EXPECT_EQ(
        one.exporter()->exportReport().refused,
        (std::vector<ExportReport::Refused>{{.kind = "file",
                                             .name = "Title.pdf",
                                             .reason = ServiceClientError::apiCallError,
                                             .words = R"(Error in call to API function "files/upload")"}}));
}

TEST_F(DropboxExportTest, ACheckThatGetsNoResponseHasSentNothingOfTheFile) {
    service.respondTo("search_v2", PlayedResponse::reset());
    EXPECT_EQ(one.run(), failure(Error::connectionError));
    const auto refused = one.exporter()->exportReport().refused;
    ASSERT_EQ(refused.size(), 1U);
    EXPECT_FALSE(refused.front().isUnsure());
}

TEST_F(DropboxExportTest, OffersThePdfIntoTheRoot) {
    one.data->attachments.list = {{1, "a", 1}};
    const auto offered = one.offered();
    EXPECT_EQ(offered.userTitle, "Title");
    EXPECT_EQ(offered.selectedExportKind, Type::pdf);
    EXPECT_EQ(offered.availableExportKinds, (std::vector{Type::pdf, Type::plainText}));
    EXPECT_EQ(offered.attachments.list.front().state, IntegrationAttachmentState::allowed);
    EXPECT_EQ(offered.selectedFolderPath, std::nullopt);
    for (const auto target : {IntegrationExportTarget::email, IntegrationExportTarget::meetingNote}) {
        EXPECT_EQ(one.exporter()->contentTypes(target),
                  (IntegrationExportContentTypes{Type::pdf, {Type::pdf, Type::plainText}}));
    }
}

TEST_F(DropboxExportTest, ATypeThatIsNotAvailableIsNotOfferedAgain) {
    one.exporter()->setLastExportContentType(Type::backLink);
    EXPECT_EQ(one.offered().selectedExportKind, Type::pdf);
    one.exporter()->setLastExportContentType(Type::plainText);
    EXPECT_EQ(one.offered().selectedExportKind, Type::plainText);
}

TEST_F(DropboxExportTest, PreviewsThePdfByItsNameAndTheTextItself) {
    EXPECT_EQ(one.preview(Type::pdf), IntegrationExportPreview::pdf("Title.pdf"));
    EXPECT_EQ(one.preview(Type::plainText), IntegrationExportPreview::email("Body"));
    EXPECT_EQ(one.preview(Type::backLink), std::nullopt);
    one.data->plainText = std::nullopt;
    EXPECT_EQ(one.preview(Type::plainText), std::nullopt);
}

TEST_F(DropboxExportTest, FoldersAreFetchedEachTime) {
    using Folders = Result<std::vector<DropboxFolder>, IntegrationLoadError>;
    const auto folders = [this] {
        Completed<Folders> completed;
        one.exporter()->fetchFolders(completed.callback<Callback<Folders>>());
        return completed.value();
    };
    EXPECT_EQ(folders().value().size(), 2U);
    EXPECT_EQ(folders().value().size(), 2U);
    EXPECT_EQ(service.lines().size(), 2U);
    service.refuse("list_folder", 401);
    EXPECT_EQ(folders().error(), IntegrationLoadError::oauthError);
}

TEST_F(DropboxExportTest, AConfigurationNamesWhatTheUserChanged) {
    DropboxExporterConfiguration original{.userTitle = "a"};
    auto changed = original;
    EXPECT_EQ(original.diff(changed, true), Texts{});
    changed.userTitle = std::nullopt;
    changed.selectedExportKind = Type::plainText;
    changed.attachments.list = {{1, "a", 1, IntegrationAttachmentState::selected}};
    changed.selectedFolderPath = "/a";
    EXPECT_EQ(original.diff(changed, true),
              (Texts{"userTitle", "selectedExportKind", "attachments", "selectedFolderPath"}));
}

TEST_F(DropboxExportTest, AConfigurationIsCodedByItsFields) {
    const DropboxExporterConfiguration configuration{.userTitle = "t",
                                                     .availableExportKinds = {Type::pdf, Type::plainText},
                                                     .attachments = {},
                                                     .selectedFolderPath = "/a"};
    const auto text = JSONEncoder().encode(configuration).value();
    EXPECT_EQ(text, R"({"userTitle":"t","selectedExportKind":0,"availableExportKinds":[0,5],)"
                    R"("attachments":{"list":[]},"selectedFolderPath":"/a"})");
    EXPECT_EQ(JSONDecoder().decode<DropboxExporterConfiguration>(text), configuration);
}

} // namespace zelto
