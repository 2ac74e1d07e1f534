#include <ZeltoSandbox/SandboxCaller.h>

#include <Platform/Base64.h>
#include <Platform/PercentEncoding.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace zelto {

namespace {

const std::string host = "www.googleapis.com";
const std::string folderType = "application/vnd.google-apps.folder";

using Names = std::vector<std::string>;

// "404 notFound File not found: x. (fileId)"
std::string refusal(const CallerResponse& response) {
    const auto json = response.json();
    const auto* error = json.find("error");
    if (!error || error->find("code")->asInt64() != response.status) {
        return "no refusal: " + std::to_string(response.status) + " " + response.body;
    }
    const auto& first = error->find("errors")->asArray()->front();
    EXPECT_EQ(*first.find("message"), *error->find("message"));
    const auto* location = first.find("location");
    return std::to_string(response.status) + " " + *first.find("reason")->asString() + " " +
           *error->find("message")->asString() + (location ? " (" + *location->asString() + ")" : "");
}

std::string query(const SandboxCaller::Items& items) {
    return items.empty() ? "" : "?" + formText(items);
}

struct Upload {
    std::string metadata;
    std::string type = "text/plain";
    std::string content = "content";
    std::string encoding = "base64";
    bool isEncoded = true;

    std::string body() const {
        const auto second = encoding.empty() ? "" : "\r\nContent-Transfer-Encoding: " + encoding;
        return "\r\n--B\r\nContent-Type: application/json; charset=UTF-8\r\n\r\n" + metadata +
               "\r\n--B\r\nContent-Type: " + type + second + "\r\n\r\n" +
               (isEncoded ? base64Encoded(content) : content) + "\r\n--B--";
    }
};

class GoogleDriveSandboxTest : public testing::Test {
  protected:
    std::string authorization() const { return "Authorization: Bearer " + token + "\r\n"; }

    CallerResponse get(const std::string& path, const SandboxCaller::Items& items = {}) const {
        return caller.get(host, "/drive/v3/" + path + query(items), authorization());
    }

    CallerResponse list(const SandboxCaller::Items& items) const { return get("files", items); }

    CallerResponse send(const std::string& method, const std::string& target, const std::string& body,
                        const std::string& type = "multipart/related; boundary=B") const {
        return caller.send(method + " /upload/drive/v3/files" + target + " HTTP/1.1\r\nHost: " + host +
                           "\r\nContent-Type: " + type + "\r\nContent-Length: " +
                           std::to_string(body.size()) + "\r\n" + authorization() + "\r\n" + body);
    }

    CallerResponse create(const Upload& upload) const {
        return send("POST", "?uploadType=multipart", upload.body());
    }

    CallerResponse update(const std::string& id, const Upload& upload) const {
        return send("PATCH", "/" + id + "?uploadType=multipart", upload.body());
    }

    static Names names(const JSONValue& page) {
        Names all;
        for (const auto& file : *page.find("files")->asArray()) {
            all.push_back(*file.find("name")->asString());
        }
        return all;
    }

    Names found(const std::string& q, const std::string& orderBy = "name_natural") const {
        const auto response = list({{"q", q}, {"orderBy", orderBy}});
        EXPECT_EQ(response.status, 200) << response.body;
        return names(response.json());
    }

    // The identifier of the first one of that name.
    std::string idOf(const std::string& name) const {
        return *list({{"q", "name = '" + name + "'"}})
                    .json()
                    .find("files")
                    ->asArray()
                    ->front()
                    .find("id")
                    ->asString();
    }

    std::string content(const std::string& id) const { return get("files/" + id, {{"alt", "media"}}).body; }

    SandboxCaller caller;
    std::string token = caller.server->issueTokens("GoogleDrive")->accessToken;
};

} // namespace

