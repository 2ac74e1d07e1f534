#include <ZeltoIntegrations/Asana/AsanaAuthoriser.h>
#include <ZeltoIntegrations/Asana/AsanaClient.h>
#include <ZeltoIntegrations/Asana/AsanaConstants.h>

#include <Platform/PercentEncoding.h>

#include <Support/AsanaExport.h>
#include <Support/LogCapture.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Error = ServiceClientError;

constexpr auto projectsLine =
    "GET /api/1.0/workspaces/w1/projects?opt_fields=id,name,archived,public&limit=100";

// The page of 100 projects that begins at the request's offset, as the service cuts a list of so many.
PlayedResponse projectsPage(int count, const ReceivedRequest& request) {
    const std::string label = "&offset=at";
    const auto found = request.target.find(label);
    const auto first =
        found == std::string::npos ? 0 : std::stoi(request.target.substr(found + label.size()));
    const auto end = std::min(count, first + 100);
    std::string items;
    for (auto i = first; i < end; ++i) {
        items += std::string(i == first ? "" : ",") + R"({"gid":")" + std::to_string(i) +
                 R"(","name":"n","archived":false,"public":false})";
    }
    const auto next = end == count ? "null" : R"({"offset":"at)" + std::to_string(end) + R"("})";
    return PlayedResponse::json(R"({"data":[)" + items + R"(],"next_page":)" + next + "}");
}

class AsanaClientTest : public testing::Test {
  protected:
    static ServiceAccountCredentials credentials() {
        ServiceAccountCredentials credentials;
        credentials.accessToken = "token";
        credentials.expirationDate = Date::distantFuture();
        return credentials;
    }

    static std::shared_ptr<AsanaClient> client(const ServiceAccountCredentials& of = credentials()) {
        return std::make_shared<AsanaClient>(std::make_shared<AsanaAuthoriser>(of), JSONDecoder());
    }

    // What a member function of a client, called with these arguments, completes with.
    template <class T, class... Parameters, class... Arguments>
    static ServiceResult<T> performed(const std::shared_ptr<AsanaClient>& client,
                                      void (AsanaClient::*operation)(Parameters...),
                                      const Arguments&... arguments) {
        Completed<ServiceResult<T>> completed;
        ((*client).*operation)(arguments..., completed.template callback<ServiceCompletion<T>>());
        return completed.value();
    }

    static ServiceResult<std::vector<AsanaProject>> projects(const std::string& workspace = "w1") {
        return performed<std::vector<AsanaProject>>(client(), &AsanaClient::fetchProjects, workspace);
    }

    static ServiceResult<AsanaTask> task(const std::optional<std::string>& title,
                                         const std::optional<std::string>& notes,
                                         const std::string& project = "p1") {
        return performed<AsanaTask>(client(), &AsanaClient::createTask, title, notes, project, "w1", "u1");
    }

    static ServiceResult<void> upload(const std::filesystem::path& file, const std::string& task = "t1") {
        return performed<void>(client(), &AsanaClient::uploadFile, file, task);
    }

    static ServiceResult<AsanaFullData> allData() {
        return performed<AsanaFullData>(client(), &AsanaClient::getAllData);
    }

    static std::string get(const std::string& path, const std::string& token = "token") {
        return "GET /api/1.0/" + path + "\nAuthorization: Bearer " + token + "\n\n";
    }

    static std::string post(const std::string& form) {
        return "POST /api/1.0/tasks\nContent-Type: application/x-www-form-urlencoded\n"
               "Authorization: Bearer token\nContent-Length: " +
               std::to_string(form.size()) + "\n\n" + form;
    }

    // The list's pages one after the other, whatever offset is asked for.
    void playPages(const Texts& pages) {
        service.onRequest = [this, pages](const ReceivedRequest& request) -> std::optional<PlayedResponse> {
            if (request.target.find("/projects?") == std::string::npos) {
                return std::nullopt;
            }
            return PlayedResponse::json(pages.at(page++ % pages.size()));
        };
    }

    std::size_t page = 0;
    MemoryKeyChain keyChain;
    TemporaryFolder folder;
    AsanaServer service;
};

} // namespace

