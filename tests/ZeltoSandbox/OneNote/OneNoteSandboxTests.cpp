#include <ZeltoSandbox/Graph/GraphRefusal.h>
#include <ZeltoSandbox/MultipartBody.h>
#include <ZeltoSandbox/SandboxCaller.h>

#include <Platform/Date.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

const std::string host = "graph.microsoft.com";
const std::string relaunch = "1-5a4d0000-0000-4000-8000-000000000002";
const std::string full = "1-5a4d0000-0000-4000-8000-000000000004";

std::string document(const std::string& body) {
    return "<html><head><title>Kick-off &amp; more</title></head><body>" + body + "</body></html>";
}

std::string object(const std::string& part, const std::string& file = "a.txt") {
    return "<object data-attachment=\"" + file + "\" data=\"name:" + part + "\" type=\"text/plain\" />";
}

class OneNoteSandboxTest : public testing::Test {
  protected:
    std::string authorization() const { return "Authorization: Bearer " + token + "\r\n"; }

    CallerResponse get(const std::string& path) const {
        return caller.get(host, "/v1.0/" + path, authorization());
    }

    CallerResponse post(const MultipartBody& body, const std::string& section = relaunch) const {
        return caller.post(host, "/v1.0/me/onenote/sections/" + section + "/pages", body.type(), body.text(),
                           authorization());
    }

    static MultipartBody page(const std::string& body) {
        return MultipartBody().file("Presentation", "p", "text/html", document(body));
    }

    // Of a page with two files whose HTML is this.
    std::string withTwoFiles(const std::string& body) const {
        return refusal(
            post(page(body).file("one", "a", "text/plain", "1").file("two", "b", "text/plain", "2")));
    }

    // The pages of the first section.
    JSONValue::Array pages() const {
        const auto state = caller.server->state();
        const auto& notebook = state.find("onenote")->find("notebooks")->asArray()->front();
        return *notebook.find("sections")->asArray()->front().find("pages")->asArray();
    }

    SandboxCaller caller;
    std::string token = caller.server->issueTokens("OneNote")->accessToken;
};

} // namespace

TEST_F(OneNoteSandboxTest, RefusesARequestWithoutAGoodToken) {
    const std::string refused =
        "401 InvalidAuthenticationToken The access token is missing, invalid or expired.";
    EXPECT_EQ(refusal(caller.get(host, "/v1.0/me")), refused);
    EXPECT_EQ(caller.server->requests().back().problem, "there is no bearer token");
    EXPECT_EQ(refusal(caller.get(host, "/v1.0/me", "Authorization: Bearer wrong\r\n")), refused);
    EXPECT_EQ(get("me").status, 200);
    caller.server->expireTokens("OneNote");
    EXPECT_EQ(refusal(get("me")), refused);
}

TEST_F(OneNoteSandboxTest, ChecksTheScopeOfEachEndpointWithItsResourceOrWithout) {
    const auto signedIn = [&](const std::string& scope) {
        const auto authorized =
            caller.get("login.microsoftonline.com",
                       "/common/oauth2/v2.0/authorize?response_type=code&client_id=id&state=s&redirect_uri="
                       "http%3A%2F%2F127.0.0.1%2F&sandbox_consent=allow&scope=" +
                           scope);
        return caller
            .postForm("login.microsoftonline.com", "/common/oauth2/v2.0/token",
                      {{"grant_type", "authorization_code"},
                       {"client_id", "id"},
                       {"client_secret", "secret"},
                       {"redirect_uri", "http://127.0.0.1/"},
                       {"code", authorized.redirectItem("code").value_or("")}})
            .text("access_token");
    };
    token = signedIn("User.Read");
    EXPECT_EQ(get("me").status, 200);
    EXPECT_EQ(refusal(get("me/onenote/notebooks")),
              "403 40004 The request does not have the scopes that it needs.");
    token = signedIn("https%3A%2F%2Fgraph.microsoft.com%2FNotes.Create");
    EXPECT_EQ(get("me").status, 403);
    EXPECT_EQ(get("me/onenote/notebooks").status, 200);
    EXPECT_EQ(caller.server->requests().back().problem, "");
}

TEST_F(OneNoteSandboxTest, GivesTheUserWhoseNameToSignInWithIsNoEmail) {
    const auto user = get("me").json();
    EXPECT_EQ(*user.find("mail")->asString(), "robin@sandbox.example");
    EXPECT_FALSE(user.find("userPrincipalName")->asString()->contains('@'));
    EXPECT_EQ(*user.find("displayName")->asString(), "Robin Sandbox");
}

