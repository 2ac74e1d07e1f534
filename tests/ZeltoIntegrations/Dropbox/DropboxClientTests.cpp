#include <ZeltoIntegrations/Dropbox/DropboxAuthoriser.h>
#include <ZeltoIntegrations/Dropbox/DropboxClient.h>

#include <Support/DriveClient.h>
#include <Support/DropboxExport.h>
#include <Support/LogCapture.h>

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = ServiceClientError;
using Entries = std::vector<DropboxMetadata>;
using Folders = std::vector<DropboxFolder>;

class DropboxClientTest : public DriveClientTest<DropboxClient, DropboxAuthoriser, DropboxServer> {
  protected:
    static ServiceResult<Entries> files(const std::string& folderPath = "") {
        return performed<Entries>(
            [&](auto& client, auto done) { client.fetchFiles(folderPath, std::move(done)); });
    }

    static ServiceResult<Folders> folders(const std::string& path = "") {
        return performed<Folders>(
            [&](auto& client, auto done) { client.fetchFolders(path, std::move(done)); });
    }

    static ServiceResult<Entries> matches(const Texts& names, const std::string& folderPath = "") {
        return performed<Entries>(
            [&](auto& client, auto done) { client.checkFilesExists(names, folderPath, std::move(done)); });
    }

    static ServiceResult<void> upload(const std::string& name, const std::filesystem::path& file,
                                      const std::string& folderPath = "", bool overwrite = false) {
        return performed<void>([&](auto& client, auto done) {
            client.uploadFile(name, file, folderPath, overwrite, std::move(done));
        });
    }

    static std::string rpc(const std::string& path, const std::string& body) {
        return "POST /2/" + path + "\nContent-Type: application/json\nAuthorization: Bearer token\n" +
               "Content-Length: " + std::to_string(body.size()) + "\n\n" + body;
    }

    static std::string listing(const std::string& path, bool isRecursive = false) {
        return rpc("files/list_folder",
                   R"({"path":")" + path + R"(","recursive":)" + (isRecursive ? "true" : "false") +
                       R"(,"include_media_info":false,"include_deleted":false,)"
                       R"("include_has_explicit_shared_members":false,"include_mounted_folders":true,)"
                       R"("include_non_downloadable_files":false)" +
                       (isRecursive ? R"(,"limit":2000})" : "}"));
    }

    static std::string search(const std::string& query, const std::string& path) {
        return rpc("files/search_v2",
                   R"({"match_field_options":{"include_highlights":false},"options":{"file_status":"active",)"
                   R"("filename_only":false,"max_results":1000,"path":")" +
                       path + R"("},"query":")" + query + R"("})");
    }

    static std::string page(const std::string& name, const std::string& cursor, bool hasMore) {
        return R"({"entries":[{".tag":"folder","name":")" + name + R"(","path_lower":"/)" + name +
               R"(","id":"id:)" + name + R"("}],"cursor":")" + cursor + R"(","has_more":)" +
               (hasMore ? "true" : "false") + "}";
    }

    // The list's pages one after the other, whatever is asked for; the last one again and again.
    void playPages(const Texts& pages) {
        service.onRequest = [this, pages](const auto&) {
            return PlayedResponse::json(pages[std::min(next++, pages.size() - 1)]);
        };
    }

    std::size_t next = 0;
};

std::string contentOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

TEST_F(DropboxClientTest, TheUserIsAskedForWithTheBodyNull) {
    EXPECT_EQ(
        performed<DropboxUser>([](auto& client, auto done) { client.fetchUser(std::move(done)); }).value(),
        DropboxUser{.email = "me@example.org"});
    EXPECT_EQ(service.texts(), Texts{rpc("users/get_current_account", "null")});
}

TEST_F(DropboxClientTest, TheFilesOfAFolderAreAskedForWithoutALimit) {
    EXPECT_EQ(files("/Team").value(),
              (Entries{{.tag = "folder", .name = "Team", .path_lower = "/team", .id = "id:w"},
                       {.tag = "file", .name = "a.txt", .path_lower = "/team/a.txt", .id = "id:a"},
                       {.tag = "folder", .name = "Plans", .path_lower = "/team/plans", .id = "id:p"}}));
    EXPECT_TRUE(files());
    EXPECT_TRUE(files("/"));
    EXPECT_EQ(service.texts(), (Texts{listing("/Team"), listing(""), listing("")}));
}

