#include <ZeltoSandbox/MultipartBody.h>
#include <ZeltoSandbox/SandboxCaller.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

const std::string host = "api.todoist.com";
const std::string inbox = "6Xpr000000000000";

JSONValue json(std::string_view text) {
    return *JSONValue::parse(text);
}

// "400 INVALID_ARGUMENT_VALUE 20 content is empty"
std::string summary(const JSONValue& error) {
    const auto* tag = error.find("error_tag");
    if (!tag) {
        return error.text().value_or("");
    }
    auto text = error.find("http_code")->text().value_or("") + " " + *tag->asString() + " " +
                error.find("error_code")->text().value_or("");
    for (const auto* key : {"argument", "explanation"}) {
        if (const auto* value = error.find("error_extra")->find(key)) {
            text += " " + *value->asString();
        }
    }
    return text;
}

JSONObject itemAdd(const std::string& uuid, JSONObject arguments) {
    return {{"type", "item_add"}, {"temp_id", "t" + uuid}, {"uuid", uuid}, {"args", std::move(arguments)}};
}

JSONObject noteAdd(const std::string& uuid, JSONObject arguments) {
    return {{"type", "note_add"}, {"temp_id", "t" + uuid}, {"uuid", uuid}, {"args", std::move(arguments)}};
}

JSONObject write(JSONValue::Array commands) {
    return {{"resource_types", JSONValue::Array{"notes"}}, {"commands", std::move(commands)}};
}

class TodoistSandboxTest : public testing::Test {
  protected:
    std::string authorization() const { return "Authorization: Bearer " + token + "\r\n"; }

    CallerResponse sync(const std::string& body, const std::string& type = "application/json") const {
        return caller.post(host, "/api/v1/sync", type, body, authorization());
    }

    CallerResponse sync(JSONObject body) const { return sync(*JSONValue(std::move(body)).text()); }

    // A refusal of the whole request, which agrees with its status.
    std::string refusal(const CallerResponse& response) const {
        const auto body = response.json();
        EXPECT_EQ(body.find("http_code") ? body.find("http_code")->asInt64() : 0, response.status);
        EXPECT_FALSE(caller.server->requests().back().problem.empty());
        return summary(body);
    }

    // What a single command came to.
    std::string status(JSONObject command) const {
        const auto uuid = *command.find("uuid")->asString();
        const auto response = sync(write({std::move(command)}));
        EXPECT_EQ(response.status, 200) << response.body;
        return summary(*response.json().find("sync_status")->find(uuid));
    }

    std::string itemStatus(JSONObject arguments) {
        return status(itemAdd("item" + std::to_string(++lastUUID), std::move(arguments)));
    }

    std::string noteStatus(JSONObject arguments) {
        return status(noteAdd("note" + std::to_string(++lastUUID), std::move(arguments)));
    }

    std::string addedItem() {
        const auto uuid = "added" + std::to_string(++lastUUID);
        const auto response = sync(write({itemAdd(uuid, {{"content", "A task"}})})).json();
        return *response.find("temp_id_mapping")->find("t" + uuid)->asString();
    }

    CallerResponse upload(const MultipartBody& body) const {
        return caller.post(host, "/api/v1/uploads", body.type(), body.text(), authorization());
    }

    CallerResponse upload(const std::string& name, const std::string& type,
                          const std::string& content) const {
        return upload(MultipartBody().field("file_name", name).file("file", name, type, content));
    }

    std::string scopedToken(const std::string& scope) const {
        const auto authorized =
            caller.get("todoist.com", "/oauth/authorize?response_type=code&client_id=id&state=s&redirect_uri="
                                      "http%3A%2F%2F127.0.0.1%2F&sandbox_consent=allow&scope=" +
                                          scope);
        const auto tokens = caller.postForm("todoist.com", "/oauth/access_token",
                                            {{"grant_type", "authorization_code"},
                                             {"client_id", "id"},
                                             {"client_secret", "secret"},
                                             {"redirect_uri", "http://127.0.0.1/"},
                                             {"code", authorized.redirectItem("code").value_or("")}});
        return tokens.text("access_token");
    }

    SandboxCaller caller;
    std::string token = caller.server->issueTokens("Todoist")->accessToken;
    int lastUUID = 0;
};

} // namespace