TEST_F(AsanaClientTest, EachListIsOneRequestWithoutHeadersOfItsOwn) {
    EXPECT_EQ(performed<AsanaSingleUserResponse>(client(), &AsanaClient::fetchUser).value(),
              (AsanaSingleUserResponse{{.gid = "u1", .name = "Me", .email = "me@example.org"}}));
    EXPECT_EQ(performed<AsanaWorkspacesResponse>(client(), &AsanaClient::fetchWorkspaces).value(),
              (AsanaWorkspacesResponse{{{.gid = "w1", .name = "Work"}}}));
    EXPECT_EQ(performed<AsanaUsersResponse>(client(), &AsanaClient::fetchUsers, "w1").value(),
              (AsanaUsersResponse{{{.gid = "u1", .name = "Me"}, {.gid = "u2", .name = "You"}}}));
    EXPECT_EQ(projects().value(), asanaWorkspace().projects);
    EXPECT_EQ(service.texts(),
              (Texts{get("users/me"), get("workspaces"), get("workspaces/w1/users"),
                     get("workspaces/w1/projects?opt_fields=id,name,archived,public&limit=100")}));
}

TEST_F(AsanaClientTest, TwoHundredAndFiftyProjectsComeByThreeRequests) {
    service.onRequest = [](const auto& request) { return projectsPage(250, request); };
    const auto all = projects().value();
    ASSERT_EQ(all.size(), 250U);
    for (std::size_t i = 0; i < all.size(); ++i) {
        EXPECT_EQ(all[i], (AsanaProject{.id = std::to_string(i), .name = "n"}));
    }
    EXPECT_EQ(
        service.texts(),
        (Texts{get("workspaces/w1/projects?opt_fields=id,name,archived,public&limit=100"),
               get("workspaces/w1/projects?opt_fields=id,name,archived,public&limit=100&offset=at100"),
               get("workspaces/w1/projects?opt_fields=id,name,archived,public&limit=100&offset=at200")}));
}

TEST_F(AsanaClientTest, AListOfAnyLengthIsWhole) {
    const Texts lines = {projectsLine, std::string(projectsLine) + "&offset=at100"};
    const std::pair<int, std::size_t> rows[] = {{0, 1}, {99, 1}, {100, 1}, {101, 2}, {200, 2}};
    for (const auto& [count, requests] : rows) {
        const auto before = std::ssize(service.lines());
        service.onRequest = [projects = count](const auto& request) {
            return projectsPage(projects, request);
        };
        const auto all = projects().value();
        EXPECT_EQ(std::ssize(all), count);
        EXPECT_TRUE(all.empty() || all.back().id == std::to_string(count - 1)) << count;
        const auto sent = service.lines();
        EXPECT_EQ(Texts(sent.begin() + before, sent.end()),
                  Texts(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(requests)))
            << count;
    }
}

TEST_F(AsanaClientTest, APageMayBeEmptyAndTheListGoesOn) {
    playPages({R"({"data":[],"next_page":{"offset":"a"}})",
               R"({"data":[{"gid":"1","archived":true,"public":false}],"next_page":{"offset":"b"}})",
               R"({"data":[],"next_page":{"offset":null}})"});
    EXPECT_EQ(projects().value(), (std::vector<AsanaProject>{{.id = "1", .isArchived = true}}));
    EXPECT_EQ(service.lines(), (Texts{projectsLine, std::string(projectsLine) + "&offset=a",
                                      std::string(projectsLine) + "&offset=b"}));
}

TEST_F(AsanaClientTest, AListWhoseOffsetRepeatsIsAnError) {
    playPages({R"({"data":[],"next_page":{"offset":"a"}})"});
    EXPECT_EQ(projects().error(), Error::dataParseError);
    EXPECT_EQ(service.lines(), (Texts{projectsLine, std::string(projectsLine) + "&offset=a"}));

    playPages({R"({"data":[],"next_page":{"offset":"a"}})", R"({"data":[],"next_page":{"offset":"b"}})"});
    EXPECT_EQ(projects().error(), Error::dataParseError);
    EXPECT_EQ(service.lines().size(), 5U);
}

TEST_F(AsanaClientTest, AnOffsetIsEncoded) {
    playPages({R"({"data":[],"next_page":{"offset":"a+b&limit=1#\u00e4 %41/?;"}})",
               R"({"data":[],"next_page":null})"});
    EXPECT_TRUE(projects());
    EXPECT_EQ(service.lines().back(),
              std::string(projectsLine) + "&offset=a%2Bb%26limit%3D1%23%C3%A4%20%2541/?%3B");
}

TEST_F(AsanaClientTest, ALaterPageThatFailsFailsTheList) {
    service.onRequest = [](const ReceivedRequest& request) {
        return request.target.ends_with("&offset=at100") ? PlayedResponse::json("no", 429)
                                                         : projectsPage(250, request);
    };
    EXPECT_EQ(projects().error(), Error::toManyRequests);
    EXPECT_EQ(service.lines().size(), 2U);
}

