#include <Support/Completed.h>
#include <Support/GoogleDriveExport.h>
#include <Support/GoogleDriveUpload.h>
#include <Support/LogCapture.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = IntegrationExportError;
using Type = IntegrationExportContentType;

constexpr auto pdf = "JVBERiA8cD5Cb2R5PC9wPg=="; // "%PDF <p>Body</p>"

class GoogleDriveExportTest : public testing::Test {
  protected:
    static std::string check(const std::string& folder) {
        return "GET /drive/v3/files?fields=files%28id%2Cname%2CmimeType%29&q=%27" + folder +
               "%27%20in%20parents%20and%20trashed%20%3D%20false\nAuthorization: Bearer token\n\n";
    }

    static std::string post(const std::string& metadata, const std::string& type, const std::string& base64) {
        return googleDriveUpload("POST /upload/drive/v3/files", metadata, type, base64);
    }

    static std::string patch(const std::string& id, const std::string& metadata, const std::string& type,
                             const std::string& base64) {
        return googleDriveUpload("PATCH /upload/drive/v3/files/" + id, metadata, type, base64);
    }

    static std::string file(const std::string& id, const std::string& name, const std::string& type) {
        return R"({"id":")" + id + R"(","name":")" + name + R"(","mimeType":")" + type + R"("})";
    }

    Texts linesAfter(std::size_t count) const {
        const auto lines = service.lines();
        return {lines.begin() + static_cast<std::ptrdiff_t>(count), lines.end()};
    }

    GoogleDriveExport one;
    GoogleDriveServer service; // behind what its requests write to
};

} // namespace

TEST_F(GoogleDriveExportTest, ChecksTheFolderAndPutsTheFilesIntoIt) {
    one.attach("a.txt", "A");
    one.attach("b.txt", "B");
    one.configuration.selectedFolderId = "f1";
    EXPECT_TRUE(one.run());
    EXPECT_EQ(one.progress->totalUnitCount(), 5);
    EXPECT_EQ(
        service.texts(),
        (Texts{check("f1"),
               post(R"({"name":"Title.pdf","mimeType":"application/pdf","parents":["f1"]})",
                    "application/pdf", pdf),
               post(R"({"name":"a.txt","mimeType":"text/plain","parents":["f1"]})", "text/plain", "QQ=="),
               post(R"({"name":"b.txt","mimeType":"text/plain","parents":["f1"]})", "text/plain", "Qg==")}));
    EXPECT_EQ(one.exporter()->exportReport(),
              (ExportReport{.made = {{"file", "Title.pdf", {}}, {"file", "a.txt", {}}, {"file", "b.txt", {}}},
                            .refused = {}}));
}

TEST_F(GoogleDriveExportTest, WithoutAFolderItIsTheRootAndThereAreNoParents) {
    EXPECT_TRUE(one.run());
    EXPECT_EQ(service.texts(),
              (Texts{check("root"),
                     post(R"({"name":"Title.pdf","mimeType":"application/pdf"})", "application/pdf", pdf)}));
}

TEST_F(GoogleDriveExportTest, OverridingReplacesWhatTheCheckHasFoundAndMakesTheOthers) {
    one.attach("a.txt", "A");
    one.configuration.selectedFolderId = "f1";
    service.files = GoogleDriveService::listing({"Title.pdf", "other"});
    EXPECT_EQ(one.run(), failure(Error::fileAlreadyExists));
    one.policy = ExportFilePolicy::overrideExisting;
    EXPECT_TRUE(one.run());
    EXPECT_EQ(
        service.texts(),
        (Texts{check("f1"),
               patch("id-Title.pdf", R"({"name":"Title.pdf","mimeType":"application/pdf"})",
                     "application/pdf", pdf),
               post(R"({"name":"a.txt","mimeType":"text/plain","parents":["f1"]})", "text/plain", "QQ==")}));
}

TEST_F(GoogleDriveExportTest, OfTwoFilesOfOneNameTheFirstIsReplaced) {
    service.files = R"({"files":[)" + file("1", "Title.pdf", "application/pdf") + "," +
                    file("2", "Title.pdf", "application/pdf") + "]}";
    EXPECT_EQ(one.run(), failure(Error::fileAlreadyExists));
    EXPECT_EQ(
        one.exporter()->existedFiles(),
        (std::vector<GoogleDriveFile>{{.id = "1", .name = "Title.pdf", .mimeType = "application/pdf"},
                                      {.id = "2", .name = "Title.pdf", .mimeType = "application/pdf"}}));
    one.policy = ExportFilePolicy::overrideExisting;
    EXPECT_TRUE(one.run());
    EXPECT_EQ(linesAfter(1), Texts{"PATCH /upload/drive/v3/files/1?uploadType=multipart"});
}

TEST_F(GoogleDriveExportTest, AFileWithoutAnExtensionClashesByThatOfItsType) {
    service.files = R"({"files":[)" + file("1", "Title", "application/pdf") + "]}";
    EXPECT_EQ(one.run(), failure(Error::fileAlreadyExists));
    one.policy = ExportFilePolicy::overrideExisting;
    EXPECT_TRUE(one.run());
    EXPECT_EQ(linesAfter(1), Texts{"PATCH /upload/drive/v3/files/1?uploadType=multipart"});
}