TEST_F(TodoistSandboxTest, RefusesARequestWithoutAGoodToken) {
    const auto body = R"({"resource_types":["user"]})";
    const auto good = token;
    for (const auto* wrong : {"", "wrong"}) {
        token = wrong;
        EXPECT_EQ(refusal(sync(body)), "401 UNAUTHORIZED 477") << wrong;
    }
    token = caller.server->issueTokens("Asana")->accessToken;
    EXPECT_EQ(refusal(sync(body)), "401 UNAUTHORIZED 477");
    EXPECT_EQ(refusal(upload("a", "text/plain", "x")), "401 UNAUTHORIZED 477");
    token = good;
    EXPECT_EQ(sync(body).status, 200);
    caller.server->expireTokens("Todoist");
    EXPECT_EQ(refusal(sync(body)), "401 UNAUTHORIZED 477");
    EXPECT_EQ(caller.server->requests().back().problem, "the access token has expired");
}

TEST_F(TodoistSandboxTest, ChecksScopes) {
    const auto read = R"({"resource_types":["user"]})";
    token = scopedToken("data:read");
    EXPECT_EQ(sync(read).status, 200);
    EXPECT_EQ(refusal(sync(write({}))), "403 FORBIDDEN 403");
    EXPECT_EQ(refusal(upload("a", "text/plain", "x")), "403 FORBIDDEN 403");
    token = scopedToken("data:read_write");
    EXPECT_EQ(sync(read).status, 200);
    EXPECT_EQ(sync(write({})).status, 200);
    EXPECT_EQ(upload("a", "text/plain", "x").status, 200);
    token = scopedToken("backups:read");
    EXPECT_EQ(refusal(sync(read)), "403 FORBIDDEN 403");
}

TEST_F(TodoistSandboxTest, GivesProjectsAndUserByAFullSynchronisation) {
    const auto response = sync(R"({"sync_token":"*","resource_types":["projects","user"]})");
    ASSERT_EQ(response.status, 200) << response.body;
    const auto body = response.json();
    EXPECT_EQ(body.find("full_sync")->asBool(), true);
    EXPECT_EQ(*body.find("temp_id_mapping"), json("{}"));
    EXPECT_EQ(body.find("sync_status"), nullptr);
    std::vector<std::string> names;
    for (const auto& project : *body.find("projects")->asArray()) {
        names.push_back(*project.find("name")->asString());
    }
    EXPECT_EQ(names, (std::vector<std::string>{"Inbox", "Arbeit & Büro", "買い物 🛒", "Mails"}));
    EXPECT_EQ(body.find("projects")->asArray()->front(),
              json(R"({"id":"6Xpr000000000000","name":"Inbox","parent_id":null,"child_order":0,
                       "color":"charcoal","inbox_project":true,"is_archived":false,"is_deleted":false,
                       "is_favorite":false,"view_style":"list"})"));
    EXPECT_EQ(*body.find("user"),
              json(R"({"id":"40000001","email":"robin@sandbox.example","full_name":"Robin Sandbox",
                       "inbox_project_id":"6Xpr000000000000","is_premium":false,"lang":"en",
                       "premium_status":"not_premium","premium_until":null,
                       "tz_info":{"timezone":"Europe/Berlin"}})"));
    caller.control("settings", R"({"plan":"paid"})");
    const auto paid = sync(R"({"resource_types":["user"]})").json();
    EXPECT_EQ(paid.find("user")->find("is_premium")->asBool(), true);
    EXPECT_EQ(*paid.find("user")->find("premium_until")->asString(), "2099-12-31T00:00:00.000000Z");
    EXPECT_EQ(paid.find("projects"), nullptr);
}

TEST_F(TodoistSandboxTest, GivesWhatIsNewSinceASyncToken) {
    const auto first = sync(R"({"sync_token":"*","resource_types":["all"]})").json();
    const auto since = *first.find("sync_token")->asString();
    EXPECT_TRUE(first.find("items")->asArray()->empty());
    const auto item = addedItem();
    JSONObject body{{"sync_token", since}, {"resource_types", JSONValue::Array{"all"}}};
    const auto next = sync(body).json();
    EXPECT_EQ(next.find("full_sync")->asBool(), false);
    ASSERT_EQ(next.find("items")->asArray()->size(), 1U);
    EXPECT_EQ(*next.find("items")->asArray()->front().find("id")->asString(), item);
    EXPECT_TRUE(next.find("projects")->asArray()->empty());
    EXPECT_EQ(next.find("user"), nullptr);
    body.set("sync_token", *next.find("sync_token"));
    EXPECT_TRUE(sync(body).json().find("items")->asArray()->empty());
    body.set("sync_token", "unknown");
    EXPECT_EQ(refusal(sync(body)), "400 INVALID_ARGUMENT_VALUE 20 sync_token is unknown");
}