TEST_F(DropboxClientTest, FoldersAreTheFoldersOfAWholeListingInItsOrder) {
    EXPECT_EQ(folders().value(), (Folders{{.id = "id:w", .name = "Team", .path = "/team"},
                                          {.id = "id:p", .name = "Plans", .path = "/team/plans"}}));
    EXPECT_EQ(service.texts(), Texts{listing("", true)});
}

TEST_F(DropboxClientTest, AFolderWithoutAPathHasItsIdentifierForOne) {
    service.entries = R"({"entries":[{".tag":"folder","name":"n","id":"id:n"}],"has_more":false})";
    EXPECT_EQ(folders().value(), (Folders{{.id = "id:n", .name = "n", .path = "id:n"}}));
}

TEST_F(DropboxClientTest, AListingOfThreePagesIsOneCompletionWithAllEntries) {
    playPages({page("a", "c1", true), page("b", "c2", true), page("c", "c3", false)});
    EXPECT_EQ(folders().value(), (Folders{{.id = "id:a", .name = "a", .path = "/a"},
                                          {.id = "id:b", .name = "b", .path = "/b"},
                                          {.id = "id:c", .name = "c", .path = "/c"}}));
}

TEST_F(DropboxClientTest, ALaterPageIsAskedForByTheCursorAlone) {
    playPages({page("a", R"(c\"1)", true), page("b", "c2", false)});
    EXPECT_EQ(files("/x").value().size(), 2U);
    EXPECT_EQ(service.texts(),
              (Texts{listing("/x"), rpc("files/list_folder/continue", R"({"cursor":"c\"1"})")}));
}

TEST_F(DropboxClientTest, TenThousandEntriesComeInFivePages) {
    service.onRequest = [this](const auto&) {
        const auto first = next++ * 2000;
        std::string entries;
        for (auto index = first; index < first + 2000; ++index) {
            entries += (entries.empty() ? "" : ",") + std::string(R"({".tag":"file","name":"n","id":")") +
                       std::to_string(index) + R"("})";
        }
        return PlayedResponse::json(R"({"entries":[)" + entries + R"(],"cursor":")" + std::to_string(next) +
                                    R"(","has_more":)" + (next < 5 ? "true" : "false") + "}");
    };
    const auto all = files().value();
    ASSERT_EQ(all.size(), 10'000U);
    for (std::size_t index = 0; index < all.size(); ++index) {
        ASSERT_EQ(all[index].id, std::to_string(index));
    }
    EXPECT_EQ(service.lines().size(), 5U);
}

TEST_F(DropboxClientTest, AListingWhoseCursorRepeatsOrIsMissingIsAnError) {
    playPages({page("a", "c1", true)});
    EXPECT_EQ(files().error(), Error::dataParseError);
    EXPECT_EQ(service.lines().size(), 2U);

    service.onRequest = [](const auto&) { return PlayedResponse::json(R"({"entries":[],"has_more":true})"); };
    EXPECT_EQ(folders().error(), Error::dataParseError);
    EXPECT_EQ(service.lines().size(), 3U);
}

TEST_F(DropboxClientTest, ALaterPageThatFailsFailsTheListing) {
    service.respondTo("list_folder/continue", PlayedResponse::json("no", 429));
    service.entries = page("a", "c1", true);
    EXPECT_EQ(files().error(), Error::toManyRequests);
    EXPECT_EQ(service.lines().size(), 2U);
}

TEST_F(DropboxClientTest, ASearchAsksForTheNamesBelowTheFolder) {
    service.matches = DropboxService::matching({"Title.pdf", "b.txt"});
    EXPECT_EQ(matches({"Title.pdf", "a\"&b.txt"}, "/Team/").value(),
              (Entries{dropboxMatch("Title.pdf"), dropboxMatch("b.txt")}));
    EXPECT_EQ(service.texts(), Texts{search("Title.pdf OR a  b.txt", "/Team")});
}