TEST_F(GoogleDriveSandboxTest, RefusesARequestWithoutAGoodToken) {
    const std::string refused = "401 authError Invalid Credentials (Authorization)";
    EXPECT_EQ(refusal(caller.get(host, "/drive/v3/files")), refused);
    EXPECT_EQ(caller.server->requests().back().problem, "there is no bearer token");
    EXPECT_EQ(list({}).status, 200);
    caller.server->expireTokens("GoogleDrive");
    EXPECT_EQ(refusal(list({})), refused);
}

TEST_F(GoogleDriveSandboxTest, ChecksTheScopeOfEachEndpoint) {
    const auto signedIn = [&](const std::string& scope) {
        const auto authorized =
            caller.get("accounts.google.com",
                       "/o/oauth2/v2/auth?response_type=code&client_id=id&state=s&redirect_uri="
                       "http%3A%2F%2F127.0.0.1%2F&sandbox_consent=allow&access_type=offline&scope="
                       "https%3A%2F%2Fwww.googleapis.com%2Fauth%2F" +
                           scope);
        return caller
            .postForm(host, "/oauth2/v4/token",
                      {{"grant_type", "authorization_code"},
                       {"client_id", "id"},
                       {"client_secret", "secret"},
                       {"redirect_uri", "http://127.0.0.1/"},
                       {"code", authorized.redirectItem("code").value_or("")}})
            .text("access_token");
    };
    const std::string refused = "403 insufficientPermissions Request had insufficient authentication scopes.";
    token = signedIn("userinfo.email");
    EXPECT_EQ(refusal(list({})), refused);
    token = signedIn("drive.readonly");
    EXPECT_EQ(list({}).status, 200);
    EXPECT_EQ(refusal(create({R"({"name":"a"})"})), refused);
    token = signedIn("drive.file");
    EXPECT_EQ(list({}).status, 200);
    EXPECT_EQ(create({R"({"name":"a"})"}).status, 200);
}