TEST_F(TodoistSandboxTest, TakesAFormWithJSONValuesToo) {
    const auto response = caller.postForm(
        host, "/api/v1/sync", {{"sync_token", "*"}, {"resource_types", R"(["projects"])"}}, authorization());
    ASSERT_EQ(response.status, 200) << response.body;
    EXPECT_EQ(response.json().find("projects")->asArray()->size(), 4U);
    const auto broken =
        caller.postForm(host, "/api/v1/sync", {{"resource_types", "projects"}}, authorization());
    EXPECT_EQ(refusal(broken), "400 INVALID_ARGUMENT_VALUE 20 resource_types is not JSON");
}

TEST_F(TodoistSandboxTest, RefusesABodyThatIsNoSynchronisation) {
    EXPECT_EQ(refusal(sync("{")).substr(0, 33), "400 BAD_REQUEST 400 the body is n");
    EXPECT_EQ(refusal(sync("[]")), "400 BAD_REQUEST 400 the body is not a JSON object");
    EXPECT_EQ(refusal(sync("{}")), "400 ARGUMENT_MISSING 19 resource_types");
    EXPECT_EQ(refusal(sync("{}", "text/plain")),
              "415 UNSUPPORTED_MEDIA_TYPE 415 the Content-Type is not application/json");
    EXPECT_EQ(refusal(sync(R"({"resource_types":"user"})")),
              "400 INVALID_ARGUMENT_VALUE 20 resource_types is not an array");
    for (const auto* types : {R"(["nothing"])", "[1]"}) {
        EXPECT_EQ(
            refusal(sync(R"({"resource_types":)" + std::string(types) + "}")),
            "400 INVALID_ARGUMENT_VALUE 20 resource_types has a name that is unknown, or nothing that the "
            "sandbox has");
    }
    EXPECT_EQ(refusal(caller.get(host, "/api/v1/sync", authorization())), "404 NOT_FOUND 478");
    EXPECT_EQ(refusal(caller.post(host, "/api/v1/tasks", "application/json", "{}", authorization())),
              "404 NOT_FOUND 478");
}

TEST_F(TodoistSandboxTest, TakesABodyOfOneMebibyte) {
    const std::string start = R"({"resource_types":["user"],"padding":")";
    const auto bodyOf = [&](std::size_t size) {
        return start + std::string(size - start.size() - 2, 'x') + "\"}";
    };
    constexpr std::size_t mebibyte = std::size_t{1} << 20;
    EXPECT_EQ(sync(bodyOf(mebibyte - 1)).status, 200);
    EXPECT_EQ(sync(bodyOf(mebibyte)).status, 200);
    EXPECT_EQ(refusal(sync(bodyOf(mebibyte + 1))),
              "413 CONTENT_TOO_LARGE 413 the body is larger than 1048576 bytes");
}

TEST_F(TodoistSandboxTest, CreatesATaskWithCommentsAndFiles) {
    const auto file = upload("Plan für 2027.pdf", "application/pdf", "%PDF-1.7").json();
    const auto response = sync(write({
        itemAdd("1", {{"content", "Überprüfen & abheften"},
                      {"project_id", "6Xpr000000000001"},
                      {"due", JSONObject{{"date", "2026-12-24T09:00:00"}}}}),
        noteAdd("2", {{"temp_id", "t1"}, {"content", "[Mail](https://example.com/)"}}),
        noteAdd("3", {{"temp_id", "t1"}, {"content", ""}, {"file_attachment", file}}),
    }));
    ASSERT_EQ(response.status, 200) << response.body;
    EXPECT_EQ(caller.server->requests().back().problem, "");
    const auto body = response.json();
    EXPECT_EQ(*body.find("sync_status"), json(R"({"1":"ok","2":"ok","3":"ok"})"));
    EXPECT_EQ(*body.find("temp_id_mapping"),
              json(R"({"t1":"6Xsb000000000001","t2":"6Xsb000000000002","t3":"6Xsb000000000003"})"));
    const auto& notes = *body.find("notes")->asArray();
    ASSERT_EQ(notes.size(), 2U);
    EXPECT_EQ(*notes[0].find("content")->asString(), "[Mail](https://example.com/)");
    EXPECT_TRUE(notes[0].find("file_attachment")->isNull());
    EXPECT_EQ(*notes[1].find("item_id")->asString(), "6Xsb000000000001");
    EXPECT_EQ(*notes[1].find("file_attachment"), file);
    const auto items = sync(R"({"resource_types":["items"]})").json();
    const auto& item = items.find("items")->asArray()->front();
    EXPECT_EQ(*item.find("content")->asString(), "Überprüfen & abheften");
    EXPECT_EQ(*item.find("project_id")->asString(), "6Xpr000000000001");
    EXPECT_EQ(*item.find("due")->find("date")->asString(), "2026-12-24T09:00:00");
}

