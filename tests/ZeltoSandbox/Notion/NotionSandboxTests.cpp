#include <ZeltoSandbox/Notion/NotionCaller.h>

#include <ZeltoSandbox/Notion/NotionStore.h>

#include <Platform/Date.h>
#include <Platform/ISO8601.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;

std::string titleOf(const JSONValue& object) {
    std::string text;
    for (const auto& item : *object.find("title")->asArray()) {
        text += *item.find("plain_text")->asString();
    }
    return text;
}

class NotionSandboxTest : public NotionCaller {
  protected:
    // The kinds and identifiers' last digits of what a search finds: "database 1".
    Texts found(const std::string& body) const {
        Texts all;
        const auto list = post("search", body).json();
        for (const auto& object : *list.find("results")->asArray()) {
            all.push_back(*object.find("object")->asString() + " " +
                          object.find("id")->asString()->substr(35));
        }
        return all;
    }
};

} // namespace

TEST_F(NotionSandboxTest, RefusesARequestWithoutAGoodToken) {
    const std::string refusal = "401 unauthorized: API token is invalid.";
    const auto good = token;
    for (const auto* wrong : {"", "wrong"}) {
        token = wrong;
        EXPECT_EQ(outcome(me()), refusal) << wrong;
    }
    token = caller.server->issueTokens("Asana")->accessToken;
    EXPECT_EQ(outcome(me()), refusal);
    EXPECT_EQ(search("{}"), refusal);
    EXPECT_EQ(create(notionPage({})), refusal);
    token = good;
    EXPECT_EQ(outcome(me()), "200");
    caller.server->expireTokens("Notion");
    EXPECT_EQ(outcome(me()), refusal);
    EXPECT_EQ(caller.server->requests().back().problem, "the access token has expired");
}

TEST_F(NotionSandboxTest, RefusesARequestWithoutItsVersion) {
    version = "";
    const std::string missing =
        "400 missing_version: Notion-Version header failed validation: Notion-Version "
        "header should be defined, instead was `undefined`.";
    EXPECT_EQ(outcome(me()), missing);
    EXPECT_EQ(search("{}"), missing);
    EXPECT_EQ(create(notionPage({})), missing);
    version = "2025-09-03";
    EXPECT_EQ(
        outcome(me()),
        "400 validation_error: Notion-Version header failed validation: Notion-Version header should be "
        "`\"2022-06-28\"`, instead was `\"2025-09-03\"`.");
}

TEST_F(NotionSandboxTest, RefusesAnAddressThatItDoesNotHave) {
    const std::string refusal = "400 invalid_request_url: Invalid request URL.";
    for (const auto* path : {"/v1/users", "/v1/search", "/v1/pages", "/v2/users/me", "/"}) {
        EXPECT_EQ(outcome(caller.get(host, path, header())), refusal) << path;
    }
    EXPECT_EQ(outcome(post("users/me", "{}")), refusal);
}

TEST_F(NotionSandboxTest, RefusesABodyThatIsNoJSONObject) {
    for (const auto* path : {"search", "pages"}) {
        for (const auto* body : {"", "{", "[]", "{} {}"}) {
            EXPECT_EQ(outcome(post(path, std::string(body))), "400 invalid_json: Error parsing JSON body.")
                << body;
        }
        EXPECT_EQ(outcome(post(path, "{}", "text/plain")),
                  "400 invalid_request: Unsupported request: the Content-Type is not application/json.");
    }
}

TEST_F(NotionSandboxTest, GivesFaultsInItsOwnForm) {
    const std::pair<int, std::string> faults[] = {
        {401, "unauthorized: API token is invalid."},
        {403, "restricted_resource: Insufficient permissions for this endpoint."},
        {409, "conflict_error: Conflict occurred while saving. Please try again."},
        {429, "rate_limited: You have been rate limited. Please try again in a few minutes."},
        {500, "internal_server_error: Unexpected error occurred."},
        {502, "bad_gateway: Bad gateway."},
        {503, "service_unavailable: Notion is unavailable, please try again later."},
        {504, "gateway_timeout: Gateway timeout."},
        {418, "validation_error: "},
    };
    for (const auto& [status, text] : faults) {
        caller.server->addFault({.host = host, .status = status});
        const auto response = me();
        EXPECT_EQ(response.status, status);
        EXPECT_EQ(response.text("code") + ": " + response.text("message"), text);
        EXPECT_EQ(response.field("Retry-After"), status == 429 ? "2" : "") << status;
    }
}

