#include <ZeltoSandbox/MultipartBody.h>
#include <ZeltoSandbox/SandboxCaller.h>

#include <Platform/Date.h>

#include <gtest/gtest.h>

#include <set>

namespace zelto {

namespace {

using Items = SandboxCaller::Items;
using Texts = std::vector<std::string>;

const std::string host = "app.asana.com";
const std::string lighthouse = "1200000000000101";
const std::string library = "1200000000000102";
const std::string withoutProjects = "1200000000000103";
const std::string relaunch = "1200000000001001";
const std::string ofLibrary = "1200000000001004";
const std::string robin = "1200000000000001";
const std::string olga = "1200000000000003";
const std::string unknownGID = "99";

class AsanaSandboxTest : public testing::Test {
  protected:
    std::string authorization() const { return "Authorization: Bearer " + token + "\r\n"; }

    CallerResponse get(const std::string& path) const {
        return caller.get(host, "/api/1.0/" + path, authorization());
    }

    CallerResponse post(const Items& items) const {
        return caller.postForm(host, "/api/1.0/tasks", items, authorization());
    }

    CallerResponse attach(const std::string& task, const MultipartBody& body) const {
        return caller.post(host, "/api/1.0/tasks/" + task + "/attachments", body.type(), body.text(),
                           authorization());
    }

    std::string addedTask() const {
        const auto added = post({{"workspace", lighthouse}, {"name", "A task"}}).json();
        return *added.find("data")->find("gid")->asString();
    }