TEST_F(TodoistSandboxTest, ANoteNamesItsTaskByItemIDOrByATemporaryIdentifier) {
    const auto item = addedItem();
    const auto missing = "400 ARGUMENT_MISSING 19 item_id";
    EXPECT_EQ(noteStatus({{"item_id", item}, {"content", "n"}}), "\"ok\"");
    EXPECT_EQ(noteStatus({{"content", "n"}}), missing);
    EXPECT_EQ(noteStatus({{"item_id", "unknown"}, {"content", "n"}}), "404 ITEM_NOT_FOUND 22");
    EXPECT_EQ(noteStatus({{"temp_id", "unknown"}, {"content", "n"}}), "400 INVALID_TEMPID 16");
    EXPECT_EQ(noteStatus({{"item_id", item}, {"temp_id", item}, {"content", "n"}}),
              "400 INVALID_ARGUMENT_VALUE 20 temp_id stands beside item_id");
    EXPECT_EQ(noteStatus({{"item_id", 1}, {"content", "n"}}),
              "400 INVALID_ARGUMENT_VALUE 20 item_id is not a text");
    const auto both =
        sync(write({itemAdd("a", {{"content", "c"}}), noteAdd("b", {{"item_id", "ta"}, {"content", "n"}})}));
    EXPECT_EQ(*both.json().find("sync_status"), json(R"({"a":"ok","b":"ok"})"));
}

TEST_F(TodoistSandboxTest, WhatRefersToAFailedCommandFailsTooAndTheOthersAreCarriedOut) {
    const auto response = sync(write({
        itemAdd("1", {{"content", "c"}, {"project_id", "unknown"}}),
        noteAdd("2", {{"temp_id", "t1"}, {"content", "n"}}),
        itemAdd("3", {{"content", "another"}}),
    }));
    ASSERT_EQ(response.status, 200);
    const auto body = response.json();
    const auto& statuses = *body.find("sync_status");
    EXPECT_EQ(*statuses.find("1"), json(R"({"error":"Project not found","error_code":21,"error_extra":{},
                                            "error_tag":"PROJECT_NOT_FOUND","http_code":404})"));
    EXPECT_EQ(summary(*statuses.find("2")), "400 INVALID_TEMPID 16");
    EXPECT_EQ(*statuses.find("3")->asString(), "ok");
    EXPECT_EQ(body.find("temp_id_mapping")->asObject()->size(), 1U);
    EXPECT_EQ(caller.server->requests().back().problem, "item_add: Project not found");
}

TEST_F(TodoistSandboxTest, ChecksATask) {
    const auto invalid = std::string("400 INVALID_ARGUMENT_VALUE 20 ");
    EXPECT_EQ(itemStatus({}), "400 ARGUMENT_MISSING 19 content");
    EXPECT_EQ(itemStatus({{"content", ""}}), invalid + "content is empty");
    EXPECT_EQ(itemStatus({{"content", " \n"}}), invalid + "content is empty");
    EXPECT_EQ(itemStatus({{"content", 1}}), invalid + "content is not a text");
    EXPECT_EQ(itemStatus({{"content", "c"}, {"project_id", nullptr}}), invalid + "project_id is not a text");
    EXPECT_EQ(itemStatus({{"content", "c"}, {"project_id", "unknown"}}), "404 PROJECT_NOT_FOUND 21");
    EXPECT_EQ(itemStatus({{"content", "c"}, {"projectid", inbox}}),
              invalid + "projectid is unknown, or nothing that the sandbox has");
    EXPECT_EQ(itemStatus({{"content", "c"}, {"project_id", inbox}}), "\"ok\"");
}

