#include <ZeltoIntegrations/GoogleDrive/GoogleDriveAuthoriser.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveClient.h>

#include <Support/DriveClient.h>
#include <Support/GoogleDriveExport.h>
#include <Support/GoogleDriveUpload.h>
#include <Support/LogCapture.h>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = ServiceClientError;
using Files = std::vector<GoogleDriveFile>;
using Folders = std::vector<GoogleDriveFolder>;

constexpr auto foldersLine = "/drive/v3/files?orderBy=name%5Fnatural&pageSize=1000";
constexpr auto foldersQuery = "&q=mimeType%3D%27application%2Fvnd%2Egoogle%2Dapps%2Efolder%27";

class GoogleDriveClientTest
    : public DriveClientTest<GoogleDriveClient, GoogleDriveAuthoriser, GoogleDriveServer> {
  protected:
    static ServiceResult<Folders> folders() {
        return performed<Folders>([](auto& client, auto done) { client.fetchFolders(std::move(done)); });
    }

    static ServiceResult<Files> files(const std::optional<std::string>& folderId) {
        return performed<Files>(
            [&](auto& client, auto done) { client.fetchFiles(folderId, std::move(done)); });
    }

    static ServiceResult<void> create(const std::string& name, const std::filesystem::path& file,
                                      const std::optional<std::string>& folderId) {
        return performed<void>(
            [&](auto& client, auto done) { client.uploadFile(name, file, folderId, std::move(done)); });
    }

    static ServiceResult<void> replace(const std::string& fileId, const std::string& name,
                                       const std::filesystem::path& file) {
        return performed<void>(
            [&](auto& client, auto done) { client.uploadFile(fileId, name, file, std::move(done)); });
    }

    static std::string get(const std::string& target) {
        return "GET " + target + "\nAuthorization: Bearer token\n\n";
    }

    // The page of 1000 folders that begins at the request's token, as the service cuts a list of so many.
    static PlayedResponse foldersPage(int count, const ReceivedRequest& request) {
        const std::string label = "&pageToken=at";
        const auto found = request.target.find(label);
        const auto first =
            found == std::string::npos ? 0 : std::stoi(request.target.substr(found + label.size()));
        const auto end = std::min(count, first + 1000);
        std::string items;
        for (auto i = first; i < end; ++i) {
            items += (items.empty() ? "" : ",") + std::string(R"({"id":")") + std::to_string(i) +
                     R"(","name":"n","mimeType":"application/vnd.google-apps.folder"})";
        }
        const auto next =
            end == count ? std::string() : R"("nextPageToken":"at)" + std::to_string(end) + R"(",)";
        return PlayedResponse::json("{" + next + R"("files":[)" + items + "]}");
    }
};

} // namespace

TEST_F(GoogleDriveClientTest, TheUserIsWhatIsSelected) {
    EXPECT_EQ(performed<GoogleDriveUser>([](auto& client, auto done) {
                  client.fetchUser(std::move(done));
              }).value(),
              (GoogleDriveUser{.displayName = "Me", .email = "me@example.org"}));
    EXPECT_EQ(service.texts(), Texts{get("/drive/v3/about?fields=user")});
}

TEST_F(GoogleDriveClientTest, TwoThousandFiveHundredFoldersComeByThreeRequests) {
    service.onRequest = [](const auto& request) { return foldersPage(2500, request); };
    const auto all = folders().value();
    ASSERT_EQ(all.size(), 2500U);
    for (std::size_t i = 0; i < all.size(); ++i) {
        ASSERT_EQ(all[i], (GoogleDriveFolder{.id = std::to_string(i), .name = "n"}));
    }
    const std::string line = foldersLine;
    EXPECT_EQ(service.texts(),
              (Texts{get(line + foldersQuery), get(line + "&pageToken=at1000" + foldersQuery),
                     get(line + "&pageToken=at2000" + foldersQuery)}));
}

TEST_F(GoogleDriveClientTest, AListingOfAnyLengthIsWhole) {
    const std::pair<int, std::size_t> rows[] = {{0, 1}, {999, 1}, {1000, 1}, {1001, 2}};
    for (const auto& [count, requests] : rows) {
        const auto before = service.lines().size();
        service.onRequest = [all = count](const auto& request) { return foldersPage(all, request); };
        EXPECT_EQ(std::ssize(folders().value()), count);
        EXPECT_EQ(service.lines().size() - before, requests) << count;
    }
}