TEST_F(OneNoteSandboxTest, ListsNotebooksAndTheSectionsOfAll) {
    std::vector<std::string> notebooks;
    const auto listed = get("me/onenote/notebooks").json();
    for (const auto& each : *listed.find("value")->asArray()) {
        notebooks.push_back(*each.find("displayName")->asString());
    }
    EXPECT_EQ(notebooks,
              (std::vector<std::string>{"Lighthouse", "No sections yet", "Große Bibliothek 図書館"}));
    std::vector<std::string> sections;
    const auto listedSections = get("me/onenote/sections").json();
    for (const auto& each : *listedSections.find("value")->asArray()) {
        sections.push_back(*each.find("parentNotebook")->find("displayName")->asString() + "/" +
                           *each.find("displayName")->asString());
    }
    EXPECT_EQ(sections, (std::vector<std::string>{
                            "Lighthouse/Relaunch", "Lighthouse/Büro & Zuhause 🏡", "Lighthouse/Archive (full)",
                            "Große Bibliothek 図書館/Читальный зал", "Große Bibliothek 図書館/Relaunch"}));
}

TEST_F(OneNoteSandboxTest, MakesAPageWithItsFiles) {
    const auto made = post(page("<p>Hello<br></p>" + object("one", "Agenda für 2027.txt"))
                               .file("one", "other", "text/plain", "Kick-off"));
    ASSERT_EQ(made.status, 201) << made.body;
    EXPECT_EQ(made.text("title"), "Kick-off & more");
    EXPECT_EQ(made.field("Location"), made.text("self"));
    const auto all = pages();
    ASSERT_EQ(all.size(), 1U);
    EXPECT_EQ(*all[0].find("title")->asString(), "Kick-off & more");
    EXPECT_EQ(*all[0].find("id")->asString(), made.text("id"));
    const auto& file = all[0].find("files")->asArray()->front();
    EXPECT_EQ(*file.find("name")->asString(), "Agenda für 2027.txt");
    EXPECT_EQ(*file.find("mediaType")->asString(), "text/plain");
    EXPECT_EQ(caller.get(caller.ownHost(), *file.find("url")->asString()).body, "Kick-off");
}

TEST_F(OneNoteSandboxTest, ShowsAPageInAFrameThatRunsAndLoadsNothing) {
    ASSERT_EQ(post(page("<p onclick=\"run()\">Hello</p><script>run()</script>")).status, 201);
    const auto shown = caller.get(caller.ownHost(), *pages().front().find("url")->asString());
    EXPECT_EQ(shown.field("Content-Type"), "text/html; charset=utf-8");
    EXPECT_EQ(shown.field("Content-Security-Policy"),
              "default-src 'none'; img-src data:; style-src 'unsafe-inline'; "
              "frame-ancestors 'self'; sandbox");
    EXPECT_EQ(shown.field("X-Frame-Options"), "SAMEORIGIN");
    EXPECT_EQ(shown.field("X-Content-Type-Options"), "nosniff");
    EXPECT_NE(shown.body.find("<p>Hello</p>"), std::string::npos) << shown.body;
    EXPECT_EQ(shown.body.find("run()"), std::string::npos) << shown.body;
}

TEST_F(OneNoteSandboxTest, RefusesWhatIsNoFormOfAPage) {
    EXPECT_EQ(refusal(caller.post(host, "/v1.0/me/onenote/sections/" + relaunch + "/pages", "text/html",
                                  document(""), authorization())),
              "415 UnsupportedMediaType The request is no multipart/form-data.");
    EXPECT_EQ(
        refusal(caller.post(
            host, "/v1.0/me/onenote/sections/" + relaunch + "/pages", "multipart/form-data; boundary=XX",
            "--XX\nContent-Disposition: form-data; name=\"Presentation\"\n\nx\n--XX--\n", authorization())),
        "400 10017 The form is malformed: a boundary is not followed by a line end.");
    EXPECT_EQ(refusal(post(MultipartBody().file("x", "x", "text/html", document("")))),
              "400 20001 The request has no part named Presentation.");
    EXPECT_EQ(refusal(post(page("").file("Presentation", "p", "text/html", document("")))),
              "400 20002 The request has more than one part named Presentation.");
    EXPECT_EQ(refusal(post(MultipartBody()
                               .file("one", "a", "text/plain", "1")
                               .file("Presentation", "p", "text/html", document(object("one"))))),
              "400 10017 The part named Presentation is not the first one.");
    EXPECT_EQ(refusal(post(MultipartBody().file("Presentation", "p", "text/plain", document("")))),
              "400 20003 The part named Presentation is neither text/html nor application/xhtml+xml.");
    EXPECT_EQ(refusal(post(page("<p>one<p>two"))),
              "400 10017 The part named Presentation is not well-formed: </body> ends <p> (line 1).");
    EXPECT_EQ(pages().size(), 0U);
}

