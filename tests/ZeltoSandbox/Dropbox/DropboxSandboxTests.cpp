#include <ZeltoSandbox/SandboxCaller.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace zelto {

namespace {

const std::string apiHost = "api.dropboxapi.com";
const std::string contentHost = "content.dropboxapi.com";
const std::string readMe = "id:ZeltoFiles000000000001";

using Names = std::vector<std::string>;

// "400 Error in call to …", or "409 path/not_found/.. {…}".
std::string refusal(const CallerResponse& response) {
    if (response.field("Content-Type").starts_with("text/plain")) {
        return std::to_string(response.status) + " " + response.body;
    }
    const auto json = response.json();
    const auto* error = json.find("error");
    return std::to_string(response.status) + " " + response.text("error_summary") + " " +
           (error ? error->text().value_or("") : "no error");
}

std::string bad(const std::string& function, const std::string& problem) {
    return "400 Error in call to API function \"" + function + "\": " + problem;
}

class DropboxSandboxTest : public testing::Test {
  protected:
    std::string authorization() const { return "Authorization: Bearer " + token + "\r\n"; }

    CallerResponse rpc(const std::string& function, const std::string& json) const {
        return caller.post(apiHost, "/2/" + function, "application/json", json, authorization());
    }

    CallerResponse list(const std::string& arguments) const { return rpc("files/list_folder", arguments); }

    CallerResponse upload(const std::string& arguments, const std::string& content,
                          const std::string& type = "application/octet-stream") const {
        return caller.post(contentHost, "/2/files/upload", type, content,
                           authorization() + "Dropbox-API-Arg: " + arguments + "\r\n");
    }

    CallerResponse download(const std::string& arguments, const std::string& header = {},
                            const std::string& body = {}) const {
        return caller.send("POST /2/files/download HTTP/1.1\r\nHost: " + contentHost + "\r\n" +
                           authorization() + "Dropbox-API-Arg: " + arguments + "\r\nContent-Length: " +
                           std::to_string(body.size()) + "\r\n" + header + "\r\n" + body);
    }

    // The paths of a list, with "/" behind those of folders.
    static Names paths(const JSONValue& page) {
        Names all;
        for (const auto& entry : *page.find("entries")->asArray()) {
            const auto tag = *entry.find(".tag")->asString();
            all.push_back(*entry.find("path_display")->asString() + (tag == "folder"    ? "/"
                                                                     : tag == "deleted" ? " (deleted)"
                                                                                        : ""));
        }
        return all;
    }

    Names search(const std::string& arguments) const {
        const auto response = rpc("files/search_v2", arguments).json();
        Names all;
        for (const auto& match : *response.find("matches")->asArray()) {
            EXPECT_EQ(*match.find("metadata")->find(".tag")->asString(), "metadata");
            all.push_back(*match.find("metadata")->find("metadata")->find("path_display")->asString());
        }
        return all;
    }

    SandboxCaller caller;
    std::string token = caller.server->issueTokens("Dropbox")->accessToken;
};

} // namespace

TEST_F(DropboxSandboxTest, RefusesARequestWithoutAGoodToken) {
    const auto request = [&] { return refusal(rpc("users/get_current_account", "null")); };
    const auto good = std::exchange(token, "wrong");
    EXPECT_EQ(request(), R"(401 invalid_access_token/.. {".tag":"invalid_access_token"})");
    EXPECT_EQ(caller.server->requests().back().problem, "the access token is unknown");
    EXPECT_EQ(caller.post(apiHost, "/2/users/get_current_account", "application/json", "null").status, 401);
    token = good;
    EXPECT_EQ(rpc("users/get_current_account", "null").status, 200);
    caller.server->expireTokens("Dropbox");
    EXPECT_EQ(request(), R"(401 expired_access_token/.. {".tag":"expired_access_token"})");
}