TEST_F(GoogleDriveSandboxTest, GivesTheUserWhereFieldsNameIt) {
    EXPECT_EQ(get("about", {{"fields", "user"}}).body,
              R"({"user":{"kind":"drive#user","displayName":"Robin Sandbox","me":true,)"
              R"("permissionId":"05740000000000000001","emailAddress":"robin@sandbox.example"}})");
    EXPECT_EQ(get("about", {{"fields", "user/emailAddress,kind"}}).body,
              R"({"kind":"drive#about","user":{"emailAddress":"robin@sandbox.example"}})");
    EXPECT_EQ(get("about", {{"fields", "user(displayName,me)"}}).body,
              R"({"user":{"displayName":"Robin Sandbox","me":true}})");
    EXPECT_EQ(get("about", {{"fields", "*"}}).json().asObject()->size(), 5U);
    const std::string required = "400 required The 'fields' parameter is required for this method. (fields)";
    EXPECT_EQ(refusal(get("about")), required);
    EXPECT_EQ(refusal(get("about", {{"fields", ""}})), required);
    for (const std::string wrong :
         {"users", "user/name", "user(", "user)", "user,,kind", "user//me", "user()"}) {
        EXPECT_TRUE(refusal(get("about", {{"fields", wrong}}))
                        .starts_with("400 invalidParameter Invalid field selection "))
            << wrong;
    }
    EXPECT_EQ(refusal(get("about", {{"fields", "user/name"}})),
              "400 invalidParameter Invalid field selection name (fields)");
}

TEST_F(GoogleDriveSandboxTest, ListsFoldersInNaturalOrderWithThoseInTheTrash) {
    caller.control("settings", R"({"drives":{"additionalFolders":11}})");
    const auto all = found("mimeType='" + folderType + "'");
    EXPECT_EQ(Names(all.begin(), all.begin() + 4), (Names{"Additional folder 1", "Additional folder 2",
                                                          "Additional folder 3", "Additional folder 4"}));
    EXPECT_EQ(Names(all.begin() + 10, all.end()),
              (Names{"Additional folder 11", "Büro & Zuhause 🏡", "Drafts of last year", "Empty", "Lighthouse",
                     "Projects", "図書館"}));
    EXPECT_EQ(found("mimeType = '" + folderType + "' and trashed = false").size(), all.size() - 1);
}

TEST_F(GoogleDriveSandboxTest, ListsWhatIsInAFolderWithTwinsAndWithoutTheTrash) {
    const auto projects = idOf("Projects");
    EXPECT_EQ(found("'" + projects + "' in parents and trashed = false"),
              (Names{"Lighthouse", "Minutes", "Report.txt", "Report.txt", "Robin's \\ notes.txt", "図書館"}));
    EXPECT_EQ(found("'" + projects + "' in parents and trashed = true"), Names{"Old plan.txt"});
    EXPECT_EQ(found("'" + idOf("Empty") + "' in parents and trashed = false"), Names());
    EXPECT_EQ(found("'root' in parents and trashed = false"),
              (Names{"Büro & Zuhause 🏡", "Empty", "Projects", "Read me.txt"}));
    EXPECT_EQ(found("name = 'Draft.txt' and trashed = true"), Names{"Draft.txt"});
}

TEST_F(GoogleDriveSandboxTest, UnderstandsEscapesOperatorsAndBlanksOfAQuery) {
    EXPECT_EQ(found(R"(name = 'Robin\'s \\ notes.txt')"), Names{"Robin's \\ notes.txt"});
    EXPECT_EQ(found(R"(name='Report.txt'and  trashed=false )").size(), 2U);
    EXPECT_EQ(found("name = 'Report.txt' and mimeType != 'text/plain'"), Names());
    EXPECT_EQ(found("name = 'Report.txt' and trashed != true").size(), 2U);
    for (const std::string wrong :
         {"name", "name =", "name = Report", "name = 'a", R"(name = 'a\n')", "name contains 'a'", "trashed",
          "trashed = yes", "'root' in", "'root' in owners", "name = 'a' and", "name = 'a' or name = 'b'",
          "not name = 'a'", "(name = 'a')", "size = 1", "trashed = false trashed = false", "and", " "}) {
        EXPECT_EQ(refusal(list({{"q", wrong}})), "400 invalid Invalid Value (q)") << wrong;
    }
    list({{"q", "name = 'a' and size = 1"}});
    EXPECT_EQ(caller.server->requests().back().problem, "q is not understood from character 16 on");
    EXPECT_EQ(refusal(list({{"q", "'unknown' in parents"}})),
              "404 notFound File not found: unknown. (fileId)");
}

TEST_F(GoogleDriveSandboxTest, OrdersByTheKeysThatAreNamed) {
    const auto inRoot = [&](const std::string& orderBy) {
        return found("'root' in parents and trashed = false", orderBy);
    };
    EXPECT_EQ(inRoot("name desc"), (Names{"Read me.txt", "Projects", "Empty", "Büro & Zuhause 🏡"}));
    EXPECT_EQ(inRoot("folder desc,name"), (Names{"Read me.txt", "Büro & Zuhause 🏡", "Empty", "Projects"}));
    EXPECT_EQ(inRoot("modifiedTime desc, name_natural").front(), "Read me.txt");
    EXPECT_EQ(inRoot("quotaBytesUsed,name").back(), "Read me.txt");
    for (const std::string wrong : {"size", "name asc", "name,", "name;folder", "Name"}) {
        EXPECT_EQ(refusal(list({{"orderBy", wrong}})), "400 invalid Invalid Value (orderBy)") << wrong;
    }
}

TEST_F(GoogleDriveSandboxTest, ListsFoldersPageByPage) {
    caller.control("settings", R"({"drives":{"additionalFolders":2494}})");
    SandboxCaller::Items items = {
        {"q", "mimeType='" + folderType + "'"}, {"orderBy", "name_natural"}, {"pageSize", "1000"}};
    auto page = list(items).json();
    Names all = names(page);
    std::vector<std::size_t> sizes = {all.size()};
    items.push_back({"pageToken", ""});
    while (page.find("nextPageToken")) {
        items.back().value = *page.find("nextPageToken")->asString();
        page = list(items).json();
        sizes.push_back(names(page).size());
        std::ranges::copy(names(page), std::back_inserter(all));
    }
    EXPECT_EQ(sizes, (std::vector<std::size_t>{1000, 1000, 500}));
    std::ranges::sort(all);
    EXPECT_EQ(std::ranges::unique(all).size(), 0U);
}

TEST_F(GoogleDriveSandboxTest, GivesATokenOnlyWhereThereIsMoreAndFieldsNameIt) {
    const auto token = [&](const SandboxCaller::Items& items) {
        const auto page = list(items).json();
        return page.find("nextPageToken") ? *page.find("nextPageToken")->asString() : "none";
    };
    caller.control("settings", R"({"drives":{"additionalFiles":101}})");
    const std::string all = "mimeType = 'text/plain' and '" + idOf("Additional files") + "' in parents";
    EXPECT_NE(token({{"q", all}}), "none");
    EXPECT_NE(token({{"q", all}, {"fields", "files(id),nextPageToken"}}), "none");
    EXPECT_EQ(token({{"q", all}, {"pageSize", "101"}}), "none");
    const auto chosen = list({{"q", all}, {"fields", "files(id,name,mimeType)"}}).json();
    EXPECT_EQ(chosen.asObject()->size(), 1U);
    EXPECT_EQ(names(chosen).size(), 100U);
    EXPECT_EQ(chosen.find("files")->asArray()->front().text().value_or(""),
              R"({"id":"1ZeltoDrive0000000000000002000001","name":"Additional file 1.txt",)"
              R"("mimeType":"text/plain"})");
}

TEST_F(GoogleDriveSandboxTest, RefusesAPageThatCannotBe) {
    for (const std::string wrong : {"0", "1001", "-1", "ten", ""}) {
        EXPECT_EQ(refusal(list({{"pageSize", wrong}})),
                  "400 invalidParameter Invalid value '" + wrong +
                      "'. Values must be within the range: [1, 1000] (pageSize)");
    }
    const auto token = *list({{"pageSize", "1"}}).json().find("nextPageToken")->asString();
    EXPECT_EQ(list({{"pageSize", "1"}, {"pageToken", token}}).status, 200);
    const std::string refused = "400 invalid Invalid Value (pageToken)";
    EXPECT_EQ(refusal(list({{"pageToken", "unknown"}})), refused);
    EXPECT_EQ(refusal(list({{"pageToken", token}, {"q", "trashed = false"}})), refused);
    EXPECT_EQ(refusal(list({{"pageToken", token}, {"orderBy", "name"}})), refused);
}

TEST_F(GoogleDriveSandboxTest, GivesAFilesMetadataAndItsContent) {
    const auto id = idOf("Read me.txt");
    EXPECT_EQ(get("files/" + id).body,
              R"({"kind":"drive#file","id":")" + id + R"(","name":"Read me.txt","mimeType":"text/plain"})");
    EXPECT_EQ(get("files/" + id, {{"fields", "size,parents,trashed"}}).body,
              R"({"trashed":false,"parents":["0AZeltoDriveRootPVA"],"size":"24"})");
    const auto file = get("files/" + id, {{"alt", "media"}});
    EXPECT_EQ(file.body, "Welcome to the sandbox.\n");
    EXPECT_EQ(file.field("Content-Type"), "text/plain");
    EXPECT_EQ(file.field("Content-Length"), "24");
    EXPECT_TRUE(content(idOf("Plan.pdf")).starts_with("%PDF-1.4\n"));
    EXPECT_EQ(content(idOf("Old plan.txt")), "Nobody needs this any more.\n");
}

TEST_F(GoogleDriveSandboxTest, RefusesADownloadOfWhatHasNoContent) {
    const std::string refused = "403 fileNotDownloadable Only files with binary content can be directly "
                                "downloaded. Use Export with Docs Editors files. (alt)";
    EXPECT_EQ(refusal(get("files/" + idOf("Minutes"), {{"alt", "media"}})), refused);
    EXPECT_EQ(refusal(get("files/" + idOf("Projects"), {{"alt", "media"}})), refused);
    EXPECT_EQ(refusal(get("files/unknown", {{"alt", "media"}})),
              "404 notFound File not found: unknown. (fileId)");
    EXPECT_EQ(refusal(get("files/" + idOf("Minutes"), {{"alt", "text"}})), "400 invalid Invalid Value (alt)");
    EXPECT_EQ(refusal(get("changes")), "404 notFound Not Found");
}

TEST_F(GoogleDriveSandboxTest, StoresAFileInItsFolderBesideOneOfTheSameName) {
    const auto folder = idOf("Empty");
    const Upload upload{R"({"name":"Caf\u00e9 \ud83c\udf32.txt","mimeType":"text/markdown","parents":[")" +
                            folder + R"("]})",
                        "text/plain", std::string("\0\xff\r\n--B\x01", 9)};
    const auto first = create(upload);
    ASSERT_EQ(first.status, 200) << first.body;
    EXPECT_EQ(first.body, R"({"kind":"drive#file","id":")" + first.text("id") +
                              R"(","name":"Café 🌲.txt","mimeType":"text/markdown"})");
    EXPECT_NE(create(upload).text("id"), first.text("id"));
    EXPECT_EQ(content(first.text("id")), upload.content);
    EXPECT_EQ(found("'" + folder + "' in parents and trashed = false"), (Names{"Café 🌲.txt", "Café 🌲.txt"}));
    const auto inRoot = create({"{}"});
    EXPECT_EQ(inRoot.text("name"), "Untitled");
    EXPECT_EQ(inRoot.text("mimeType"), "text/plain");
    EXPECT_EQ(get("files/" + inRoot.text("id"), {{"fields", "parents"}}).body,
              R"({"parents":["0AZeltoDriveRootPVA"]})");
    EXPECT_EQ(send("POST", "?uploadType=multipart&fields=size", Upload{"{}"}.body()).body, R"({"size":"7"})");
}