TEST_F(AsanaClientTest, AnIdentifierStaysInItsPlace) {
    const std::pair<const char*, const char*> rows[] = {
        {"../x?y=1#z/%41;a b", "..%2Fx%3Fy=1%23z%2F%2541%3Ba%20b"},
        {"..", "%2E%2E"},
        {".", "%2E"},
        {"a\r\nHost: evil", "a%0D%0AHost:%20evil"},
        {"\xC3\xA4", "%C3%A4"}};
    const auto file = folder.write("a", "x");
    for (const auto& [id, segment] : rows) {
        const auto before = std::ssize(service.lines());
        EXPECT_TRUE(performed<AsanaUsersResponse>(client(), &AsanaClient::fetchUsers, id));
        EXPECT_TRUE(projects(id));
        EXPECT_TRUE(upload(file, id));
        const auto path = "/api/1.0/workspaces/" + std::string(segment);
        const auto sent = service.lines();
        EXPECT_EQ(Texts(sent.begin() + before, sent.end()),
                  (Texts{"GET " + path + "/users",
                         "GET " + path + "/projects?opt_fields=id,name,archived,public&limit=100",
                         "POST /api/1.0/tasks/" + std::string(segment) + "/attachments"}));
    }
}

TEST_F(AsanaClientTest, ATaskIsAForm) {
    EXPECT_EQ(task("a+b & c=d; 100 % \xC3\xA4/#?", "x\ny").value(), AsanaTask{.ID = "t1"});
    EXPECT_EQ(service.texts(),
              Texts{post("assignee=u1&name=a%2Bb%20%26%20c%3Dd%3B%20100%20%25%20%C3%A4%2F%23%3F"
                         "&notes=x%0Ay&projects=p1&workspace=w1")});
}

TEST_F(AsanaClientTest, WhatATaskDoesNotHaveIsLeftOut) {
    EXPECT_TRUE(task(std::nullopt, std::nullopt));
    EXPECT_TRUE(task("n", std::nullopt));
    EXPECT_TRUE(task(std::nullopt, "n"));
    EXPECT_TRUE(task("", "", "p&workspace=other"));
    EXPECT_EQ(service.texts(),
              (Texts{post("assignee=u1&projects=p1&workspace=w1"),
                     post("assignee=u1&name=n&projects=p1&workspace=w1"),
                     post("assignee=u1&notes=n&projects=p1&workspace=w1"),
                     post("assignee=u1&name=&notes=&projects=p%26workspace%3Dother&workspace=w1")}));
}

TEST_F(AsanaClientTest, ATaskWithoutAnIdentifierIsNone) {
    service.onRequest = [](const auto&) { return PlayedResponse::json(R"({"data":{"name":"n"}})"); };
    EXPECT_EQ(task("n", "n").error(), Error::dataParseError);
}

TEST_F(AsanaClientTest, AnUploadIsOneFileOfAForm) {
    EXPECT_TRUE(upload(folder.write("a \"b\".txt", "content\r\n")));
    EXPECT_EQ(service.texts(),
              Texts{"POST /api/1.0/tasks/t1/attachments\n"
                    "Content-Type: multipart/form-data; boundary=B\nAuthorization: Bearer token\n"
                    "Content-Length: 210\n\n"
                    "--B\r\nContent-Disposition: form-data; name=\"file\"; filename=\"a %22b%22.txt\"\r\n"
                    "Content-Type: text/plain\r\n\r\ncontent\r\n\r\n--B--\r\n"});
}