TEST_F(DropboxSandboxTest, ChecksTheScopeOfEachEndpoint) {
    const auto authorized = caller.get(
        "www.dropbox.com", "/oauth2/authorize?response_type=code&client_id=id&state=s&redirect_uri="
                           "http%3A%2F%2F127.0.0.1%2F&sandbox_consent=allow&token_access_type="
                           "offline&scope=account_info.read");
    token = caller
                .postForm(apiHost, "/oauth2/token",
                          {{"grant_type", "authorization_code"},
                           {"client_id", "id"},
                           {"client_secret", "secret"},
                           {"redirect_uri", "http://127.0.0.1/"},
                           {"code", authorized.redirectItem("code").value_or("")}})
                .text("access_token");
    EXPECT_EQ(rpc("users/get_current_account", "null").status, 200);
    EXPECT_EQ(refusal(list(R"({"path":""})")),
              R"(401 missing_scope/.. {".tag":"missing_scope","required_scope":"files.metadata.read"})");
}

TEST_F(DropboxSandboxTest, GivesTheAccountForTheBodyNullAlone) {
    const auto account = rpc("users/get_current_account", "null");
    EXPECT_EQ(account.text("email"), "robin@sandbox.example");
    EXPECT_EQ(*account.json().find("name")->find("display_name")->asString(), "Robin Sandbox");
    EXPECT_EQ(refusal(rpc("users/get_current_account", "{}")),
              bad("users/get_current_account", "request body: expected null, got value"));
    EXPECT_EQ(refusal(rpc("users/get_current_account", "")),
              bad("users/get_current_account", "request body: could not decode input as JSON"));
    EXPECT_EQ(
        refusal(caller.post(apiHost, "/2/users/get_current_account", "text/plain", "null", authorization())),
        bad("users/get_current_account",
            "Bad HTTP \"Content-Type\" header: \"text/plain\".  Expecting one of "
            "\"application/json\", \"application/json; charset=utf-8\"."));
}

TEST_F(DropboxSandboxTest, KnowsWhichHostAndMethodAFunctionHas) {
    EXPECT_EQ(refusal(rpc("files/nothing", "null")), bad("files/nothing", "Unknown API function"));
    EXPECT_EQ(refusal(caller.get(apiHost, "/2/files/list_folder", authorization())),
              bad("files/list_folder", "Your request's HTTP request method is \"GET\".  This function only "
                                       "accepts the HTTP request method \"POST\"."));
    EXPECT_EQ(refusal(caller.post(contentHost, "/2/files/list_folder", "application/json", R"({"path":""})",
                                  authorization())),
              bad("files/list_folder", "This function is at https://api.dropboxapi.com, not at "
                                       "https://content.dropboxapi.com."));
    EXPECT_EQ(refusal(rpc("files/upload", "")),
              bad("files/upload",
                  "This function is at https://content.dropboxapi.com, not at https://api.dropboxapi.com."));
}

TEST_F(DropboxSandboxTest, ListsAFolderByPathInAnyCaseAndByIdentifier) {
    const Names root = {"/Büro & Zuhause 🏡/", "/Empty/", "/Projects/", "/Read me.txt"};
    auto listed = paths(list(R"({"path":""})").json());
    std::ranges::sort(listed);
    EXPECT_EQ(listed, root);
    const Names lighthouse = {"/Projects/Lighthouse/Leuchtturm bei Nacht 🌙.png",
                              "/Projects/Lighthouse/Plan.pdf"};
    EXPECT_EQ(paths(list(R"({"path":"/projects/LIGHTHOUSE"})").json()), lighthouse);
    EXPECT_EQ(paths(list(R"({"path":"/BÜRO & zuhause 🏡"})").json()).size(), 2U);
    const auto projects = list(R"({"path":"/Projects"})").json();
    const auto id = *projects.find("entries")->asArray()->front().find("id")->asString();
    EXPECT_EQ(paths(list(R"({"path":")" + id + "\"}").json()), lighthouse);
    EXPECT_EQ(paths(list(R"({"path":"/Empty"})").json()), Names());
    EXPECT_EQ(paths(list(R"({"path":"/Projects","include_deleted":true})").json()),
              (Names{"/Projects/Lighthouse/", "/Projects/Old plan.txt (deleted)", "/Projects/図書館/"}));
}