    SandboxCaller caller;
    std::string token = caller.server->issueTokens("Asana")->accessToken;
};

// "404 task: Unknown object: 99"
std::string refusal(const CallerResponse& response) {
    const auto body = response.json();
    const auto* errors = body.find("errors");
    if (!errors || !errors->asArray() || errors->asArray()->size() != 1) {
        return "no refusal: " + response.body;
    }
    return std::to_string(response.status) + " " + *errors->asArray()->front().find("message")->asString();
}

Texts texts(const JSONValue& body, std::string_view key) {
    Texts all;
    for (const auto& each : *body.find("data")->asArray()) {
        all.push_back(*each.find(key)->asString());
    }
    return all;
}

JSONValue json(std::string_view text) {
    return *JSONValue::parse(text);
}

} // namespace

TEST_F(AsanaSandboxTest, RefusesARequestWithoutAGoodToken) {
    const auto withHeader = [&](const std::string& header) {
        return refusal(caller.get(host, "/api/1.0/users/me", header));
    };
    EXPECT_EQ(withHeader(""), "401 Not Authorized");
    EXPECT_EQ(caller.server->requests().back().problem, "there is no bearer token");
    EXPECT_EQ(withHeader("Authorization: Bearer wrong\r\n"), "401 Not Authorized");
    EXPECT_EQ(withHeader("Authorization: Basic " + token + "\r\n"), "401 Not Authorized");
    const auto ofTodoist = caller.server->issueTokens("Todoist")->accessToken;
    EXPECT_EQ(withHeader("Authorization: Bearer " + ofTodoist + "\r\n"), "401 Not Authorized");
    EXPECT_EQ(get("users/me").status, 200);
    caller.server->expireTokens("Asana");
    EXPECT_EQ(refusal(get("users/me")), "401 Not Authorized");
    EXPECT_EQ(caller.server->requests().back().problem, "the access token has expired");
}

TEST_F(AsanaSandboxTest, GivesTokensAnHourAndNewOnesForARefreshToken) {
    const auto now = Date::now();
    const auto tokens = caller.server->issueTokens("Asana");
    EXPECT_EQ(tokens->lifetime, TimeInterval(3600));
    token = tokens->accessToken;
    {
        ClockOverride later(now + TimeInterval(3500));
        EXPECT_EQ(get("users/me").status, 200);
    }
    ClockOverride later(now + TimeInterval(3700));
    EXPECT_EQ(refusal(get("users/me")), "401 Not Authorized");
    const auto refreshed = caller.postForm(host, "/-/oauth_token",
                                           {{"grant_type", "refresh_token"},
                                            {"client_id", "id"},
                                            {"client_secret", "secret"},
                                            {"refresh_token", tokens->refreshToken}});
    ASSERT_EQ(refreshed.status, 200) << refreshed.body;
    token = refreshed.text("access_token");
    EXPECT_EQ(get("users/me").status, 200);
}

TEST_F(AsanaSandboxTest, ChecksTheScopeOfEachEndpoint) {
    const auto signedIn = [&](const std::string& scope) {
        const auto authorized =
            caller.get(host, "/-/oauth_authorize?response_type=code&client_id=id&state=s&redirect_uri="
                             "http%3A%2F%2F127.0.0.1%2F&sandbox_consent=allow&scope=" +
                                 scope);
        const auto tokens = caller.postForm(host, "/-/oauth_token",
                                            {{"grant_type", "authorization_code"},
                                             {"client_id", "id"},
                                             {"client_secret", "secret"},
                                             {"redirect_uri", "http://127.0.0.1/"},
                                             {"code", authorized.redirectItem("code").value_or("")}});
        return tokens.text("access_token");
    };
    token = signedIn("users:read%20tasks:write");
    EXPECT_EQ(get("users/me").status, 200);
    EXPECT_EQ(get("workspaces/" + lighthouse + "/users").status, 200);
    EXPECT_EQ(post({{"workspace", lighthouse}}).status, 201);
    const Texts others = {"workspaces", "workspaces/" + lighthouse + "/projects", "tasks/1",
                          "tasks/1/attachments"};
    for (const auto& path : others) {
        EXPECT_EQ(refusal(get(path)), "403 Forbidden") << path;
    }
    EXPECT_EQ(refusal(attach("1", MultipartBody())), "403 Forbidden");
    EXPECT_EQ(caller.server->requests().back().problem,
              "the token does not have the scope attachments:write");
    token = signedIn("default");
    EXPECT_EQ(get("workspaces").status, 200);
}

TEST_F(AsanaSandboxTest, DescribesTheUserInWholeOrByFields) {
    EXPECT_EQ(get("users/me").json(), json(R"({"data":{
        "gid":"1200000000000001","resource_type":"user","name":"Robin Sandbox","email":"robin@sandbox.example",
        "photo":null,"workspaces":[
            {"gid":"1200000000000101","resource_type":"workspace","name":"Lighthouse"},
            {"gid":"1200000000000102","resource_type":"workspace","name":"Große Bibliothek 図書館"},
            {"gid":"1200000000000103","resource_type":"workspace","name":"No projects yet"}]}})"));
    EXPECT_EQ(get("users/me?opt_fields=email,id,workspaces.name").json().find("data")->asObject()->size(),
              4U);
}

TEST_F(AsanaSandboxTest, ListsWorkspacesAsCompactRecords) {
    EXPECT_EQ(get("workspaces").json(), json(R"({"data":[
        {"gid":"1200000000000101","resource_type":"workspace","name":"Lighthouse"},
        {"gid":"1200000000000102","resource_type":"workspace","name":"Große Bibliothek 図書館"},
        {"gid":"1200000000000103","resource_type":"workspace","name":"No projects yet"}]})"));
    EXPECT_EQ(get("workspaces?opt_fields=is_organization&limit=1").json().find("data")->asArray()->front(),
              json(R"({"gid":"1200000000000101","resource_type":"workspace","is_organization":true})"));
}

TEST_F(AsanaSandboxTest, ListsTheUsersOfAWorkspaceWithoutTheirAddresses) {
    const auto users = get("workspaces/" + lighthouse + "/users").json();
    EXPECT_EQ(texts(users, "name"), (Texts{"Robin Sandbox", "Zoë Müller", "Ольга Жукова", "山田 太郎"}));
    EXPECT_EQ(users.find("data")->asArray()->front(),
              json(R"({"gid":"1200000000000001","resource_type":"user","name":"Robin Sandbox"})"));
    EXPECT_EQ(texts(get("workspaces/" + library + "/users?opt_fields=email").json(), "email"),
              (Texts{"robin@sandbox.example", "taro@sandbox.example"}));
}