TEST_F(NotionSandboxTest, GivesTheBotWithThePersonItBelongsTo) {
    EXPECT_EQ(me().json(),
              notionJSON(R"({"object":"user","id":"b3414d65-1224-5ffe-a9f1-1b4d6ed2f1a4","name":"Zelto",
                  "avatar_url":null,"type":"bot","bot":{"owner":{"type":"user","user":{"object":"user",
                  "id":"8a9a3a4b-50bf-4f68-9ab2-4ff1f35ac6b1","name":"Robin Sandbox","avatar_url":null,
                  "type":"person","person":{"email":"robin@sandbox.example"}}},"workspace_name":"Sandbox"}})"));
}

TEST_F(NotionSandboxTest, FindsSharedDatabasesAndPages) {
    const auto list = post("search", R"({"filter":{"property":"object","value":"database"},
                                         "sort":{"direction":"descending","timestamp":"last_edited_time"}})")
                          .json();
    Texts titles;
    for (const auto& database : *list.find("results")->asArray()) {
        titles.push_back(titleOf(database));
    }
    EXPECT_EQ(titles, (Texts{"Journal – Größe & Maß 📓", "Aufgaben im Büro ✅", "読書リスト", ""}));
    EXPECT_EQ(list.find("results")->asArray()->front().find("title")->asArray()->size(), 3U);
    EXPECT_EQ(list.find("has_more")->asBool(), false);
    EXPECT_TRUE(list.find("next_cursor")->isNull());
    EXPECT_EQ(*list.find("object")->asString(), "list");
    EXPECT_EQ(found("{}"), (Texts{"database 1", "page 1", "database 2", "database 3", "database 4"}));
    EXPECT_EQ(found(R"({"filter":{"property":"object","value":"page"}})"), Texts{"page 1"});
}

TEST_F(NotionSandboxTest, GivesADatabaseWhole) {
    const auto list = post("search", R"({"query":"büro"})").json();
    ASSERT_EQ(list.find("results")->asArray()->size(), 1U);
    EXPECT_EQ(list.find("results")->asArray()->front(), notionJSON(R"({
        "object":"database","id":"5a0db0c0-7a3e-4c1d-9f5a-000000000002","cover":null,"icon":null,
        "created_time":"2026-03-02T08:59:00.000Z",
        "created_by":{"object":"user","id":"8a9a3a4b-50bf-4f68-9ab2-4ff1f35ac6b1"},
        "last_edited_by":{"object":"user","id":"8a9a3a4b-50bf-4f68-9ab2-4ff1f35ac6b1"},
        "last_edited_time":"2026-03-02T08:59:00.000Z","parent":{"type":"workspace","workspace":true},
        "archived":false,"in_trash":false,"url":"https://www.notion.so/5a0db0c07a3e4c1d9f5a000000000002",
        "public_url":null,
        "title":[{"type":"text","text":{"content":"Aufgaben im Büro ✅","link":null},
            "annotations":{"bold":false,"italic":false,"strikethrough":false,"underline":false,"code":false,
            "color":"default"},"plain_text":"Aufgaben im Büro ✅","href":null}],
        "description":[],"is_inline":false,
        "properties":{"Aufgabe":{"id":"title","name":"Aufgabe","type":"title","title":{}},
            "Bemerkung":{"id":"n%40Xt","name":"Bemerkung","type":"rich_text","rich_text":{}}}})"));
}

TEST_F(NotionSandboxTest, SortsWhatItFinds) {
    const auto sorted = [&](const std::string& direction) {
        return found(R"({"filter":{"property":"object","value":"database"},"sort":{"direction":")" +
                     direction + R"(","timestamp":"last_edited_time"}})");
    };
    EXPECT_EQ(sorted("descending"), (Texts{"database 1", "database 2", "database 3", "database 4"}));
    EXPECT_EQ(sorted("ascending"), (Texts{"database 4", "database 3", "database 2", "database 1"}));
}

TEST_F(NotionSandboxTest, FindsByTheTitleWithoutRegardToCase) {
    EXPECT_EQ(found(R"({"query":"AUFGABEN"})"), Texts{"database 2"});
    EXPECT_EQ(found(R"({"query":"start"})"), Texts{"page 1"});
    EXPECT_EQ(found(R"({"query":"nothing like it"})"), Texts{});
}