TEST_F(TodoistSandboxTest, TakesFiveHundredCharactersForATaskAndFifteenThousandForANote) {
    const auto text = [](std::size_t count) {
        std::string characters;
        for (std::size_t i = 0; i < count; ++i) {
            characters += "ü";
        }
        return characters;
    };
    EXPECT_EQ(itemStatus({{"content", text(499)}}), "\"ok\"");
    EXPECT_EQ(itemStatus({{"content", text(500)}}), "\"ok\"");
    EXPECT_EQ(itemStatus({{"content", text(501)}}),
              "400 INVALID_ARGUMENT_VALUE 20 content is longer than 500 characters");
    const auto item = addedItem();
    EXPECT_EQ(noteStatus({{"item_id", item}, {"content", text(14'999)}}), "\"ok\"");
    EXPECT_EQ(noteStatus({{"item_id", item}, {"content", text(15'000)}}), "\"ok\"");
    EXPECT_EQ(noteStatus({{"item_id", item}, {"content", text(15'001)}}),
              "400 INVALID_ARGUMENT_VALUE 20 content is longer than 15000 characters");
}

TEST_F(TodoistSandboxTest, ChecksADueDate) {
    const auto due = [&](JSONValue value) {
        return itemStatus({{"content", "c"}, {"due", std::move(value)}});
    };
    for (const auto* date : {"2026-12-24", "2026-12-24T09:00:00", "2026-12-24T09:00:00Z"}) {
        EXPECT_EQ(due(JSONObject{{"date", date}}), "\"ok\"") << date;
    }
    EXPECT_EQ(due(nullptr), "\"ok\"");
    for (const auto* date :
         {"", "2026-13-24", "2026-02-30", "2026-12-24T25:00:00", "2026-12-24T09:00", "2026-12-24Z",
          "2026-12-24T09:00:00+01:00", "2026-12-24T09:00:00.5Z", "tomorrow"}) {
        EXPECT_EQ(
            due(JSONObject{{"date", date}}),
            "400 INVALID_ARGUMENT_VALUE 20 due has no date of the form 2026-12-24, 2026-12-24T09:00:00 or "
            "2026-12-24T09:00:00Z")
            << date;
    }
    EXPECT_EQ(due("2026-12-24"), "400 INVALID_ARGUMENT_VALUE 20 due is not an object");
    EXPECT_EQ(due(JSONObject{{"date", "2026-12-24"}, {"lang", "en"}}),
              "400 INVALID_ARGUMENT_VALUE 20 lang is unknown, or nothing that the sandbox has");
}

TEST_F(TodoistSandboxTest, ANoteNeedsAContentOrAFileThatWasUploaded) {
    const auto item = addedItem();
    const auto file = upload("a.txt", "text/plain", "x").json();
    const auto invalid = std::string("400 INVALID_ARGUMENT_VALUE 20 ");
    EXPECT_EQ(noteStatus({{"item_id", item}}), "400 ARGUMENT_MISSING 19 content");
    EXPECT_EQ(noteStatus({{"item_id", item}, {"content", ""}}), invalid + "content is empty");
    EXPECT_EQ(noteStatus({{"item_id", item}, {"content", ""}, {"file_attachment", nullptr}}),
              invalid + "content is empty");
    EXPECT_EQ(noteStatus({{"item_id", item}, {"content", nullptr}}), invalid + "content is not a text");
    EXPECT_EQ(noteStatus({{"item_id", item}, {"content", ""}, {"file_attachment", file}}), "\"ok\"");
    EXPECT_EQ(noteStatus({{"item_id", item}, {"file_attachment", file}}), "\"ok\"");
    const auto wrong = invalid + "file_attachment is not what the uploads endpoint gave";
    auto changed = file;
    changed.set("file_name", "b.txt");
    const JSONObject unknown{{"file_url", "https://example.com/"}};
    for (const JSONValue& each : {changed, JSONValue(unknown), JSONValue("a.txt"), JSONValue(JSONObject())}) {
        EXPECT_EQ(noteStatus({{"item_id", item}, {"content", ""}, {"file_attachment", each}}), wrong);
    }
    EXPECT_EQ(noteStatus({{"item_id", item}, {"contents", "n"}}),
              invalid + "contents is unknown, or nothing that the sandbox has");
}

TEST_F(TodoistSandboxTest, ChecksTheFormOfCommands) {
    const auto refused = [&](const std::string& commands) {
        return refusal(sync(R"({"commands":)" + commands + "}"));
    };
    const auto invalid = std::string("400 INVALID_ARGUMENT_VALUE 20 ");
    EXPECT_EQ(refused("{}"), invalid + "commands is not an array");
    EXPECT_EQ(refused("[1]"), "400 ARGUMENT_MISSING 19 type");
    EXPECT_EQ(refused(R"([{"type":"item_add","args":{}}])"), "400 ARGUMENT_MISSING 19 uuid");
    EXPECT_EQ(refused(R"([{"type":"item_add","uuid":"1"}])"), "400 ARGUMENT_MISSING 19 args");
    EXPECT_EQ(refused(R"([{"type":"item_add","uuid":"","args":{}}])"), invalid + "uuid is empty or too long");
    EXPECT_EQ(refused(R"([{"type":"item_add","uuid":"1","args":[]}])"), invalid + "args is not an object");
    EXPECT_EQ(refused(R"([{"type":"item_add","uuid":"1","args":{},"temp_id":1}])"),
              invalid + "temp_id is not a text");
    EXPECT_EQ(status({{"type", "item_delete"}, {"uuid", "1"}, {"args", JSONObject()}}),
              invalid + "type is unknown, or nothing that the sandbox has");
    const auto twice = write({itemAdd("1", {{"content", "c"}}), itemAdd("1", {{"content", "d"}})});
    EXPECT_EQ(refusal(sync(twice)), invalid + "uuid stands in two commands");
    auto sameTemporary = itemAdd("6", {{"content", "c"}});
    sameTemporary.set("temp_id", "t5");
    const auto response = sync(write({itemAdd("5", {{"content", "c"}}), sameTemporary})).json();
    EXPECT_EQ(summary(*response.find("sync_status")->find("6")), "400 INVALID_TEMPID 16");
}

TEST_F(TodoistSandboxTest, TakesAHundredCommandsARequest) {
    const auto commands = [](int count, const std::string& prefix) {
        JSONValue::Array all;
        for (int i = 0; i < count; ++i) {
            all.push_back(itemAdd(prefix + std::to_string(i), {{"content", "c"}}));
        }
        return write(std::move(all));
    };
    EXPECT_EQ(sync(commands(99, "a")).json().find("sync_status")->asObject()->size(), 99U);
    EXPECT_EQ(sync(commands(100, "b")).json().find("sync_status")->asObject()->size(), 100U);
    EXPECT_EQ(refusal(sync(commands(101, "c"))),
              "400 INVALID_ARGUMENT_VALUE 20 commands has more than 100 commands");
    EXPECT_EQ(sync(R"({"resource_types":["items"]})").json().find("items")->asArray()->size(), 199U);
}

TEST_F(TodoistSandboxTest, ARepeatedCommandIsCarriedOutOnce) {
    const auto request = write({itemAdd("1", {{"content", "c"}})});
    const auto first = sync(request).json();
    const auto second = sync(request).json();
    EXPECT_EQ(*second.find("sync_status"), *first.find("sync_status"));
    EXPECT_EQ(*second.find("temp_id_mapping"), *first.find("temp_id_mapping"));
    EXPECT_EQ(sync(R"({"resource_types":["items"]})").json().find("items")->asArray()->size(), 1U);
}

TEST_F(TodoistSandboxTest, KeepsAnUploadedFileByteForByte) {
    std::string content = "%PDF-1.7\r\n--";
    for (int i = 0; i < 300'000; ++i) {
        content.push_back(static_cast<char>(i * 7));
    }
    const auto response = upload("Plan für 2027.pdf", "application/pdf", content);
    ASSERT_EQ(response.status, 200) << response.body;
    auto body = response.json();
    const auto url = *body.find("file_url")->asString();
    EXPECT_TRUE(url.starts_with("https://files.todoist.com/")) << url;
    EXPECT_TRUE(url.ends_with("/Plan%20f%C3%BCr%202027.pdf")) << url;
    body.asObject()->erase("file_url");
    EXPECT_EQ(body, json(R"({"file_name":"Plan für 2027.pdf","file_size":300012,"file_type":"application/pdf",
                             "resource_type":"file","upload_state":"completed"})"));
    EXPECT_EQ(caller.get(caller.ownHost(), "/files/1").body, content);
    EXPECT_EQ(upload("a.png", "application/octet-stream", "x").text("resource_type"), "image");
}

TEST_F(TodoistSandboxTest, ChecksAnUpload) {
    const auto refused = [&](const MultipartBody& body) { return refusal(upload(body)); };
    EXPECT_EQ(refused(MultipartBody().field("file_name", "a")), "400 ARGUMENT_MISSING 19 file");
    EXPECT_EQ(refused(MultipartBody().file("file", "a", "text/plain", "x")),
              "400 ARGUMENT_MISSING 19 file_name");
    EXPECT_EQ(refused(MultipartBody().field("file_name", "").file("file", "a", "text/plain", "x")),
              "400 ARGUMENT_MISSING 19 file_name");
    EXPECT_EQ(refused(MultipartBody().field("file_name", "a").file("file", "", "text/plain", "x")),
              "400 INVALID_ARGUMENT_VALUE 20 file has no file name");
    EXPECT_EQ(refused(MultipartBody()
                          .field("file_name", "a")
                          .file("file", "a", "text/plain", "x")
                          .file("file", "b", "text/plain", "y")),
              "400 INVALID_ARGUMENT_VALUE 20 file stands more than once");
    const auto broken =
        caller.post(host, "/api/v1/uploads", MultipartBody().type(), "--XX\r\n", authorization());
    EXPECT_TRUE(refusal(broken).starts_with("400 INVALID_ARGUMENT_VALUE 20 file ")) << broken.body;
}

TEST_F(TodoistSandboxTest, TakesFilesOfFiveMebibytesOnAFreePlanAndAHundredOnAPaidOne) {
    const auto statuses = [&](std::size_t mebibytes) {
        std::string content((mebibytes << 20) - 1, 'x');
        std::vector<int> all;
        for (int i = 0; i < 3; ++i) {
            all.push_back(upload("a.bin", "application/zip", content).status);
            content.push_back('x');
        }
        return all;
    };
    const std::vector<int> expected = {200, 200, 413};
    EXPECT_EQ(statuses(5), expected);
    EXPECT_EQ(caller.server->requests().back().problem, "Content Too Large");
    caller.control("settings", R"({"plan":"paid"})");
    EXPECT_EQ(statuses(100), expected);
}

TEST_F(TodoistSandboxTest, FailsInItsOwnWordsByAFault) {
    const auto failed = [&](int status) {
        caller.server->addFault({.host = host, .status = status});
        return sync(R"({"resource_types":["user"]})");
    };
    const auto busy = failed(429);
    EXPECT_EQ(summary(busy.json()), "429 LIMITS_REACHED 35");
    EXPECT_EQ(busy.field("Retry-After"), "9");
    EXPECT_EQ(summary(failed(401).json()), "401 UNAUTHORIZED 477");
    EXPECT_EQ(summary(failed(403).json()), "403 FORBIDDEN 403");
    EXPECT_EQ(summary(failed(500).json()), "500 INTERNAL_SERVER_ERROR 500");
}

TEST_F(TodoistSandboxTest, ShowsItsTasksInTheStateUntilItIsReset) {
    const auto file = upload("a.txt", "text/plain", "x").json();
    sync(write({itemAdd("1", {{"content", "c"}, {"due", JSONObject{{"date", "2026-12-24"}}}}),
                noteAdd("2", {{"temp_id", "t1"}, {"content", "n"}, {"file_attachment", file}})}));
    const auto state = caller.server->state();
    const auto& task =
        state.find("todoist")->find("projects")->asArray()->front().find("tasks")->asArray()->front();
    EXPECT_EQ(*task.find("content")->asString(), "c");
    EXPECT_EQ(*task.find("due")->asString(), "2026-12-24");
    EXPECT_EQ(*task.find("comments"), json(R"([{"text":"n","files":[
                       {"name":"a.txt","mediaType":"text/plain","size":1,"url":"/files/1"}]}])"));
    caller.server->reset();
    token = caller.server->issueTokens("Todoist")->accessToken;
    const auto body = sync(R"({"resource_types":["all"]})").json();
    EXPECT_TRUE(body.find("items")->asArray()->empty());
    EXPECT_TRUE(body.find("notes")->asArray()->empty());
    EXPECT_EQ(body.find("projects")->asArray()->size(), 4U);
}

} // namespace zelto