TEST_F(DropboxSandboxTest, GivesTheMetadataOfAFile) {
    const auto page = list(R"({"path":""})").json();
    const auto& entries = *page.find("entries")->asArray();
    const auto found = std::ranges::find_if(
        entries, [](const JSONValue& each) { return *each.find("name")->asString() == "Read me.txt"; });
    ASSERT_NE(found, entries.end());
    EXPECT_EQ(
        found->text().value_or(""),
        R"({".tag":"file","name":"Read me.txt","path_lower":"/read me.txt","path_display":"/Read me.txt",)"
        R"("id":"id:ZeltoFiles000000000001","client_modified":"2026-01-05T09:00:00Z",)"
        R"("server_modified":"2026-01-05T09:00:00Z","rev":"5a4d000000000002","size":24,)"
        R"("is_downloadable":true,)"
        R"("content_hash":"b4780e271a2c4083a15937b610a11069ad7cf8db7bbe39e70c30051d0b9ed904"})");
}

TEST_F(DropboxSandboxTest, ListsAllBelowAFolderWithTheFolderItself) {
    EXPECT_EQ(
        paths(list(R"({"path":"/Projects","recursive":true})").json()),
        (Names{"/Projects/", "/Projects/Lighthouse/", "/Projects/Lighthouse/Leuchtturm bei Nacht 🌙.png",
               "/Projects/Lighthouse/Plan.pdf", "/Projects/図書館/", "/Projects/図書館/読書ノート.txt"}));
    EXPECT_EQ(paths(list(R"({"path":"","recursive":true})").json()).size(), 11U);
}

TEST_F(DropboxSandboxTest, ListsTenThousandEntriesInFivePages) {
    caller.control("settings", R"({"drives":{"additionalFiles":10000}})");
    auto page = list(R"({"path":"/Additional files","limit":2000})").json();
    Names all = paths(page);
    int count = 1;
    for (; *page.find("has_more")->asBool(); ++count) {
        page = rpc("files/list_folder/continue",
                   JSONValue(JSONObject{{"cursor", *page.find("cursor")}}).text().value_or(""))
                   .json();
        std::ranges::copy(paths(page), std::back_inserter(all));
    }
    EXPECT_EQ(count, 5);
    EXPECT_EQ(all.size(), 10000U);
    std::ranges::sort(all);
    EXPECT_EQ(std::ranges::unique(all).size(), 0U);
    EXPECT_EQ(download(R"({"path":"/Additional files/Additional file 7.txt"})").body,
              "Additional file 7.txt");
    caller.control("settings", R"({"drives":{"additionalFiles":0}})");
    EXPECT_EQ(refusal(list(R"({"path":"/Additional files"})")),
              R"(409 path/not_found/.. {".tag":"path","path":{".tag":"not_found"}})");
}

TEST_F(DropboxSandboxTest, GoesOnWithACursorWhereTheFolderHasChanged) {
    ASSERT_EQ(upload(R"({"path":"/Empty/b.txt"})", "b").status, 200);
    ASSERT_EQ(upload(R"({"path":"/Empty/d.txt"})", "d").status, 200);
    const auto first = list(R"({"path":"/Empty","limit":1})").json();
    EXPECT_EQ(paths(first), Names{"/Empty/b.txt"});
    EXPECT_TRUE(*first.find("has_more")->asBool());
    for (const auto* name : {"a", "c"}) {
        ASSERT_EQ(upload(R"({"path":"/Empty/)" + std::string(name) + ".txt\"}", name).status, 200);
    }
    const auto next = [&](const JSONValue& page) {
        return rpc("files/list_folder/continue", R"({"cursor":")" + *page.find("cursor")->asString() + "\"}")
            .json();
    };
    const auto second = next(first);
    EXPECT_EQ(paths(second), Names{"/Empty/c.txt"});
    const auto last = next(second);
    EXPECT_EQ(paths(last), Names{"/Empty/d.txt"});
    EXPECT_FALSE(*last.find("has_more")->asBool());
    EXPECT_EQ(paths(next(last)), Names());
    EXPECT_EQ(refusal(rpc("files/list_folder/continue", R"({"cursor":"unknown"})")),
              bad("files/list_folder/continue", "Invalid \"cursor\" parameter: 'unknown'"));
}