TEST_F(DropboxClientTest, NamesThatAreTooLongForOneSearchAreAskedForInSeveral) {
    const std::string first(600, 'a');
    const std::string second(600, 'b');
    service.onRequest = [&](const ReceivedRequest& request) {
        return PlayedResponse::json(request.body.contains(first) ? DropboxService::matching({"x", "y"})
                                                                 : DropboxService::matching({"y", "z"}));
    };
    EXPECT_EQ(matches({first, second, "c"}).value(),
              (Entries{dropboxMatch("x"), dropboxMatch("y"), dropboxMatch("z")}));
    EXPECT_EQ(service.texts(), (Texts{search(first, ""), search(second + " OR c", "")}));

    service.onRequest = [&](const ReceivedRequest& request) {
        return request.body.contains(first) ? std::optional(PlayedResponse::json("no", 500)) : std::nullopt;
    };
    EXPECT_EQ(matches({first, second}).error(), Error::serviceInternalError);
    EXPECT_EQ(service.lines().size(), 3U);
}

TEST_F(DropboxClientTest, WithoutASearchableNameNothingIsAsked) {
    EXPECT_EQ(matches({}).value(), Entries{});
    EXPECT_EQ(matches({"\U0001f600"}).value(), Entries{});
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(DropboxClientTest, AnUploadIsTheFilesBytesWithItsArgumentsInAHeader) {
    const auto file = folder.write("local", std::string("a\r\n\0b", 5));
    EXPECT_TRUE(upload("\u00dcber \"x\" \U0001f600\x7F.txt", file, "/Team"));
    EXPECT_TRUE(upload("b.txt", file, "", true));
    const auto text = [](const std::string& arguments) {
        return "POST /2/files/upload\nDropbox-API-Arg: " + arguments +
               "\nContent-Type: application/octet-stream\nAuthorization: Bearer token\nContent-Length: 5\n\n" +
               std::string("a\r\n\0b", 5);
    };
    EXPECT_EQ(service.texts(),
              (Texts{text(R"({"path":"/Team/\u00dcber \"x\" \ud83d\ude00\u007f.txt","mode":"add",)"
                          R"("autorename":true,"mute":false})"),
                     text(R"({"path":"/b.txt","mode":"overwrite","autorename":false,"mute":false})")}));
}

TEST_F(DropboxClientTest, WhatIsNoFileIsLoggedAndNotSent) {
    for (const auto& file : {folder / "missing", folder.path(), std::filesystem::path()}) {
        const LogCapture log;
        EXPECT_EQ(upload("a", file).error(), Error::internalError) << file;
        EXPECT_EQ(log.messages(LogLevel::error), Texts{"Failed to uploadFile - no file on path"}) << file;
    }
    EXPECT_EQ(upload("\xFF", folder.write("a", "x")).error(), Error::internalError);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(DropboxClientTest, ADownloadHasItsPathInAHeaderAndNeitherABodyNorAType) {
    service.onRequest = [](const auto&) { return PlayedResponse{.body = "bytes"}; };
    const auto path = download("id:\u00e4 1");
    ASSERT_TRUE(path);
    EXPECT_EQ(contentOf(*path), "bytes");
    EXPECT_EQ(service.texts(), Texts{"POST /2/files/download\nDropbox-API-Arg: {\"path\":\"id:\\u00e4 1\"}\n"
                                     "Authorization: Bearer token\nContent-Length: 0\n\n"});
    EXPECT_EQ(download("\xFF").error(), DownloadError{});
    EXPECT_EQ(service.lines().size(), 1U);
}

TEST_F(DropboxClientTest, ARefusedDownloadLeavesNoFileAndSaysTheServicesWords) {
    service.onRequest = [](const auto&) {
        return PlayedResponse::json(R"({"error_summary":"path/not_found/..","error":{".tag":"path"}})", 409);
    };
    EXPECT_EQ(download("id:gone").error(),
              (DownloadError{.service = Error::apiCallError,
                             .refusal = {.words = "path/not_found/..", .isConflict = true}}));
    EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

TEST_F(DropboxClientTest, AReleasedClientStillCompletes) {
    playPages({page("a", "c1", true), page("b", "c2", false)});
    Completed<ServiceResult<Entries>> completed;
    client()->fetchFiles("", completed.callback<ServiceCompletion<Entries>>());
    EXPECT_EQ(completed.value().value().size(), 2U);
}

} // namespace zelto