TEST_F(NotionSandboxTest, GivesAHundredResultsAPage) {
    const std::string only = R"("filter":{"property":"object","value":"database"})";
    caller.control("settings", R"({"additionalTargets":97})");
    const auto first = post("search", "{" + only + "}").json();
    EXPECT_EQ(first.find("results")->asArray()->size(), 100U);
    EXPECT_EQ(first.find("has_more")->asBool(), true);
    const auto cursor = *first.find("next_cursor")->asString();
    const auto next = post("search", "{" + only + R"(,"start_cursor":")" + cursor + "\"}").json();
    ASSERT_EQ(next.find("results")->asArray()->size(), 1U);
    EXPECT_EQ(titleOf(next.find("results")->asArray()->front()), "Database 97");
    EXPECT_EQ(next.find("has_more")->asBool(), false);
    caller.control("settings", R"({"additionalTargets":96})");
    EXPECT_EQ(post("search", "{" + only + "}").json().find("has_more")->asBool(), false);
    EXPECT_EQ(search(R"({"start_cursor":")" + cursor + "\"}"),
              "400 validation_error: The start_cursor provided is invalid: " + cursor);
}

TEST_F(NotionSandboxTest, GivesAsManyResultsAsAPageIsToHave) {
    EXPECT_EQ(found(R"({"page_size":1})"), Texts{"database 1"});
    EXPECT_EQ(found(R"({"page_size":100})").size(), 5U);
    EXPECT_EQ(
        search(R"({"page_size":101})"),
        "400 validation_error: body failed validation: body.page_size should be ≤ `100`, instead was `101`.");
    EXPECT_EQ(
        search(R"({"page_size":0})"),
        "400 validation_error: body failed validation: body.page_size should be ≥ `1`, instead was `0`.");
    EXPECT_EQ(
        search(R"({"page_size":"1"})"),
        "400 validation_error: body failed validation: body.page_size should be a number or `undefined`, "
        "instead was `\"1\"`.");
}

TEST_F(NotionSandboxTest, RefusesASearchForWhatThereIsNot) {
    const std::pair<std::string, std::string> refusals[] = {
        {R"({"filter":{"property":"object","value":"data_source"}})",
         R"(body.filter.value should be `"page"` or `"database"`, instead was `"data_source"`.)"},
        {R"({"filter":{"value":"page"}})",
         R"(body.filter.property should be `"object"`, instead was `undefined`.)"},
        {R"({"filter":{"property":"type","value":"page"}})",
         R"(body.filter.property should be `"object"`, instead was `"type"`.)"},
        {R"({"filter":[]})", "body.filter should be an object, instead was `[]`."},
        {R"({"sort":{"direction":"down","timestamp":"last_edited_time"}})",
         R"(body.sort.direction should be `"ascending"` or `"descending"`, instead was `"down"`.)"},
        {R"({"sort":{"direction":"ascending","timestamp":"created_time"}})",
         R"(body.sort.timestamp should be `"last_edited_time"`, instead was `"created_time"`.)"},
        {R"({"sort":{"direction":"ascending"}})",
         R"(body.sort.timestamp should be `"last_edited_time"`, instead was `undefined`.)"},
        {R"({"sort":{"direction":"ascending","timestamp":"last_edited_time","by":1}})",
         "body.sort.by should be not present, instead was `1`."},
        {R"({"sorts":[]})", "body.sorts should be not present, instead was `[]`."},
        {R"({"query":7})", "body.query should be a string, instead was `7`."},
        {R"({"start_cursor":"next"})", R"(body.start_cursor should be a valid uuid, instead was `"next"`.)"},
        {R"({"start_cursor":null})", "body.start_cursor should be a string, instead was `null`."},
    };
    for (const auto& [body, message] : refusals) {
        EXPECT_EQ(search(body), "400 validation_error: body failed validation: " + message);
    }
}

