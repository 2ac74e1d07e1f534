#include <ZeltoIntegrations/GoogleDrive/GoogleDriveImporter.h>

#include <Support/GoogleDriveExport.h>
#include <Support/Suites/DriveImportSuite.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

std::string listLine(const std::string& folder) {
    return "GET /drive/v3/files?fields=files%28id%2Cname%2CmimeType%29&q=%27" + folder +
           "%27%20in%20parents%20and%20trashed%20%3D%20false";
}

struct GoogleDriveImport {
    using Importer = GoogleDriveImporter;
    using Server = GoogleDriveServer;
    static constexpr auto service = ServiceType::GoogleDrive;
    static constexpr auto name = "Files";

    static void list(GoogleDriveServer& server) {
        server.files =
            R"({"files":[{"id":"p","name":"Plans","mimeType":"application/vnd.google-apps.folder"},)"
            R"({"id":"a","name":"a.txt","mimeType":"text/plain"}]})";
    }

    static std::vector<IntegrationImportFile> listed() {
        return {IntegrationImportFile::folder("p", "Plans"), IntegrationImportFile::file("a", "a.txt")};
    }

    static Texts lines() { return {listLine("root")}; }

    static std::string downloadLine(const std::string& fileId) {
        return "GET /drive/v3/files/" + fileId + "?alt=media";
    }
};

using GoogleDriveImporterTest = DriveImport<GoogleDriveImport>;

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(GoogleDrive, DriveImport, GoogleDriveImport, NamedByFacts);

TEST_F(GoogleDriveImporterTest, AsksForTheFolderByItsIdentifier) {
    const auto asking = importer();
    EXPECT_TRUE(list(*asking, "p1"));
    EXPECT_EQ(service.lines(), Texts{listLine("p1")});
}

TEST_F(GoogleDriveImporterTest, TwoFilesOfOneNameBothArrive) {
    service.onRequest = [](const ReceivedRequest& request) {
        return PlayedResponse{.body = request.target.contains("/1?") ? "first" : "second"};
    };
    const auto paths = import(*importer(), {{"1", "a.txt"}, {"2", "a.txt"}}).value();
    EXPECT_EQ(contentOf(paths.at(0)), "first");
    EXPECT_EQ(contentOf(paths.at(1)), "second");
    EXPECT_TRUE(std::filesystem::exists(folder / "a.txt"));
    EXPECT_TRUE(std::filesystem::exists(folder / "a (1).txt"));
}

} // namespace zelto