TEST_F(AsanaSandboxTest, ListsProjectsWithTheFieldsThatAreAskedFor) {
    EXPECT_EQ(
        get("workspaces/" + lighthouse + "/projects?opt_fields=id,name,archived,public&limit=100").json(),
        json(R"({"data":[
        {"gid":"1200000000001001","resource_type":"project","name":"Relaunch","archived":false,"public":true},
        {"gid":"1200000000001002","resource_type":"project","name":"Büro & Zuhause 🏡","archived":false,"public":false},
        {"gid":"1200000000001003","resource_type":"project","name":"Last year's campaign","archived":true,"public":true}],
        "next_page":null})"));
    const auto names = [&](const std::string& query) {
        return texts(get("workspaces/" + lighthouse + "/projects" + query).json(), "name");
    };
    EXPECT_EQ(names("?archived=true"), Texts{"Last year's campaign"});
    EXPECT_EQ(names("?archived=false"), (Texts{"Relaunch", "Büro & Zuhause 🏡"}));
    EXPECT_EQ(refusal(get("workspaces/" + lighthouse + "/projects?archived=x")),
              "400 archived: Not a boolean: x");
    EXPECT_EQ(get("workspaces/" + withoutProjects + "/projects?limit=100").json(),
              json(R"({"data":[],"next_page":null})"));
}

TEST_F(AsanaSandboxTest, GivesLongListsInPages) {
    const auto first = "workspaces/" + library + "/projects?opt_fields=id,name,archived,public&limit=100";
    Texts all;
    std::vector<std::size_t> sizes;
    std::string target = "/api/1.0/" + first;
    for (bool more = true; more;) {
        const auto page = caller.get(host, target, authorization()).json();
        const auto names = texts(page, "name");
        sizes.push_back(names.size());
        all.insert(all.end(), names.begin(), names.end());
        const auto* next = page.find("next_page");
        more = !next->isNull();
        if (more) {
            const auto offset = *next->find("offset")->asString();
            EXPECT_EQ(*next->find("path")->asString(), "/" + first + "&offset=" + offset);
            target = "/api/1.0/" + first + "&offset=" + offset;
            EXPECT_EQ(*next->find("uri")->asString(), "https://app.asana.com" + target);
        }
    }
    EXPECT_EQ(sizes, (std::vector<std::size_t>{100, 100, 50}));
    EXPECT_EQ(all.front(), "Projekt 001");
    EXPECT_EQ(all.back(), "Projekt 250");
    EXPECT_EQ(std::set<std::string>(all.begin(), all.end()).size(), 250U);
    const auto unpaged = get("workspaces/" + library + "/projects").json();
    EXPECT_EQ(unpaged.find("data")->asArray()->size(), 250U);
    EXPECT_EQ(unpaged.find("next_page"), nullptr);
}

TEST_F(AsanaSandboxTest, RefusesALimitOutsideOneToAHundred) {
    const auto withLimit = [&](const std::string& limit) {
        return get("workspaces/" + library + "/projects?limit=" + limit);
    };
    for (const auto* limit : {"0", "101", "-1", "x", "", "1.0"}) {
        EXPECT_EQ(refusal(withLimit(limit)), "400 limit: Must be between 1 and 100") << limit;
    }
    EXPECT_EQ(texts(withLimit("1").json(), "name").size(), 1U);
    EXPECT_EQ(texts(withLimit("100").json(), "name").size(), 100U);
}