TEST_F(NotionSandboxTest, MakesAPageInADatabase) {
    const ClockOverride clock(*parseISO8601("2026-12-24T09:00:42Z"));
    const auto response = post("pages", notionJSON(R"({
        "parent":{"type":"database_id","database_id":"5a0db0c0-7a3e-4c1d-9f5a-000000000002"},
        "properties":{"title":{"title":[{"type":"text","text":{"content":"Über & über"}}]}}})")
                                            .text()
                                            .value());
    ASSERT_EQ(response.status, 200) << response.body;
    const auto id = response.text("id");
    auto digits = id;
    std::erase(digits, '-');
    EXPECT_EQ(response.json(), notionJSON(R"({
        "object":"page","id":")" + id + R"(","cover":null,"icon":null,
        "created_time":"2026-12-24T09:00:00.000Z",
        "created_by":{"object":"user","id":"b3414d65-1224-5ffe-a9f1-1b4d6ed2f1a4"},
        "last_edited_by":{"object":"user","id":"b3414d65-1224-5ffe-a9f1-1b4d6ed2f1a4"},
        "last_edited_time":"2026-12-24T09:00:00.000Z",
        "parent":{"type":"database_id","database_id":"5a0db0c0-7a3e-4c1d-9f5a-000000000002"},
        "archived":false,"in_trash":false,"url":"https://www.notion.so/)" +
                                          digits + R"(","public_url":null,
        "properties":{"Aufgabe":{"id":"title","type":"title","title":[
            {"type":"text","text":{"content":"Über & über","link":null},
             "annotations":{"bold":false,"italic":false,"strikethrough":false,"underline":false,"code":false,
             "color":"default"},"plain_text":"Über & über","href":null}]},
            "Bemerkung":{"id":"n%40Xt","type":"rich_text","rich_text":[]}}})"));
    EXPECT_EQ(found(R"({"filter":{"property":"object","value":"page"}})").size(), 2U);
    EXPECT_EQ(found(R"({"query":"über & ÜBER"})").size(), 1U);
}

TEST_F(NotionSandboxTest, ShowsPagesBelowTheirDatabase) {
    EXPECT_EQ(create(notionPage({notionParagraph(notionItem("Text")),
                                 JSONObject{{"type", "divider"}, {"divider", JSONObject()}}})),
              "200");
    const auto state = *caller.server->state().find("notion");
    EXPECT_EQ(*state.find("user"), notionJSON(R"({"name":"Robin Sandbox","email":"robin@sandbox.example"})"));
    const auto& databases = *state.find("databases")->asArray();
    ASSERT_EQ(databases.size(), 5U);
    EXPECT_EQ(*databases[1].find("columns"), notionJSON(R"(["Aufgabe","Bemerkung"])"));
    EXPECT_EQ(databases.back().find("isShared")->asBool(), false);
    const auto& page = databases.front().find("pages")->asArray()->front();
    EXPECT_TRUE(page.find("title")->asArray()->empty());
    EXPECT_EQ(*page.find("blocks"), notionJSON(R"([
        {"type":"paragraph","paragraph":{"rich_text":[{"type":"text","text":{"content":"Text","link":null},
            "annotations":{"bold":false,"italic":false,"strikethrough":false,"underline":false,"code":false,
            "color":"default"},"plain_text":"Text","href":null}],"color":"default"}},
        {"type":"divider","divider":{}}])"));
    EXPECT_TRUE(databases[1].find("pages")->asArray()->empty());
    caller.control("reset", "{}");
    EXPECT_TRUE(caller.server->state()
                    .find("notion")
                    ->find("databases")
                    ->asArray()
                    ->front()
                    .find("pages")
                    ->asArray()
                    ->empty());
}

TEST_F(NotionSandboxTest, TakesPagesForAdditionalDatabases) {
    caller.control("settings", R"({"additionalTargets":2})");
    auto page = notionPage({});
    page.set("parent", JSONObject{{"database_id", "5a0db0c0-7a3e-4c1d-9f5a-000000000007"}});
    EXPECT_EQ(create(page), "200");
    EXPECT_EQ(found(R"({"filter":{"property":"object","value":"page"}})").size(), 2U);
    caller.control("settings", R"({"additionalTargets":1})");
    EXPECT_EQ(create(page).substr(0, 20), "404 object_not_found");
    EXPECT_EQ(found(R"({"filter":{"property":"object","value":"page"}})"), Texts{"page 1"});
}

TEST(NotionStore, KeepsPagesUpToItsLimits) {
    sandbox::NotionStore store;
    EXPECT_TRUE(store.hasSpace(sandbox::NotionStore::maximumContent));
    EXPECT_FALSE(store.hasSpace(sandbox::NotionStore::maximumContent + 1));
    store.addPage({}, 1);
    EXPECT_FALSE(store.hasSpace(sandbox::NotionStore::maximumContent));
    while (store.pages().size() < sandbox::NotionStore::maximumPageCount) {
        ASSERT_TRUE(store.hasSpace(1));
        store.addPage({}, 1);
    }
    EXPECT_FALSE(store.hasSpace(1));
}

} // namespace zelto