TEST_F(DropboxSandboxTest, SaysWhatIsWrongWithTheArgumentsOfAList) {
    const auto wrong = [&](const std::string& arguments, const std::string& problem) {
        EXPECT_EQ(refusal(list(arguments)), bad("files/list_folder", "request body: " + problem));
    };
    wrong("{", "could not decode input as JSON");
    wrong("[]", "expected object, got list");
    wrong("{}", "missing required field 'path'");
    wrong(R"({"path":null})", "path: expected string, got null");
    wrong(R"({"path":"/"})", "path: Specify the root folder as an empty string rather than as \"/\".");
    wrong(R"({"path":"Projects"})", "path: 'Projects' did not match pattern '(/(.|[\\r\\n])*|id:.*)'");
    wrong(R"({"path":"","recursive":"true"})", "recursive: expected boolean, got string");
    wrong(R"({"path":"","limit":0})", "limit: 0 is not within range 1 - 2000");
    wrong(R"({"path":"","limit":2001})", "limit: 2001 is not within range 1 - 2000");
    wrong(R"({"path":"","depth":1})", "unknown field 'depth'");
    EXPECT_EQ(list(R"({"path":"","limit":2000})").status, 200);
    EXPECT_EQ(list(R"({"path":"","limit":1})").status, 200);
    EXPECT_EQ(refusal(list(R"({"path":"/Nowhere"})")),
              R"(409 path/not_found/.. {".tag":"path","path":{".tag":"not_found"}})");
    EXPECT_EQ(refusal(list(R"({"path":"id:unknown"})")),
              R"(409 path/not_found/.. {".tag":"path","path":{".tag":"not_found"}})");
    EXPECT_EQ(refusal(list(R"({"path":"/Read me.txt"})")),
              R"(409 path/not_folder/.. {".tag":"path","path":{".tag":"not_folder"}})");
    EXPECT_EQ(refusal(list(R"({"path":"/Projects/"})")),
              R"(409 path/malformed_path/.. {".tag":"path","path":{".tag":"malformed_path"}})");
}

TEST_F(DropboxSandboxTest, FindsNamesThatAreJoinedByOr) {
    EXPECT_EQ(search(R"({"query":"Plan.pdf OR Größe & Maß.txt OR nothing.txt"})"),
              (Names{"/Projects/Lighthouse/Plan.pdf", "/Büro & Zuhause 🏡/Größe & Maß.txt"}));
    EXPECT_EQ(search(R"({"query":"LightH"})"), Names{"/Projects/Lighthouse"});
    EXPECT_EQ(search(R"({"query":"Pla.pdf"})"), Names());
    EXPECT_EQ(search(R"({"query":"Plan.pdf","options":{"path":"/Empty"}})"), Names());
    EXPECT_EQ(search(R"({"query":"Plan.pdf","options":{"path":"/projects"}})"),
              Names{"/Projects/Lighthouse/Plan.pdf"});
    EXPECT_EQ(search(R"({"query":"welcome"})"), Names{"/Read me.txt"});
    EXPECT_EQ(search(R"({"query":"welcome","options":{"filename_only":true}})"), Names());
    EXPECT_EQ(search(R"({"query":"old plan","options":{"file_status":"active"}})"), Names());
    EXPECT_EQ(search(R"({"query":"old plan","options":{"file_status":{".tag":"deleted"}}})"),
              Names{"/Projects/Old plan.txt"});
}

TEST_F(DropboxSandboxTest, FindsWhatIsNewAfterADelayWhereThatIsSet) {
    caller.control("settings", R"({"drives":{"searchDelay":3600}})");
    ASSERT_EQ(upload(R"({"path":"/Kick-off.pdf"})", "new").status, 200);
    EXPECT_EQ(search(R"({"query":"Kick-off.pdf"})"), Names());
    EXPECT_EQ(search(R"({"query":"Plan.pdf"})"), Names{"/Projects/Lighthouse/Plan.pdf"});
    caller.control("settings", R"({"drives":{"searchDelay":0}})");
    EXPECT_EQ(search(R"({"query":"Kick-off.pdf"})"), Names{"/Kick-off.pdf"});
}