TEST_F(AsanaClientTest, WhatIsNoFileIsLoggedAndNotSent) {
    std::filesystem::create_symlink(folder / "nowhere", folder / "link");
    for (const auto& file : {folder / "missing", folder.path(), folder / "link", std::filesystem::path()}) {
        const auto sender = client();
        const LogCapture log;
        EXPECT_EQ(performed<void>(sender, &AsanaClient::uploadFile, file, "t1").error(), Error::internalError)
            << file;
        EXPECT_EQ(log.messages(LogLevel::error), Texts{"Failed to uploadFile - no file on path"}) << file;
    }
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(AsanaClientTest, AllDataAreEachWorkspaceWithItsUsersAndItsProjects) {
    service.workspaces = R"({"data":[{"gid":"w1","name":"One"},{"gid":"w2"}]})";
    service.onRequest = [](const ReceivedRequest& request) -> std::optional<PlayedResponse> {
        if (request.target == "/api/1.0/workspaces/w2/users") {
            return PlayedResponse::json(R"({"data":[]})");
        }
        if (request.target.starts_with("/api/1.0/workspaces/w2/projects?")) {
            return PlayedResponse::json(R"({"data":[{"gid":"a","archived":true,"public":false},)"
                                        R"({"gid":"b","archived":false,"public":false}]})");
        }
        return std::nullopt;
    };
    auto first = asanaWorkspace();
    first.name = "One";
    const AsanaWorkspace second{.id = "w2", .projects = {{.id = "b"}, {.id = "a", .isArchived = true}}};
    EXPECT_EQ(allData().value(), (AsanaFullData{.user = {.id = "u1", .name = "Me", .email = "me@example.org"},
                                                .workspaces = {first, second}}));
    EXPECT_EQ(service.texts(),
              (Texts{get("users/me"), get("workspaces"), get("workspaces/w1/users"),
                     get("workspaces/w1/projects?opt_fields=id,name,archived,public&limit=100"),
                     get("workspaces/w2/users"),
                     get("workspaces/w2/projects?opt_fields=id,name,archived,public&limit=100")}));
}

TEST_F(AsanaClientTest, AllDataOfAnAccountWithoutWorkspacesAreTheUser) {
    service.workspaces = R"({"data":[]})";
    EXPECT_EQ(allData().value().workspaces, std::vector<AsanaWorkspace>{});
    EXPECT_EQ(service.lines(), (Texts{"GET /api/1.0/users/me", "GET /api/1.0/workspaces"}));
}

TEST_F(AsanaClientTest, ArchivedProjectsOfALaterPageComeBehindTheOthersOfAllPages) {
    playPages({R"({"data":[{"gid":"1","archived":true,"public":false}],"next_page":{"offset":"a"}})",
               R"({"data":[{"gid":"2","archived":false,"public":false}],"next_page":null})"});
    EXPECT_EQ(allData().value().workspaces.at(0).projects,
              (std::vector<AsanaProject>{{.id = "2"}, {.id = "1", .isArchived = true}}));
}

TEST_F(AsanaClientTest, AStaleTokenIsRefreshedOnceBeforeTheFirstRequest) {
    auto stale = credentials();
    stale.refreshToken = "refresh/1";
    stale.expirationDate = Date::fromReferenceSeconds(0);
    EXPECT_TRUE(performed<AsanaFullData>(client(stale), &AsanaClient::getAllData));
    const auto form = "client%5Fid=" + *percentEncode(AsanaConstants::clientKey()) +
                      "&client%5Fsecret=" + *percentEncode(AsanaConstants::clientSecret()) +
                      "&grant%5Ftype=refresh%5Ftoken&refresh%5Ftoken=refresh%2F1";
    EXPECT_EQ(
        service.texts(),
        (Texts{"POST /-/oauth_token\nContent-Type: application/x-www-form-urlencoded\nContent-Length: " +
                   std::to_string(form.size()) + "\n\n" + form,
               get("users/me", "fresh"), get("workspaces", "fresh"), get("workspaces/w1/users", "fresh"),
               get("workspaces/w1/projects?opt_fields=id,name,archived,public&limit=100", "fresh")}));
}

TEST_F(AsanaClientTest, ARefusedTokenIsRefreshedOnceAndTheRequestRepeated) {
    auto refreshable = credentials();
    refreshable.refreshToken = "refresh-1";
    service.onRequest = [](const ReceivedRequest& request) -> std::optional<PlayedResponse> {
        return request.headers.value("Authorization") == "Bearer token"
                   ? std::optional(PlayedResponse::json("no", 401))
                   : std::nullopt;
    };
    EXPECT_TRUE(performed<AsanaSingleUserResponse>(client(refreshable), &AsanaClient::fetchUser));
    EXPECT_EQ(service.lines(),
              (Texts{"GET /api/1.0/users/me", "POST /-/oauth_token", "GET /api/1.0/users/me"}));
}

TEST_F(AsanaClientTest, WithoutATokenNothingIsSent) {
    auto empty = credentials();
    empty.accessToken = std::nullopt;
    EXPECT_EQ(performed<AsanaSingleUserResponse>(client(empty), &AsanaClient::fetchUser).error(),
              Error::oauthError);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(AsanaClientTest, AReleasedClientStillCompletes) {
    Completed<ServiceResult<AsanaFullData>> completed;
    client()->getAllData(completed.callback<ServiceCompletion<AsanaFullData>>());
    EXPECT_TRUE(completed.value());
}

} // namespace zelto
