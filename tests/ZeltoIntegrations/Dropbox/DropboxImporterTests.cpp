#include <ZeltoIntegrations/Dropbox/DropboxImporter.h>

#include <Support/DropboxExport.h>
#include <Support/Suites/DriveImportSuite.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

struct DropboxImport {
    using Importer = DropboxImporter;
    using Server = DropboxServer;
    static constexpr auto service = ServiceType::Dropbox;
    static constexpr auto name = "Files";

    static void list(DropboxServer& server) {
        server.entries =
            R"({"entries":[{".tag":"folder","name":"Plans","id":"id:p"}],"cursor":"c","has_more":true})";
        server.onRequest = [](const ReceivedRequest& request) {
            return request.target.ends_with("/continue")
                       ? std::optional(PlayedResponse::json(
                             R"({"entries":[{".tag":"file","name":"a.txt","id":"id:a"}],"has_more":false})"))
                       : std::nullopt;
        };
    }

    static std::vector<IntegrationImportFile> listed() {
        return {IntegrationImportFile::folder("id:p", "Plans"), IntegrationImportFile::file("id:a", "a.txt")};
    }

    static Texts lines() { return {"POST /2/files/list_folder", "POST /2/files/list_folder/continue"}; }

    static std::string downloadLine(const std::string& fileId) {
        return "POST /2/files/download\nDropbox-API-Arg: {\"path\":\"" + fileId + "\"}";
    }
};

using DropboxImporterTest = DriveImport<DropboxImport>;

} // namespace

INSTANTIATE_TYPED_TEST_SUITE_P(Dropbox, DriveImport, DropboxImport, NamedByFacts);

TEST_F(DropboxImporterTest, AsksForTheFolderByItsPathOrItsIdentifier) {
    const auto asking = importer();
    for (const auto& path : {std::optional<std::string>(), std::optional<std::string>("/Team"),
                             std::optional<std::string>("id:w")}) {
        EXPECT_TRUE(list(*asking, path));
        const auto body = JSONValue::parse(service.server.requests().back().body).value();
        EXPECT_EQ(*body.find("path")->asString(), path.value_or(""));
    }
}

} // namespace zelto