TEST_F(DropboxSandboxTest, GivesMatchesPageByPage) {
    caller.control("settings", R"({"drives":{"additionalFiles":5}})");
    auto page = rpc("files/search_v2",
                    R"({"query":"additional file","options":{"path":"/Additional files","max_results":3}})")
                    .json();
    EXPECT_EQ(page.find("matches")->asArray()->size(), 3U);
    EXPECT_TRUE(*page.find("has_more")->asBool());
    page =
        rpc("files/search/continue_v2", R"({"cursor":")" + *page.find("cursor")->asString() + "\"}").json();
    EXPECT_EQ(page.find("matches")->asArray()->size(), 2U);
    EXPECT_FALSE(*page.find("has_more")->asBool());
    EXPECT_EQ(refusal(rpc("files/search/continue_v2", R"({"cursor":"unknown"})")),
              bad("files/search/continue_v2", "Invalid \"cursor\" parameter: 'unknown'"));
}

TEST_F(DropboxSandboxTest, SaysWhatIsWrongWithASearch) {
    const auto wrong = [&](const std::string& arguments, const std::string& problem) {
        EXPECT_EQ(refusal(rpc("files/search_v2", arguments)),
                  bad("files/search_v2", "request body: " + problem));
    };
    const auto ofLength = [](int count) {
        std::string query = R"({"query":")";
        for (int i = 0; i < count; ++i) {
            query += "ü";
        }
        return query + "\"}";
    };
    EXPECT_EQ(rpc("files/search_v2", ofLength(1000)).status, 200);
    wrong(ofLength(1001), "query: longer than the maximum length 1000");
    wrong("{}", "missing required field 'query'");
    wrong(R"({"query":"a","options":{"max_results":1001}})",
          "options: max_results: 1001 is not within range 1 - 1000");
    wrong(R"({"query":"a","options":{"max_results":0}})",
          "options: max_results: 0 is not within range 1 - 1000");
    wrong(R"({"query":"a","options":{"file_status":"any"}})", "options: file_status: unknown tag 'any'");
    wrong(R"({"query":"a","options":{"path":"/"}})",
          "options: path: Specify the root folder as an empty string rather than as \"/\".");
    wrong(R"({"query":"a","match_field_options":{"highlights":true}})",
          "match_field_options: unknown field 'highlights'");
    EXPECT_EQ(refusal(rpc("files/search_v2", R"({"query":" "})")),
              R"(409 invalid_argument/.. {".tag":"invalid_argument"})");
    EXPECT_EQ(refusal(rpc("files/search_v2", R"({"query":"a","options":{"path":"/Nowhere"}})")),
              R"(409 path/not_found/.. {".tag":"path","path":{".tag":"not_found"}})");
}

TEST_F(DropboxSandboxTest, StoresAFileAndMakesTheFoldersAboveIt) {
    const auto made = upload(
        R"({"path":"/New/Gr\u00fcn \ud83c\udf32/Caf\u00e9.TXT","mode":"add","autorename":true,"mute":false})",
        "content");
    ASSERT_EQ(made.status, 200) << made.body;
    EXPECT_EQ(made.text("path_display"), "/New/Grün 🌲/Café.TXT");
    EXPECT_EQ(made.text("path_lower"), "/new/grün 🌲/café.txt");
    EXPECT_EQ(made.json().find("size")->asInt64(), 7);
    EXPECT_EQ(download(R"({"path":"/new/GR\u00dcN \ud83c\udf32/caf\u00e9.txt"})").body, "content");
    EXPECT_EQ(paths(list(R"({"path":"/New"})").json()), Names{"/New/Grün 🌲/"});
}