TEST_F(GoogleDriveSandboxTest, ReplacesAFilesContentAndKeepsItsIdentifierAndPlace) {
    const auto id = idOf("Plan.pdf");
    const auto parents = get("files/" + id, {{"fields", "parents"}}).body;
    const auto changed =
        update(id, {R"({"name":"Plan 2.txt","mimeType":"text/plain"})", "text/plain", "two"});
    EXPECT_EQ(changed.body,
              R"({"kind":"drive#file","id":")" + id + R"(","name":"Plan 2.txt","mimeType":"text/plain"})");
    EXPECT_EQ(content(id), "two");
    EXPECT_EQ(get("files/" + id, {{"fields", "parents"}}).body, parents);
    EXPECT_EQ(refusal(update(id, {R"({"parents":["root"]})"})),
              "403 fieldNotWritable The parents field is not directly writable in update requests. Use the "
              "addParents and removeParents parameters instead.");
    EXPECT_EQ(refusal(update(id, {R"({"parents":[]})"})).substr(0, 20), "403 fieldNotWritable");
    EXPECT_EQ(refusal(update("unknown", {"{}"})), "404 notFound File not found: unknown. (fileId)");
    EXPECT_EQ(refusal(update(idOf("Minutes"), {"{}"})),
              "400 badRequest The content of this file cannot be replaced by an upload.");
    EXPECT_EQ(content(id), "two");
}

TEST_F(GoogleDriveSandboxTest, ChecksBothPartsOfAnUpload) {
    const auto malformed = [](const std::string& detail) {
        return "400 badRequest Malformed multipart body: " + detail + ".";
    };
    const auto base64 = [&](const std::string& text) {
        return refusal(create({"{}", "text/plain", text, "base64", false}));
    };
    for (const std::string wrong : {"YQ=", "YQ", "Y", "YQ==YQ==", "Y Q==", "Y-_=", "YQ==\x01", "===="}) {
        EXPECT_TRUE(base64(wrong).starts_with("400 badRequest Malformed multipart body: the ")) << wrong;
    }
    EXPECT_EQ(base64("!"), malformed("the second part is not Base64"));
    EXPECT_EQ(base64("YWI"), malformed("the Base64 of the second part does not end"));
    EXPECT_EQ(content(create({"{}", "text/plain", "YW\r\nJj\r\n", "BASE64", false}).text("id")), "abc");
    EXPECT_EQ(content(create({"{}", "text/plain", "YQ==", "", false}).text("id")), "YQ==");
    EXPECT_EQ(content(create({"{}", "text/plain", "YQ==", "binary", false}).text("id")), "YQ==");
    EXPECT_EQ(refusal(create({"{}", "text/plain", "a", "quoted-printable", false})),
              malformed("the Content-Transfer-Encoding \"quoted-printable\" is unknown"));
    const auto sent = [&](const std::string& body) {
        return refusal(send("POST", "?uploadType=multipart", body));
    };
    EXPECT_EQ(sent("--B\r\nContent-Type: application/json\r\n\r\n{}\r\n--B--"),
              malformed("it has 1 parts and not 2"));
    EXPECT_EQ(sent("--B\r\nContent-Type: text/plain\r\n\r\n{}\r\n--B\r\nContent-Type: a/b\r\n\r\n\r\n--B--"),
              malformed("the first part is not application/json"));
    EXPECT_EQ(sent("--B\r\nContent-Type: application/json\r\n\r\n{}\r\n--B\r\n\r\nx\r\n--B--"),
              malformed("the second part has no Content-Type"));
    EXPECT_EQ(sent(Upload{"{}"}.body().substr(0, 60)), malformed("the last boundary is missing"));
    EXPECT_EQ(sent("x\r\n--B--"), malformed("the body does not begin with the boundary"));
    EXPECT_EQ(refusal(send("POST", "?uploadType=multipart", Upload{"{}"}.body(),
                           "multipart/form-data; boundary=B")),
              "400 badRequest The Content-Type of a multipart upload has to be multipart/related.");
    EXPECT_EQ(refusal(send("POST", "?uploadType=media", "x", "text/plain")),
              "400 badRequest Of uploads the sandbox has uploadType=multipart alone. (uploadType)");
    EXPECT_EQ(found("name = 'Untitled'").size(), 3U);
}

TEST_F(GoogleDriveSandboxTest, DecodesALongFileInLinesToItsLastByte) {
    std::string bytes;
    for (std::uint32_t i = 0; bytes.size() < 1'000'001; ++i) {
        bytes.push_back(static_cast<char>(i * 2654435761U >> 24));
    }
    const auto text = base64Encoded(bytes);
    std::string lines;
    for (std::size_t i = 0; i < text.size(); i += 76) {
        lines += text.substr(i, 76) + "\r\n";
    }
    const auto made = create({"{}", "application/octet-stream", lines, "base64", false});
    ASSERT_EQ(made.status, 200) << made.body.substr(0, 500);
    EXPECT_TRUE(content(made.text("id")) == bytes);
}

TEST_F(GoogleDriveSandboxTest, ChecksTheMetadataOfAnUpload) {
    EXPECT_EQ(refusal(create({"{"})), "400 parseError Parse Error");
    EXPECT_EQ(refusal(create({"[]"})), "400 parseError Parse Error");
    EXPECT_EQ(refusal(create({R"({"name":1})"})),
              "400 badRequest Invalid value for \"name\": a text is expected.");
    EXPECT_EQ(refusal(create({R"({"title":"a"})"})),
              "400 badRequest The metadata has the member \"title\", which cannot be written.");
    EXPECT_EQ(refusal(create({R"({"parents":"root"})"})),
              "400 badRequest Invalid value for \"parents\": a list of texts is expected.");
    EXPECT_EQ(refusal(create({R"({"parents":["root","root"]})"})),
              "403 multipleParentsNotSupported A file can have one parent only.");
    EXPECT_EQ(refusal(create({R"({"parents":["unknown"]})"})),
              "404 notFound File not found: unknown. (fileId)");
    EXPECT_EQ(refusal(create({R"({"parents":[")" + idOf("Plan.pdf") + R"("]})"})),
              "403 parentNotAFolder The specified parent is not a folder. (parents)");
    EXPECT_EQ(refusal(create({R"({"mimeType":"application/vnd.google-apps.document"})"})),
              "400 badRequest The sandbox does not convert files to Google's own types.");
    EXPECT_EQ(refusal(send("POST", "?uploadType=multipart&fields=nothing", Upload{"{}"}.body())),
              "400 invalidParameter Invalid field selection nothing (fields)");
    EXPECT_EQ(caller.server->state().find("googledrive")->find("uploads")->asInt64(), 0);
}

TEST_F(GoogleDriveSandboxTest, TakesFilesUpToTheLimitsThatAreSet) {
    const auto ofSize = [&](std::size_t size) {
        return create({"{}", "text/plain", std::string(size, 'x')});
    };
    caller.control("settings", R"({"attachmentLimit":10})");
    EXPECT_EQ(ofSize(10).status, 200);
    EXPECT_EQ(refusal(ofSize(11)), "413 uploadTooLarge Request Too Large");
    caller.control("settings", R"({"attachmentLimit":null,"publishedLimits":true})");
    EXPECT_EQ(ofSize(5'000'000).status, 200);
    EXPECT_EQ(refusal(ofSize(5'000'001)), "413 uploadTooLarge Request Too Large");
    caller.control("settings", R"({"publishedLimits":false,"drives":{"space":5100000}})");
    EXPECT_EQ(ofSize(50'000).status, 200);
    EXPECT_EQ(refusal(ofSize(100'000)),
              "403 storageQuotaExceeded The user's Drive storage quota has been exceeded.");
    EXPECT_EQ(get("about", {{"fields", "storageQuota/limit"}}).body,
              R"({"storageQuota":{"limit":"5100000"}})");
}

TEST_F(GoogleDriveSandboxTest, RefusesInItsOwnWordsForAFault) {
    const auto faulty = [&](int status) {
        caller.control("faults", R"({"status":)" + std::to_string(status) + "}");
        return refusal(list({}));
    };
    EXPECT_EQ(faulty(401), "401 authError Invalid Credentials (Authorization)");
    EXPECT_EQ(faulty(403), "403 userRateLimitExceeded User Rate Limit Exceeded");
    EXPECT_EQ(faulty(429), "429 rateLimitExceeded Rate Limit Exceeded");
    EXPECT_EQ(faulty(500), "500 internalError Internal Error");
    EXPECT_EQ(faulty(503), "503 backendError Service Unavailable");
}

TEST_F(GoogleDriveSandboxTest, ShowsWhatItHoldsUntilAReset) {
    const auto id = create({R"({"name":"a.txt"})"}).text("id");
    update(id, {R"({"name":"a.txt"})", "text/plain", "two"});
    const auto state = *caller.server->state().find("googledrive");
    EXPECT_EQ(state.find("uploads")->asInt64(), 2);
    EXPECT_EQ(*state.find("newest")->asString(), id);
    const auto& entries = *state.find("entries")->asArray();
    const auto found = std::ranges::find_if(
        entries, [&](const JSONValue& each) { return *each.find("id")->asString() == id; });
    ASSERT_NE(found, entries.end());
    const auto& revisions = *found->find("revisions")->asArray();
    ASSERT_EQ(revisions.size(), 2U);
    EXPECT_EQ(caller.get(caller.ownHost(), *revisions[0].find("url")->asString()).body, "two");
    EXPECT_EQ(caller.get(caller.ownHost(), *revisions[1].find("url")->asString()).body, "content");
    caller.control("reset", "{}");
    EXPECT_EQ(caller.server->state().find("googledrive")->find("uploads")->asInt64(), 0);
}

} // namespace zelto