TEST_F(GoogleDriveExportTest, AFolderAndADocumentOfAnotherNameAreNoClash) {
    service.files = R"({"files":[)" + file("1", "Title.pdf", "application/vnd.google-apps.folder") + "," +
                    file("2", "Title", "application/vnd.google-apps.document") + "," +
                    file("3", "title.pdf", "application/pdf") + "]}";
    EXPECT_TRUE(one.run());
    EXPECT_EQ(linesAfter(1), Texts{"POST /upload/drive/v3/files?uploadType=multipart"});
}

TEST_F(GoogleDriveExportTest, NamesCanBeCheckedWithoutAnExport) {
    service.files =
        R"({"files":[)" + file("1", "a.txt", "text/plain") + "," + file("2", "b.txt", "text/plain") + "]}";
    const auto exporter = one.exporter();
    Completed<Result<std::vector<GoogleDriveFile>, IntegrationLoadError>> end;
    exporter->checkFilesExists(
        {"b.txt", "c.txt"}, "f1",
        end.callback<Completion<std::vector<GoogleDriveFile>, IntegrationLoadError>>());
    EXPECT_EQ(end.value(),
              (std::vector<GoogleDriveFile>{{.id = "2", .name = "b.txt", .mimeType = "text/plain"}}));
    EXPECT_EQ(exporter->existedFiles(), std::vector<GoogleDriveFile>());
}

TEST_F(GoogleDriveExportTest, ADocumentOfTheNameClashesButHasNoBytesToReplace) {
    service.files = R"({"files":[)" + file("1", "Title.pdf", "application/vnd.google-apps.document") + "]}";
    EXPECT_EQ(one.run(), failure(Error::fileAlreadyExists));
    one.policy = ExportFilePolicy::overrideExisting;
    EXPECT_TRUE(one.run());
    EXPECT_EQ(linesAfter(1), Texts{"POST /upload/drive/v3/files?uploadType=multipart"});
}

TEST_F(GoogleDriveExportTest, SaysWhatTheServiceSaysOfARefusedCheckAndOfARefusedFile) {
    for (const auto* part : {"trashed", "/upload/drive"}) {
        const LogCapture log;
        service.respondTo(part,
                          PlayedResponse::json(R"({"error":{"code":403,"message":"Rate limit."}})", 403));
        EXPECT_EQ(one.run(), failure(Error::internalError));
        EXPECT_EQ(one.exporter()->exportReport().refused,
                  (std::vector<ExportReport::Refused>{{.kind = "file",
                                                       .name = "Title.pdf",
                                                       .reason = ServiceClientError::forbidden,
                                                       .words = "Rate limit."}}));
        EXPECT_EQ(log.messages(LogLevel::warn).size(), 1U);
    }
}

TEST_F(GoogleDriveExportTest, ATextGoesOutAsUTF8) {
    one.configuration.selectedExportKind = Type::plainText;
    one.data->plainText = "B\u00f6dy";
    EXPECT_TRUE(one.run());
    EXPECT_EQ(service.texts(), (Texts{check("root"), post(R"({"name":"Title.txt","mimeType":"text/plain"})",
                                                          "text/plain", "QsO2ZHk=")}));
}

TEST_F(GoogleDriveExportTest, OffersThePdfIntoTheRoot) {
    one.data->attachments.list = {{1, "a", 1}};
    const auto offered = one.offered();
    EXPECT_EQ(offered.userTitle, "Title");
    EXPECT_EQ(offered.selectedExportKind, Type::pdf);
    EXPECT_EQ(offered.availableExportKinds, (std::vector{Type::pdf, Type::plainText}));
    EXPECT_EQ(offered.attachments.list.front().state, IntegrationAttachmentState::allowed);
    EXPECT_EQ(offered.selectedFolderId, std::nullopt);
}

TEST_F(GoogleDriveExportTest, FoldersAreFetchedEachTime) {
    using Folders = Result<std::vector<GoogleDriveFolder>, IntegrationLoadError>;
    const auto folders = [this] {
        Completed<Folders> completed;
        one.exporter()->fetchFolders(completed.callback<Callback<Folders>>());
        return completed.value();
    };
    EXPECT_EQ(folders().value(), (std::vector<GoogleDriveFolder>{{"f1", "Plans"}, {"f2", "Work"}}));
    service.refuse("orderBy", 401);
    EXPECT_EQ(folders().error(), IntegrationLoadError::oauthError);
    EXPECT_EQ(service.lines().size(), 2U);
}

TEST_F(GoogleDriveExportTest, AConfigurationNamesWhatTheUserChangedAndIsCodedByItsFields) {
    GoogleDriveExporterConfiguration original{.userTitle = "a"};
    auto changed = original;
    changed.userTitle = std::nullopt;
    changed.selectedExportKind = Type::plainText;
    changed.attachments.list = {{1, "a", 1, IntegrationAttachmentState::selected}};
    changed.selectedFolderId = "f1";
    EXPECT_EQ(original.diff(original, true), Texts{});
    EXPECT_EQ(original.diff(changed, true),
              (Texts{"userTitle", "selectedExportKind", "attachments", "selectedFolderId"}));
    const auto text = JSONEncoder().encode(original).value();
    EXPECT_EQ(
        text,
        R"({"userTitle":"a","selectedExportKind":0,"availableExportKinds":[],"attachments":{"list":[]}})");
    EXPECT_EQ(JSONDecoder().decode<GoogleDriveExporterConfiguration>(text), original);
}

} // namespace zelto