TEST_F(DropboxSandboxTest, ResolvesAConflictByTheMode) {
    const auto twice = [&](const std::string& arguments) {
        return upload(R"({"path":"/clash.txt")" + arguments + "}", "of " + arguments);
    };
    ASSERT_EQ(twice("").status, 200);
    const std::string conflict =
        R"(409 path/conflict/file/.. {".tag":"path","reason":{".tag":"conflict","conflict":{".tag":"file"}},)"
        R"("upload_session_id":"AAAAAAAAAAFsandbox"})";
    EXPECT_EQ(refusal(twice(R"(,"mode":"add")")), conflict);
    EXPECT_EQ(refusal(upload(R"({"path":"/CLASH.TXT","mode":"add"})", "other")), conflict);
    EXPECT_EQ(twice(R"(,"mode":"add","autorename":true)").text("name"), "clash (1).txt");
    EXPECT_EQ(twice(R"(,"mode":{".tag":"add"},"autorename":true,"mute":true)").text("name"), "clash (2).txt");
    const auto replaced = twice(R"(,"mode":"overwrite","autorename":false)");
    EXPECT_EQ(replaced.text("name"), "clash.txt");
    const auto stale = replaced.text("rev");
    EXPECT_EQ(twice(R"(,"mode":{".tag":"update","update":")" + stale + "\"}").text("name"), "clash.txt");
    EXPECT_EQ(refusal(upload(R"({"path":"/clash.txt","mode":{".tag":"update","update":")" + stale + "\"}}",
                             "late")),
              conflict);
    EXPECT_EQ(paths(list(R"({"path":""})").json()).size(), 7U);
}

TEST_F(DropboxSandboxTest, DoesNothingForTheSameContentUnlessAskedToBeStrict) {
    const auto first = upload(R"({"path":"/same.txt"})", "same");
    EXPECT_EQ(upload(R"({"path":"/same.txt","autorename":true})", "same").text("rev"), first.text("rev"));
    EXPECT_EQ(upload(R"({"path":"/same.txt","autorename":true,"strict_conflict":true})", "same").text("name"),
              "same (1).txt");
}

TEST_F(DropboxSandboxTest, RefusesAPlaceThatCannotBe) {
    const auto reason = [&](const std::string& path) {
        const auto json = upload(R"({"path":")" + path + "\",\"mode\":\"overwrite\"}", "x");
        return json.text("error_summary");
    };
    EXPECT_EQ(reason("/Projects"), "path/conflict/folder/..");
    EXPECT_EQ(reason("/Read me.txt/x"), "path/conflict/file_ancestor/..");
    EXPECT_EQ(reason("/a//b"), "path/malformed_path/..");
    EXPECT_EQ(reason("/a/"), "path/malformed_path/..");
    EXPECT_EQ(reason("/a/../b"), "path/malformed_path/..");
    EXPECT_EQ(reason("/a\\\\b"), "path/malformed_path/..");
    EXPECT_EQ(reason("/a\\u0000b"), "path/malformed_path/..");
    EXPECT_EQ(reason("/" + std::string(256, 'x')), "path/malformed_path/..");
    EXPECT_EQ(reason(""), "path/malformed_path/..");
    EXPECT_EQ(reason("/Desktop.ini"), "path/disallowed_name/..");
    EXPECT_EQ(upload(R"({"path":"/Projects","autorename":true})", "x").text("name"), "Projects (1)");
    EXPECT_EQ(upload(R"({"path":"/)" + std::string(255, 'x') + "\"}", "x").status, 200);
}

TEST_F(DropboxSandboxTest, TakesArgumentsInAHeaderOfASCIIWithKnownKeys) {
    const auto wrong = [&](const std::string& arguments, const std::string& problem) {
        EXPECT_EQ(refusal(upload(arguments, "x")),
                  bad("files/upload", "HTTP header \"Dropbox-API-Arg\": " + problem));
    };
    wrong("{\"path\":\"/Café\"}", "could not decode input as JSON");
    wrong("{", "could not decode input as JSON");
    wrong(R"({"path":"a"})", "path: 'a' did not match pattern '(/(.|[\\r\\n])*|id:.*)'");
    wrong(R"({"path":"/a","rename":true})", "unknown field 'rename'");
    wrong(R"({"path":"/a","autorename":1})", "autorename: expected boolean, got integer");
    wrong(R"({"path":"/a","mode":"replace"})", "mode: expected one of 'add', 'overwrite', 'update'");
    wrong(R"({"path":"/a","mode":{".tag":"update"}})", "mode: expected one of 'add', 'overwrite', 'update'");
    EXPECT_EQ(refusal(caller.post(contentHost, "/2/files/upload", "application/octet-stream", "x",
                                  authorization())),
              bad("files/upload", "Must provide HTTP header \"Dropbox-API-Arg\" or URL parameter \"arg\"."));
    EXPECT_EQ(refusal(upload(R"({"path":"/a"})", "x", "application/json")),
              bad("files/upload",
                  "Bad HTTP \"Content-Type\" header: \"application/json\".  Expecting one of "
                  "\"application/octet-stream\", \"text/plain; charset=dropbox-cors-hack\"."));
    EXPECT_EQ(upload("{\"path\":\"/a\x7f\"}", "x").status, 400);
    EXPECT_EQ(upload(R"({"path":"/a\u007f"})", "x").status, 200);
}