TEST_F(GoogleDriveClientTest, AListingWhoseTokenRepeatsIsAnError) {
    service.folders = R"({"files":[],"nextPageToken":"a&b"})";
    EXPECT_EQ(folders().error(), Error::dataParseError);
    const std::string line = foldersLine;
    EXPECT_EQ(service.texts(),
              (Texts{get(line + foldersQuery), get(line + "&pageToken=a%26b" + foldersQuery)}));
}

TEST_F(GoogleDriveClientTest, ALaterPageThatFailsFailsTheListing) {
    service.folders = R"({"files":[],"nextPageToken":"a"})";
    service.respondTo("pageToken", PlayedResponse::json("no", 429));
    EXPECT_EQ(folders().error(), Error::toManyRequests);
    EXPECT_EQ(service.lines().size(), 2U);
}

TEST_F(GoogleDriveClientTest, FilesAreOnePageOfAFolderWithoutItsTrash) {
    service.files = R"({"files":[{"id":"1","name":"a","mimeType":"text/plain"},{"id":"2","name":"a"}],)"
                    R"("nextPageToken":"more"})";
    EXPECT_EQ(files("f-1").value(),
              (Files{{.id = "1", .name = "a", .mimeType = "text/plain"}, {.id = "2", .name = "a"}}));
    EXPECT_TRUE(files(std::nullopt));
    EXPECT_TRUE(files("a'b\\c"));
    const auto line = [](const std::string& folder) {
        return get("/drive/v3/files?fields=files%28id%2Cname%2CmimeType%29&q=%27" + folder +
                   "%27%20in%20parents%20and%20trashed%20%3D%20false");
    };
    EXPECT_EQ(service.texts(), (Texts{line("f%2D1"), line("root"), line("a%5C%27b%5C%5Cc")}));
}

TEST_F(GoogleDriveClientTest, ANewFileIsItsMetadataAndItsContentInBase64) {
    const auto file = folder.write("local.txt", std::string("a\r\n\0b", 5));
    EXPECT_TRUE(create("\u00dcber \"x\".txt", file, "f1"));
    EXPECT_TRUE(create("b", file, std::nullopt));
    EXPECT_TRUE(create("b", file, ""));
    const auto post = [](const std::string& metadata) {
        return googleDriveUpload("POST /upload/drive/v3/files", metadata, "text/plain", "YQ0KAGI=");
    };
    EXPECT_EQ(
        service.texts(),
        (Texts{
            post("{\"name\":\"\u00dcber \\\"x\\\".txt\",\"mimeType\":\"text/plain\",\"parents\":[\"f1\"]}"),
            post(R"({"name":"b","mimeType":"text/plain"})"),
            post(R"({"name":"b","mimeType":"text/plain"})")}));
}

TEST_F(GoogleDriveClientTest, AFileIsReplacedWithoutParents) {
    EXPECT_TRUE(replace("id/1?x", "a.pdf", folder.write("a.pdf", "A")));
    EXPECT_EQ(service.texts(), Texts{googleDriveUpload("PATCH /upload/drive/v3/files/id%2F1%3Fx",
                                                       R"({"name":"a.pdf","mimeType":"application/pdf"})",
                                                       "application/pdf", "QQ==")});
}

TEST_F(GoogleDriveClientTest, WhatIsNoFileIsLoggedAndNotSent) {
    for (const auto& file : {folder / "missing", folder.path(), std::filesystem::path()}) {
        const LogCapture log;
        EXPECT_EQ(create("a", file, std::nullopt).error(), Error::internalError) << file;
        EXPECT_EQ(replace("1", "a", file).error(), Error::internalError) << file;
        EXPECT_EQ(log.messages(LogLevel::error),
                  (Texts{"Failed to uploadFile - no file on path", "Failed to uploadFile - no file on path"}))
            << file;
    }
    EXPECT_EQ(create("\xFF", folder.write("a", "x"), std::nullopt).error(), Error::internalError);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(GoogleDriveClientTest, ADownloadAsksForTheContent) {
    service.onRequest = [](const auto&) { return PlayedResponse{.body = "bytes"}; };
    const auto path = download("a/../b?c");
    ASSERT_TRUE(path);
    std::ifstream file(*path);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "bytes");
    EXPECT_EQ(service.texts(), Texts{get("/drive/v3/files/a%2F..%2Fb%3Fc?alt=media")});
}

TEST_F(GoogleDriveClientTest, ARefusedDownloadLeavesNoFileAndSaysTheServicesWords) {
    service.onRequest = [](const auto&) {
        return PlayedResponse::json(R"({"error":{"code":404,"message":"File not found: x."}})", 404);
    };
    EXPECT_EQ(download("x").error(),
              (DownloadError{.service = Error::itemNotFound, .refusal = {.words = "File not found: x."}}));
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

} // namespace zelto