TEST_F(AsanaSandboxTest, RefusesAnOffsetThatIsUnknownOrHasExpired) {
    const auto now = Date::now();
    std::optional<ClockOverride> clock(now);
    const auto path = "workspaces/" + library + "/projects?limit=100";
    const auto offset = *get(path).json().find("next_page")->find("offset")->asString();
    const auto second = path + "&offset=" + offset;
    EXPECT_EQ(refusal(get(path + "&offset=x")), "400 offset: Your pagination token is invalid.");
    EXPECT_EQ(refusal(get("workspaces/" + lighthouse + "/projects?limit=100&offset=" + offset)),
              "400 offset: Your pagination token is invalid.");
    EXPECT_EQ(texts(get(second).json(), "name").front(), "Projekt 101");
    EXPECT_EQ(get(second).status, 200);
    clock.emplace(now + TimeInterval(899));
    EXPECT_EQ(get(second).status, 200);
    clock.emplace(now + TimeInterval(900));
    EXPECT_EQ(refusal(get(second)), "400 offset: Your pagination token has expired.");
}

TEST_F(AsanaSandboxTest, RefusesUnknownIdentifiersInAPath) {
    EXPECT_EQ(refusal(get("workspaces/99/users")), "404 workspace: Unknown object: 99");
    EXPECT_EQ(refusal(get("workspaces/99/projects")), "404 workspace: Unknown object: 99");
    EXPECT_EQ(refusal(get("workspaces/x/projects")), "400 workspace: Not a recognized ID: x");
    EXPECT_EQ(refusal(get("tasks/99")), "404 task: Unknown object: 99");
    EXPECT_EQ(refusal(get("tasks/x")), "400 task: Not a recognized ID: x");
    EXPECT_EQ(refusal(get("tasks/99/attachments")), "404 task: Unknown object: 99");
    EXPECT_EQ(refusal(get("nothing")), "404 No matching route for request");
    EXPECT_EQ(refusal(post({})), "400 You should specify one of workspace, parent, projects");
    EXPECT_EQ(refusal(caller.postForm(host, "/api/1.0/workspaces", {}, authorization())),
              "404 No matching route for request");
}

TEST_F(AsanaSandboxTest, CreatesATask) {
    const auto response = post({{"assignee", olga},
                                {"name", "Überprüfen & abheften"},
                                {"notes", "Zeile 1\nhttps://example.com/?a=b+c"},
                                {"projects", relaunch},
                                {"workspace", lighthouse}});
    ASSERT_EQ(response.status, 201) << response.body;
    const auto whole = response.json();
    const auto& data = *whole.find("data");
    const auto gid = *data.find("gid")->asString();
    EXPECT_EQ(response.field("Location"), "https://app.asana.com/api/1.0/tasks/" + gid);
    EXPECT_EQ(*data.find("resource_type")->asString(), "task");
    EXPECT_EQ(*data.find("name")->asString(), "Überprüfen & abheften");
    EXPECT_EQ(*data.find("notes")->asString(), "Zeile 1\nhttps://example.com/?a=b+c");
    EXPECT_EQ(*data.find("assignee"),
              json(R"({"gid":"1200000000000003","resource_type":"user","name":"Ольга Жукова"})"));
    EXPECT_EQ(*data.find("projects"),
              json(R"([{"gid":"1200000000001001","resource_type":"project","name":"Relaunch"}])"));
    EXPECT_EQ(*data.find("workspace"),
              json(R"({"gid":"1200000000000101","resource_type":"workspace","name":"Lighthouse"})"));
    EXPECT_EQ(get("tasks/" + gid).json(), whole);
    EXPECT_EQ(get("tasks/" + gid + "?opt_fields=name").json().find("data")->asObject()->size(), 3U);
}

TEST_F(AsanaSandboxTest, TakesTheAssigneeByAddressOrAsMeAndSeveralProjects) {
    const auto assignee = [&](const std::string& text) {
        const auto task = post({{"workspace", lighthouse}, {"assignee", text}}).json();
        return *task.find("data")->find("assignee")->find("gid")->asString();
    };
    EXPECT_EQ(assignee("me"), robin);
    EXPECT_EQ(assignee("olga@sandbox.example"), olga);
    const auto task = post({{"projects", relaunch + ",1200000000001002"}}).json();
    EXPECT_EQ(task.find("data")->find("projects")->asArray()->size(), 2U);
    EXPECT_EQ(*task.find("data")->find("workspace")->find("gid")->asString(), lighthouse);
    EXPECT_TRUE(task.find("data")->find("assignee")->isNull());
}