TEST_F(DropboxSandboxTest, TakesFilesUpToTheLimitsThatAreSet) {
    caller.control("settings", R"({"attachmentLimit":10})");
    EXPECT_EQ(upload(R"({"path":"/ten"})", std::string(10, 'x')).status, 200);
    EXPECT_EQ(refusal(upload(R"({"path":"/eleven"})", std::string(11, 'x'))),
              R"(409 payload_too_large/.. {".tag":"payload_too_large"})");
    caller.control("settings", R"({"attachmentLimit":null,"drives":{"space":0}})");
    EXPECT_EQ(upload(R"({"path":"/more"})", "x").text("error_summary"), "path/insufficient_space/..");
    EXPECT_EQ(upload(R"({"path":"/nothing"})", "").text("error_summary"), "path/insufficient_space/..");
    caller.control("settings", R"({"drives":{"space":1000000}})");
    EXPECT_EQ(upload(R"({"path":"/more"})", "x").status, 200);
}

TEST_F(DropboxSandboxTest, ChecksTheHashThatAClientClaims) {
    const auto made = upload(R"({"path":"/hash.txt"})", "x");
    EXPECT_EQ(
        upload(R"({"path":"/again.txt","content_hash":")" + made.text("content_hash") + "\"}", "x").status,
        200);
    EXPECT_EQ(
        refusal(upload(R"({"path":"/wrong.txt","content_hash":")" + made.text("content_hash") + "\"}", "y")),
        R"(409 content_hash_mismatch/.. {".tag":"content_hash_mismatch"})");
}

TEST_F(DropboxSandboxTest, GivesAFileByItsPathItsIdentifierAndItsRevision) {
    const auto byPath = download(R"({"path":"/Read me.txt"})");
    EXPECT_EQ(byPath.status, 200);
    EXPECT_EQ(byPath.body, "Welcome to the sandbox.\n");
    EXPECT_EQ(byPath.field("Content-Length"), "24");
    EXPECT_EQ(byPath.field("Content-Type"), "application/octet-stream");
    EXPECT_EQ(*JSONValue::parse(byPath.field("Dropbox-API-Result"))->find("id")->asString(), readMe);
    EXPECT_EQ(download(R"({"path":")" + readMe + "\"}", "Content-Type: text/plain; charset=utf-8\r\n").body,
              byPath.body);
    const auto old = download(R"({"path":"rev:5a4d000000000001"})");
    EXPECT_EQ(old.body, "A first version.\n");
    EXPECT_NE(old.field("Dropbox-API-Result").find(R"("rev":"5a4d000000000001","size":17)"),
              std::string::npos)
        << old.field("Dropbox-API-Result");
    const auto picture = download(R"({"path":"/Projects/Lighthouse/Leuchtturm bei Nacht \ud83c\udf19.png"})");
    EXPECT_TRUE(picture.body.starts_with("\x89PNG"));
    EXPECT_NE(picture.field("Dropbox-API-Result").find(R"("name":"Leuchtturm bei Nacht \ud83c\udf19.png")"),
              std::string::npos)
        << picture.field("Dropbox-API-Result");
}