TEST_F(OneNoteSandboxTest, WantsEveryPartNamedOnceAndEveryNameToHaveItsPart) {
    EXPECT_EQ(withTwoFiles(object("one")),
              "400 10017 The HTML does not refer once to the part named \"two\".");
    EXPECT_EQ(withTwoFiles(object("one") + object("two") + object("two")),
              "400 10017 The HTML does not refer once to the part named \"two\".");
    EXPECT_EQ(withTwoFiles(object("one") + object("two") + object("three")),
              "400 10017 There is not one part named \"three\", to which the HTML refers.");
    EXPECT_EQ(
        refusal(post(
            page(object("one")).file("one", "a", "text/plain", "1").file("one", "b", "text/plain", "2"))),
        "400 10017 There is not one part named \"one\", to which the HTML refers.");
    EXPECT_EQ(pages().size(), 0U);
}

TEST_F(OneNoteSandboxTest, RefusesAnUnknownSectionAFullOneAndAnUnknownPath) {
    EXPECT_EQ(refusal(post(page(""), "unknown")), "404 20102 The specified resource does not exist.");
    EXPECT_EQ(refusal(post(page(""), full)), "507 30102 The section is full: it takes no more pages.");
    EXPECT_EQ(refusal(get("me/onenote/pages")),
              "400 BadRequest Resource not found for the path of this request.");
}

TEST_F(OneNoteSandboxTest, TakesPartsUpToTheLimitThatIsSet) {
    caller.control("settings", R"({"attachmentLimit":200})");
    const auto ofSize = [&](std::size_t size) {
        return post(page(object("one")).file("one", "big.bin", "text/plain", std::string(size, 'x')));
    };
    EXPECT_EQ(ofSize(199).status, 201);
    EXPECT_EQ(ofSize(200).status, 201);
    EXPECT_EQ(refusal(ofSize(201)),
              "413 RequestEntityTooLarge The part \"big.bin\" is larger than 200 bytes.");
}

TEST_F(OneNoteSandboxTest, HoldsARequestToThePublishedLimitsWhereThatIsSet) {
    const auto withFiles = [&](int count, std::size_t size) {
        std::string objects;
        MultipartBody files;
        for (int i = 0; i < count; ++i) {
            objects += object("p" + std::to_string(i));
        }
        auto body = page(objects);
        for (int i = 0; i < count; ++i) {
            body.file("p" + std::to_string(i), "a" + std::to_string(i), "text/plain", std::string(size, 'x'));
        }
        const auto response = post(body);
        return response.status == 201 ? "201" : refusal(response);
    };
    EXPECT_EQ(withFiles(6, 1), "201");
    EXPECT_EQ(caller.control("settings", R"({"publishedLimits":true})").status, 204);
    EXPECT_EQ(withFiles(5, 1), "201");
    EXPECT_EQ(withFiles(6, 1),
              "413 RequestEntityTooLarge The request has 7 parts; it may have 6, the Presentation included.");
    EXPECT_EQ(withFiles(1, 25'000'000), "201");
    EXPECT_EQ(withFiles(1, 25'000'001), "413 RequestEntityTooLarge The part \"a0\" is larger than 25 MB.");
    EXPECT_EQ(withFiles(3, 23'000'000), "201");
    EXPECT_EQ(withFiles(3, 23'400'000), "413 RequestEntityTooLarge The request is larger than 70 MB.");
    EXPECT_EQ(caller.control("settings", R"({"publishedLimits":1})").status, 400);
}

TEST_F(OneNoteSandboxTest, RefusesInItsOwnWordsForAFault) {
    const auto faulty = [&](int status) {
        caller.control("faults", R"({"host":"graph.microsoft.com","status":)" + std::to_string(status) + "}");
        return get("me");
    };
    const auto tooMany = faulty(429);
    EXPECT_EQ(refusal(tooMany), "429 20166 The application has made too many requests for this user.");
    EXPECT_EQ(tooMany.field("Retry-After"), "30");
    const auto away = faulty(503);
    EXPECT_EQ(refusal(away), "503 10002 The service is not available now. Try again later.");
    EXPECT_EQ(away.field("Retry-After"), "30");
    EXPECT_EQ(refusal(faulty(500)), "500 10001 Internal Server Error");
    EXPECT_EQ(refusal(faulty(409)), "409 10017 Conflict");
}

TEST_F(OneNoteSandboxTest, IsEmptyAfterAReset) {
    ASSERT_EQ(post(page("")).status, 201);
    caller.control("reset", "{}");
    EXPECT_EQ(pages().size(), 0U);
}

} // namespace zelto