TEST_F(AsanaSandboxTest, RefusesATaskAsAsanaDoes) {
    const auto refused = [&](const Items& items) { return refusal(post(items)); };
    EXPECT_EQ(refused({{"name", "n"}}), "400 You should specify one of workspace, parent, projects");
    EXPECT_EQ(refused({{"workspace", "x"}}), "400 workspace: Not a recognized ID: x");
    EXPECT_EQ(refused({{"workspace", unknownGID}}), "400 workspace: Unknown object: 99");
    EXPECT_EQ(refused({{"workspace", lighthouse}, {"projects", "x"}}),
              "400 projects: [0]: Not a recognized ID: x");
    EXPECT_EQ(refused({{"workspace", lighthouse}, {"projects", unknownGID}}),
              "400 projects: [0]: Unknown object: 99");
    EXPECT_EQ(refused({{"projects", unknownGID}}), "400 projects: [0]: Unknown object: 99");
    EXPECT_EQ(refused({{"workspace", lighthouse}, {"projects", relaunch + "," + unknownGID}}),
              "400 projects: [1]: Unknown object: 99");
    EXPECT_EQ(refused({{"workspace", lighthouse}, {"projects", ofLibrary}}),
              "400 projects: [0]: Not in the task's workspace: " + ofLibrary);
    EXPECT_EQ(refused({{"workspace", lighthouse}, {"assignee", unknownGID}}),
              "400 assignee: Not a user in Organization: 99");
    EXPECT_EQ(refused({{"workspace", library}, {"assignee", olga}}),
              "400 assignee: Not a user in Organization: " + olga);
    EXPECT_EQ(refused({{"workspace", withoutProjects}, {"assignee", olga}}),
              "400 assignee: Not a user in Workspace: " + withoutProjects);
    EXPECT_EQ(refused({{"workspace", lighthouse}, {"id", "1"}}), "400 id: Cannot write this property");
    EXPECT_EQ(refused({{"workspace", lighthouse}, {"name", "a"}, {"name", "b"}}),
              "400 name: Given more than once");
    const auto json = caller.post(host, "/api/1.0/tasks", "application/json", "{}", authorization());
    EXPECT_EQ(refusal(json), "400 Unsupported Content-Type: application/json");
    const auto broken = caller.post(host, "/api/1.0/tasks", "application/x-www-form-urlencoded",
                                    "workspace=%zz", authorization());
    EXPECT_TRUE(refusal(broken).starts_with("400 Could not parse request data")) << broken.body;
    const auto state = caller.server->state();
    const auto& first = state.find("asana")->find("workspaces")->asArray()->front();
    EXPECT_TRUE(first.find("tasks")->asArray()->empty());
}

TEST_F(AsanaSandboxTest, KeepsAnAttachedFileByteForByte) {
    const auto task = addedTask();
    std::string content = "%PDF-1.7\r\n--";
    for (int i = 0; i < 300'000; ++i) {
        content.push_back(static_cast<char>(i * 7));
    }
    const auto response =
        attach(task, MultipartBody().file("file", "Plan für 2027.pdf", "application/pdf", content));
    ASSERT_EQ(response.status, 200) << response.body;
    const auto body = response.json();
    const auto& data = *body.find("data");
    EXPECT_EQ(*data.find("name")->asString(), "Plan für 2027.pdf");
    EXPECT_EQ(*data.find("resource_type")->asString(), "attachment");
    EXPECT_EQ(data.find("size")->asUInt64(), content.size());
    EXPECT_EQ(*data.find("parent"),
              json(R"({"gid":")" + task + R"(","resource_type":"task","name":"A task"})"));
    EXPECT_EQ(caller.get(caller.ownHost(), "/files/1").body, content);
    EXPECT_EQ(texts(get("tasks/" + task + "/attachments").json(), "name"), Texts{"Plan für 2027.pdf"});
}