TEST_F(DropboxSandboxTest, RefusesADownloadOfWhatIsNoFile) {
    const auto reason = [&](const std::string& path) {
        return refusal(download(R"({"path":")" + path + "\"}"));
    };
    const std::string missing = R"(409 path/not_found/.. {".tag":"path","path":{".tag":"not_found"}})";
    EXPECT_EQ(reason("/Nowhere"), missing);
    EXPECT_EQ(reason("/Projects/Old plan.txt"), missing);
    EXPECT_EQ(reason("id:unknown"), missing);
    EXPECT_EQ(reason("rev:123456789"), missing);
    EXPECT_EQ(reason("/Projects"), R"(409 path/not_file/.. {".tag":"path","path":{".tag":"not_file"}})");
    EXPECT_EQ(reason("/a//b"),
              R"(409 path/malformed_path/.. {".tag":"path","path":{".tag":"malformed_path"}})");
    EXPECT_EQ(refusal(download(R"({"path":"/Read me.txt"})", "Content-Type: application/json\r\n")),
              bad("files/download",
                  "Bad HTTP \"Content-Type\" header: \"application/json\".  Expecting one of "
                  "\"application/octet-stream\", \"text/plain; charset=utf-8\"."));
    EXPECT_EQ(refusal(download(R"({"path":"/Read me.txt"})", "", "x")),
              bad("files/download", "Request body must be empty."));
    EXPECT_EQ(refusal(download(R"({"file":"/Read me.txt"})")),
              bad("files/download", "HTTP header \"Dropbox-API-Arg\": unknown field 'file'"));
}

TEST_F(DropboxSandboxTest, RefusesInItsOwnWordsForAFault) {
    const auto faulty = [&](int status) {
        caller.control("faults", R"({"status":)" + std::to_string(status) + "}");
        return rpc("users/get_current_account", "null");
    };
    const auto limited = faulty(429);
    EXPECT_EQ(refusal(limited), R"(429 too_many_requests/.. {"reason":{".tag":"too_many_requests"},)"
                                R"("retry_after":15})");
    EXPECT_EQ(limited.field("Retry-After"), "15");
    EXPECT_EQ(refusal(faulty(401)), R"(401 invalid_access_token/.. {".tag":"invalid_access_token"})");
    EXPECT_EQ(refusal(faulty(409)), R"(409 other/.. {".tag":"other"})");
    EXPECT_EQ(refusal(faulty(500)), "500 Internal Server Error");
    EXPECT_EQ(faulty(503).field("Retry-After"), "15");
}

TEST_F(DropboxSandboxTest, ShowsWhatItHoldsUntilAReset) {
    ASSERT_EQ(upload(R"({"path":"/Empty/page.html","mode":"overwrite"})", "<script>run()</script>").status,
              200);
    const auto made = upload(R"({"path":"/Empty/page.html","mode":"overwrite"})", "<p>two</p>");
    const auto state = *caller.server->state().find("dropbox");
    EXPECT_EQ(state.find("uploads")->asInt64(), 2);
    EXPECT_EQ(*state.find("newest")->asString(), made.text("id"));
    const auto& entries = *state.find("entries")->asArray();
    const auto found = std::ranges::find_if(
        entries, [&](const JSONValue& each) { return *each.find("id")->asString() == made.text("id"); });
    ASSERT_NE(found, entries.end());
    EXPECT_EQ(*found->find("mediaType")->asString(), "text/html");
    const auto& revisions = *found->find("revisions")->asArray();
    ASSERT_EQ(revisions.size(), 2U);
    EXPECT_EQ(*revisions[0].find("id")->asString(), made.text("rev"));
    const auto file = caller.get(caller.ownHost(), *revisions[1].find("url")->asString());
    EXPECT_EQ(file.body, "<script>run()</script>");
    EXPECT_EQ(file.field("Content-Type"), "text/plain; charset=utf-8");
    EXPECT_EQ(file.field("Content-Security-Policy"), "default-src 'none'; sandbox");
    caller.control("reset", "{}");
    EXPECT_EQ(caller.server->state().find("dropbox")->find("uploads")->asInt64(), 0);
    EXPECT_EQ(caller.server->state().find("dropbox")->find("entries")->asArray()->size(), 12U);
}

} // namespace zelto