TEST_F(AsanaSandboxTest, RefusesAFileAsAsanaDoes) {
    const auto task = addedTask();
    const auto file = MultipartBody().file("file", "a.txt", "text/plain", "x");
    EXPECT_EQ(refusal(attach("x", file)), "400 task: Not a recognized ID: x");
    EXPECT_EQ(refusal(attach(unknownGID, file)), "404 task: Unknown object: 99");
    EXPECT_EQ(refusal(attach(task, MultipartBody().file("other", "a.txt", "text/plain", "x"))),
              "400 file: Missing input");
    EXPECT_EQ(refusal(attach(task, MultipartBody().file("file", "", "text/plain", "x"))),
              "400 file: Missing file name");
    auto two = file;
    EXPECT_EQ(refusal(attach(task, two.file("file", "b.txt", "text/plain", "y"))),
              "400 file: Given more than once");
    const auto form = caller.postForm(host, "/api/1.0/tasks/" + task + "/attachments", {}, authorization());
    EXPECT_EQ(refusal(form), "400 file: Missing input");
}

TEST_F(AsanaSandboxTest, TakesFilesOfUpToAHundredMebibytes) {
    const auto task = addedTask();
    std::string content((std::size_t{100} << 20) - 1, 'x');
    for (const int status : {200, 200, 413}) {
        const auto response = attach(task, MultipartBody().file("file", "a.bin", "application/zip", content));
        EXPECT_EQ(response.status, status) << content.size();
        content.push_back('x');
    }
    EXPECT_EQ(caller.server->requests().back().problem, "file: Larger than 100 MB");
    caller.server->setAttachmentLimit(4);
    EXPECT_EQ(attach(task, MultipartBody().file("file", "a", "text/plain", "12345")).status, 413);
    EXPECT_EQ(attach(task, MultipartBody().file("file", "a", "text/plain", "1234")).status, 200);
}

TEST_F(AsanaSandboxTest, FailsInItsOwnWordsByAFault) {
    const auto failed = [&](int status) {
        caller.server->addFault({.host = host, .status = status});
        return get("users/me");
    };
    const auto busy = failed(429);
    EXPECT_EQ(refusal(busy), "429 You've made too many requests and hit a rate limit. Please retry after the "
                             "given amount of time.");
    EXPECT_EQ(busy.field("Retry-After"), "30");
    EXPECT_EQ(refusal(failed(401)), "401 Not Authorized");
    EXPECT_EQ(refusal(failed(403)), "403 Forbidden");
    EXPECT_EQ(refusal(failed(500)), "500 Server Error");
}

TEST_F(AsanaSandboxTest, ShowsItsTasksInTheStateUntilItIsReset) {
    post({{"workspace", lighthouse}, {"projects", relaunch}, {"name", "In a project"}, {"assignee", "me"}});
    post({{"workspace", lighthouse}, {"name", "In none"}});
    const auto state = caller.server->state();
    const auto& workspace = state.find("asana")->find("workspaces")->asArray()->front();
    const auto& task = workspace.find("projects")->asArray()->front().find("tasks")->asArray()->front();
    EXPECT_EQ(*task.find("name")->asString(), "In a project");
    EXPECT_EQ(*task.find("assignee")->asString(), "Robin Sandbox");
    EXPECT_EQ(*workspace.find("tasks")->asArray()->front().find("name")->asString(), "In none");
    const auto gid = *task.find("id")->asString();
    caller.server->reset();
    token = caller.server->issueTokens("Asana")->accessToken;
    EXPECT_EQ(refusal(get("tasks/" + gid)), "404 task: Unknown object: " + gid);
    EXPECT_EQ(texts(get("workspaces").json(), "gid"), (Texts{lighthouse, library, withoutProjects}));
}

} // namespace zelto
