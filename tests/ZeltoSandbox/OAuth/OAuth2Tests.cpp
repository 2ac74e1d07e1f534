#include <ZeltoSandbox/SandboxCaller.h>

#include <Platform/Base64.h>
#include <Platform/Crypto/Digest.h>
#include <Platform/Date.h>
#include <Platform/PercentEncoding.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Items = SandboxCaller::Items;

// What a client has to know of a service. Repeated here, so that a mistake in the sandbox's table is found.
struct Facts {
    const char* service;
    const char* page;
    const char* pagePath;
    const char* host;
    const char* path;
    bool basic;
    Items extra; // of the page's query
    int lifetime;
    bool refreshes;
    const char* next; // the refresh token of a refresh's response: "none", "same", "new"
};

const Facts services[] = {
    {"Asana",
     "app.asana.com",
     "/-/oauth_authorize",
     "app.asana.com",
     "/-/oauth_token",
     false,
     {},
     3600,
     true,
     "none"},
    {"Dropbox",
     "www.dropbox.com",
     "/oauth2/authorize",
     "api.dropboxapi.com",
     "/oauth2/token",
     false,
     {{"token_access_type", "offline"}},
     14400,
     true,
     "none"},
    {"GoogleDrive",
     "accounts.google.com",
     "/o/oauth2/v2/auth",
     "www.googleapis.com",
     "/oauth2/v4/token",
     false,
     {{"scope", "a b"}, {"access_type", "offline"}},
     3599,
     true,
     "none"},
    {"GoTo",
     "authentication.logmeininc.com",
     "/oauth/authorize",
     "authentication.logmeininc.com",
     "/oauth/token",
     true,
     {},
     3600,
     true,
     "new"},
    {"Hubspot",
     "app-eu1.hubspot.com",
     "/oauth/authorize",
     "api.hubapi.com",
     "/oauth/v1/token",
     false,
     {{"scope", "oauth"}},
     1800,
     true,
     "same"},
    {"MicrosoftTeams",
     "login.microsoftonline.com",
     "/organizations/oauth2/v2.0/authorize",
     "login.microsoftonline.com",
     "/organizations/oauth2/v2.0/token",
     false,
     {{"scope", "offline_access x"}},
     3599,
     true,
     "new"},
    {"Notion",
     "api.notion.com",
     "/v1/oauth/authorize",
     "api.notion.com",
     "/v1/oauth/token",
     true,
     {{"owner", "user"}},
     0,
     true,
     "new"},
    {"OneNote",
     "login.microsoftonline.com",
     "/common/oauth2/v2.0/authorize",
     "login.microsoftonline.com",
     "/common/oauth2/v2.0/token",
     false,
     {{"scope", "offline_access x"}},
     3599,
     true,
     "new"},
    {"Slack",
     "slack.com",
     "/oauth/v2/authorize",
     "slack.com",
     "/api/oauth.v2.access",
     false,
     {{"scope", "chat:write"}},
     0,
     false,
     ""},
    {"TickTick",
     "ticktick.com",
     "/oauth/authorize",
     "ticktick.com",
     "/oauth/token",
     true,
     {{"scope", "tasks:write"}},
     15551999,
     false,
     ""},
    {"Todoist",
     "todoist.com",
     "/oauth/authorize",
     "todoist.com",
     "/oauth/access_token",
     false,
     {{"scope", "data:read_write"}},
     0,
     false,
     ""},
    {"Zoom", "zoom.us", "/oauth/authorize", "zoom.us", "/oauth/token", true, {}, 3599, true, "new"},
};

const Facts& facts(std::string_view service) {
    return *std::ranges::find(services, service, &Facts::service);
}

const std::string redirect = "http://127.0.0.1:5555/sign-in/x";
const std::string verifier(64, 'v');

std::string challenge() {
    return base64URLEncoded(viewOf(sha256(verifier)));
}

std::string clientID(const Facts& service) {
    return std::string("placeholder-id-of-") + service.service;
}

std::string clientSecret(const Facts& service) {
    return std::string("placeholder-secret-of-") + service.service;
}

void set(Items& items, const std::string& name, std::optional<std::string> value) {
    std::erase_if(items, [&](const URLQueryItem& item) { return item.name == name; });
    if (value) {
        items.push_back({name, std::move(value)});
    }
}

Items pageItems(const Facts& service) {
    Items items{{"response_type", "code"},       {"client_id", clientID(service)},
                {"redirect_uri", redirect},      {"state", "the state & more"},
                {"code_challenge", challenge()}, {"code_challenge_method", "S256"},
                {"sandbox_consent", "allow"}};
    items.insert(items.end(), service.extra.begin(), service.extra.end());
    return items;
}

CallerResponse page(const SandboxCaller& caller, const Facts& service, const Items& items) {
    return caller.get(service.page, service.pagePath + ("?" + formText(items)));
}

std::string codeFor(const SandboxCaller& caller, const Facts& service) {
    return page(caller, service, pageItems(service)).redirectItem("code").value_or("");
}

std::string basicHeader(const std::string& id, const std::string& secret) {
    return "Authorization: Basic " + base64Encoded(id + ":" + secret) + "\r\n";
}

Items withClient(const Facts& service, Items items) {
    if (!service.basic) {
        items.push_back({"client_id", clientID(service)});
        items.push_back({"client_secret", clientSecret(service)});
    }
    return items;
}

CallerResponse token(const SandboxCaller& caller, const Facts& service, const Items& items) {
    return caller.postForm(service.host, service.path, withClient(service, items),
                           service.basic ? basicHeader(clientID(service), clientSecret(service)) : "");
}

Items codeItems(const std::string& code) {
    return {{"grant_type", "authorization_code"},
            {"code", code},
            {"redirect_uri", redirect},
            {"code_verifier", verifier}};
}

CallerResponse refresh(const SandboxCaller& caller, const Facts& service, const std::string& refreshToken) {
    return token(caller, service, {{"grant_type", "refresh_token"}, {"refresh_token", refreshToken}});
}

std::string errorOf(const CallerResponse& response) {
    return std::to_string(response.status) + " " + response.text("error");
}

} // namespace

class EachOAuth2Service : public testing::TestWithParam<Facts> {};

TEST_P(EachOAuth2Service, GivesTokensForACodeByItsOwnRules) {
    const SandboxCaller caller;
    const auto& service = GetParam();
    const auto response = page(caller, service, pageItems(service));
    ASSERT_EQ(response.status, 303);
    EXPECT_EQ(response.redirectItem("state"), "the state & more");
    const auto tokens = token(caller, service, codeItems(response.redirectItem("code").value_or("")));
    ASSERT_EQ(tokens.status, 200) << tokens.body;
    EXPECT_EQ(tokens.field("Cache-Control"), "no-store");
    EXPECT_NE(tokens.text("access_token"), "(none)");
    EXPECT_EQ(tokens.text("refresh_token") != "(none)", service.refreshes);
    const auto document = tokens.json();
    const auto* lifetime = document.find("expires_in");
    EXPECT_EQ(lifetime ? lifetime->asInt64() : 0, service.lifetime);
}

TEST_P(EachOAuth2Service, RefreshesByItsOwnRules) {
    const SandboxCaller caller;
    const auto& service = GetParam();
    const auto tokens = token(caller, service, codeItems(codeFor(caller, service)));
    const auto first = tokens.text("refresh_token");
    const auto response = refresh(caller, service, first);
    if (!service.refreshes) {
        EXPECT_TRUE(response.status == 400 || response.text("ok") != "true");
        EXPECT_NE(response.body.find("unsupported_grant_type"), std::string::npos);
        return;
    }
    ASSERT_EQ(response.status, 200) << response.body;
    EXPECT_NE(response.text("access_token"), tokens.text("access_token"));
    const auto next = response.text("refresh_token");
    const auto kind = next == "(none)" ? "none" : next == first ? "same" : "new";
    EXPECT_STREQ(kind, service.next);
    EXPECT_EQ(errorOf(refresh(caller, service, first)),
              kind == std::string("new") ? "400 invalid_grant" : "200 (none)");
}

TEST_P(EachOAuth2Service, WantsTheClientToAuthenticateInItsOwnWay) {
    const SandboxCaller caller;
    const auto& service = GetParam();
    auto items = codeItems(codeFor(caller, service));
    const auto header = basicHeader(clientID(service), clientSecret(service));
    auto other = items;
    if (service.basic) {
        other.push_back({"client_id", clientID(service)});
        other.push_back({"client_secret", clientSecret(service)});
    }
    const auto wrongWay = caller.postForm(service.host, service.path, other, service.basic ? "" : header);
    EXPECT_NE(wrongWay.body.find("invalid_client"), std::string::npos) << wrongWay.body;
    auto wrongSecret = withClient(service, items);
    if (!service.basic) {
        set(wrongSecret, "client_secret", "another");
    }
    const auto refused = caller.postForm(service.host, service.path, wrongSecret,
                                         service.basic ? basicHeader(clientID(service), "another") : "");
    EXPECT_NE(refused.body.find("invalid_client"), std::string::npos) << refused.body;
    EXPECT_EQ(token(caller, service, items).status, 200);
}

INSTANTIATE_TEST_SUITE_P(OAuth2, EachOAuth2Service, testing::ValuesIn(services),
                         [](const auto& each) { return std::string(each.param.service); });

TEST(OAuth2Page, AsksAndSendsBackWithTheDecision) {
    const SandboxCaller caller;
    const auto& asana = facts("Asana");
    auto items = pageItems(asana);
    set(items, "sandbox_consent", std::nullopt);
    set(items, "client_id", "<script>alert(1)</script>");
    for (const auto* decision : {"allow", "deny"}) {
        const auto target = "/host/app.asana.com/-/oauth_authorize";
        const auto question = caller.get(caller.ownHost(), target + ("?" + formText(items)));
        ASSERT_EQ(question.status, 200);
        EXPECT_EQ(question.body.find("<script"), std::string::npos);
        EXPECT_NE(question.body.find("&lt;script&gt;"), std::string::npos);
        EXPECT_NE(question.body.find(std::string("action=\"") + target + "\""), std::string::npos);
        EXPECT_EQ(question.field("Content-Security-Policy"),
                  "default-src 'none'; style-src 'self'; base-uri 'none'; frame-ancestors 'none'; "
                  "form-action 'self' "
                  "http://127.0.0.1:5555");
        EXPECT_EQ(question.field("X-Content-Type-Options"), "nosniff");
        const Items form{{"consent", hiddenField(question.body, "consent")}, {"decision", decision}};
        const auto response = caller.postForm(caller.ownHost(), target, form);
        EXPECT_EQ(response.status, 303);
        EXPECT_EQ(response.redirectItem("state"), "the state & more");
        EXPECT_EQ(response.redirectItem("code").has_value(), decision == std::string("allow"));
        EXPECT_EQ(response.redirectItem("error").value_or(""),
                  decision == std::string("allow") ? "" : "access_denied");
        // A page is valid for one decision.
        EXPECT_EQ(caller.postForm(caller.ownHost(), target, form).status, 400);
    }
}

TEST(OAuth2Page, DecidesByItselfByHeaderQueryItemOrSetting) {
    const SandboxCaller caller;
    const auto& zoom = facts("Zoom");
    auto items = pageItems(zoom);
    set(items, "sandbox_consent", "deny");
    EXPECT_EQ(page(caller, zoom, items).redirectItem("error"), "access_denied");
    set(items, "sandbox_consent", std::nullopt);
    const auto target = zoom.pagePath + ("?" + formText(items));
    EXPECT_EQ(caller.get(zoom.page, target).status, 200);
    EXPECT_TRUE(caller.get(zoom.page, target, "Zelto-Sandbox-Consent: allow\r\n").redirectItem("code"));
    caller.server->setConsent(SandboxConsent::allow);
    EXPECT_TRUE(caller.get(zoom.page, target).redirectItem("code"));
    EXPECT_EQ(caller.control("settings", R"({"consent":"deny"})").status, 204);
    EXPECT_EQ(caller.get(zoom.page, target).redirectItem("error"), "access_denied");
}

TEST(OAuth2Page, SendsNobodyToAnAddressThatIsNotTheClients) {
    const SandboxCaller caller;

    struct Row {
        const char* service;
        const char* address;
        bool isGood;
    };

    constexpr Row rows[] = {
        {"Asana", "http://127.0.0.1:1/x", true},
        {"Asana", "http://[::1]:99/", true},
        {"Asana", "http://localhost:8/", true},
        {"Asana", "https://www.zelto.example/oauth-redirect/asana", true},
        {"Asana", "https://www.zelto.example/oauth-redirect/notion", false},
        {"Asana", "http://www.zelto.example/oauth-redirect/asana", false},
        {"Asana", "http://127.0.0.1.example.com/", false},
        {"Asana", "http://user@127.0.0.1/", false},
        {"Asana", "http://127.0.0.1/#x", false},
        {"Asana", "oauth.redirect.com.quendra.trovenhal://auth/onenote", false},
        {"Asana", "javascript:alert(1)", false},
        {"Asana", "", false},
        {"OneNote", "oauth.redirect.com.quendra.trovenhal://auth/onenote", true},
        {"OneNote", "oauth.redirect.com.quendra.trovenhal://auth/trello", false},
        {"OneNote", "https://www.zelto.example/oauth-redirect/onenote", false},
    };
    for (const auto& row : rows) {
        auto items = pageItems(facts(row.service));
        set(items, "redirect_uri", row.address);
        const auto response = page(caller, facts(row.service), items);
        EXPECT_EQ(response.status, row.isGood ? 303 : 400) << row.service << " " << row.address;
        EXPECT_EQ(response.field("Location").empty(), !row.isGood);
    }
    auto items = pageItems(facts("Asana"));
    set(items, "client_id", std::nullopt);
    EXPECT_EQ(page(caller, facts("Asana"), items).status, 400);
}

TEST(OAuth2Page, SendsTheClientWhatIsWrong) {
    const SandboxCaller caller;
    const auto errorWith = [&](const char* service, const std::string& name,
                               std::optional<std::string> value) {
        auto items = pageItems(facts(service));
        set(items, name, std::move(value));
        const auto response = page(caller, facts(service), items);
        EXPECT_EQ(response.redirectItem("state"), "the state & more");
        return response.redirectItem("error").value_or("");
    };
    EXPECT_EQ(errorWith("Asana", "response_type", "token"), "unsupported_response_type");
    EXPECT_EQ(errorWith("Asana", "response_type", std::nullopt), "unsupported_response_type");
    EXPECT_EQ(errorWith("Asana", "code_challenge_method", "plain"), "invalid_request");
    EXPECT_EQ(errorWith("Asana", "code_challenge_method", std::nullopt), "invalid_request");
    EXPECT_EQ(errorWith("Asana", "code_challenge", "short"), "invalid_request");
    EXPECT_EQ(errorWith("Asana", "code_challenge", std::nullopt), "invalid_request");
    EXPECT_EQ(errorWith("Notion", "owner", std::nullopt), "invalid_request");
    EXPECT_EQ(errorWith("Todoist", "scope", std::nullopt), "invalid_scope");
}

TEST(OAuth2Page, GivesARefreshTokenOnlyWhereItIsAskedFor) {
    const SandboxCaller caller;
    for (const auto* service : {"Dropbox", "GoogleDrive", "OneNote"}) {
        const auto& row = facts(service);
        auto items = pageItems(row);
        set(items, "token_access_type", std::nullopt);
        set(items, "access_type", std::nullopt);
        set(items, "scope", "x");
        const auto code = page(caller, row, items).redirectItem("code").value_or("");
        EXPECT_EQ(token(caller, row, codeItems(code)).text("refresh_token"), "(none)") << service;
    }
}

TEST(OAuth2Page, OfMeisterTaskGivesTheTokenInTheFragment) {
    const SandboxCaller caller;
    const auto target = "/oauth2/authorize?" + formText({{"response_type", "token"},
                                                         {"client_id", "c"},
                                                         {"redirect_uri", redirect},
                                                         {"scope", "meistertask"},
                                                         {"state", "s"},
                                                         {"sandbox_consent", "allow"}});
    const auto response = caller.get("www.mindmeister.com", target);
    ASSERT_EQ(response.status, 303);
    EXPECT_TRUE(response.field("Location").starts_with(redirect + "#access_token="));
    EXPECT_EQ(response.redirectItem("state"), "s");
    const auto bearer =
        "Authorization: Bearer " + response.redirectItem("access_token").value_or("") + "\r\n";
    EXPECT_EQ(caller.get("www.meistertask.com", "/api/projects", bearer).status, 501);
    EXPECT_EQ(caller.get("www.meistertask.com", "/api/projects").status, 401);
}

TEST(OAuth2Token, OfSlackHasTheUsersTokenInAnObjectOfItsOwn) {
    const SandboxCaller caller;
    const auto& slack = facts("Slack");
    auto items = pageItems(slack);
    set(items, "scope", std::nullopt);
    set(items, "user_scope", "chat:write,users:read");
    const auto tokens =
        token(caller, slack, codeItems(page(caller, slack, items).redirectItem("code").value_or("")));
    const auto document = tokens.json();
    EXPECT_EQ(document.find("ok")->asBool(), true);
    EXPECT_EQ(document.find("access_token"), nullptr);
    const auto* user = document.find("authed_user");
    ASSERT_TRUE(user && user->find("access_token"));
    EXPECT_EQ(*user->find("scope")->asString(), "chat:write,users:read");
    const auto failed = token(caller, slack, codeItems("nothing"));
    EXPECT_EQ(failed.status, 200);
    EXPECT_EQ(failed.body, R"({"ok":false,"error":"invalid_code"})");
}

TEST(OAuth2Token, RefusesACodeThatDoesNotBelongToTheRequest) {
    const SandboxCaller caller;
    const auto& asana = facts("Asana");

    struct Row {
        const char* name;
        std::optional<std::string> value;
    };

    const Row rows[] = {{"code", "unknown"},
                        {"code", std::nullopt},
                        {"redirect_uri", "http://127.0.0.1:5555/other"},
                        {"redirect_uri", std::nullopt},
                        {"code_verifier", std::string(64, 'w')},
                        {"code_verifier", challenge()},
                        {"code_verifier", std::nullopt}};
    for (const auto& row : rows) {
        auto items = codeItems(codeFor(caller, asana));
        set(items, row.name, row.value);
        EXPECT_EQ(errorOf(token(caller, asana, items)), "400 invalid_grant") << row.name;
    }
    const auto code = codeFor(caller, asana);
    auto items = withClient(asana, codeItems(code));
    set(items, "client_id", "another");
    EXPECT_EQ(errorOf(caller.postForm(asana.host, asana.path, items)), "400 invalid_grant");
    EXPECT_EQ(errorOf(token(caller, facts("Dropbox"), codeItems(codeFor(caller, asana)))),
              "400 invalid_grant");
}

TEST(OAuth2Token, RefusesAVerifierWithoutAChallenge) {
    const SandboxCaller caller;
    auto items = pageItems(facts("Asana"));
    set(items, "code_challenge", std::nullopt);
    set(items, "code_challenge_method", std::nullopt);
    const auto code = page(caller, facts("Asana"), items).redirectItem("code").value_or("");
    EXPECT_EQ(errorOf(token(caller, facts("Asana"), codeItems(code))), "400 invalid_grant");
}

TEST(OAuth2Token, TakesACodeOnceAndRevokesWhatItGave) {
    const SandboxCaller caller;
    const auto& zoom = facts("Zoom");
    const auto code = codeFor(caller, zoom);
    const auto tokens = token(caller, zoom, codeItems(code));
    const auto bearer = "Authorization: Bearer " + tokens.text("access_token") + "\r\n";
    EXPECT_EQ(caller.get("api.zoom.us", "/v2/x", bearer).status, 404);
    EXPECT_EQ(errorOf(token(caller, zoom, codeItems(code))), "400 invalid_grant");
    EXPECT_EQ(caller.get("api.zoom.us", "/v2/x", bearer).status, 401);
    EXPECT_EQ(errorOf(refresh(caller, zoom, tokens.text("refresh_token"))), "400 invalid_grant");
}

TEST(OAuth2Token, TakesACodeForTwoMinutesAndATokenForItsLifetime) {
    ClockOverride clock(Date::fromUnixSeconds(1'800'000'000));
    const SandboxCaller caller;
    const auto& zoom = facts("Zoom");
    const auto late = codeFor(caller, zoom);
    const auto soon = codeFor(caller, zoom);
    clock.advance(TimeInterval(119));
    const auto tokens = token(caller, zoom, codeItems(soon));
    EXPECT_EQ(tokens.status, 200);
    clock.advance(TimeInterval(1));
    EXPECT_EQ(errorOf(token(caller, zoom, codeItems(late))), "400 invalid_grant");
    const auto bearer = "Authorization: Bearer " + tokens.text("access_token") + "\r\n";
    clock.advance(TimeInterval(3597));
    EXPECT_EQ(caller.get("api.zoom.us", "/v2/x", bearer).status, 404);
    clock.advance(TimeInterval(1));
    EXPECT_EQ(caller.get("api.zoom.us", "/v2/x", bearer).status, 401);
    EXPECT_EQ(caller.server->requests().back().problem, "the access token has expired");
}

TEST(OAuth2Token, RefusesWhatIsNoTokenRequest) {
    const SandboxCaller caller;
    const auto& asana = facts("Asana");
    EXPECT_EQ(caller.get(asana.host, asana.path).status, 405);
    const auto good = withClient(asana, codeItems("x"));
    EXPECT_EQ(errorOf(caller.post(asana.host, asana.path, "application/json", "{}")), "400 invalid_request");
    EXPECT_EQ(errorOf(caller.post(asana.host, asana.path, "text/plain", formText(good))),
              "400 invalid_request");
    EXPECT_EQ(errorOf(caller.post(asana.host, asana.path, "application/x-www-form-urlencoded", "a=%zz")),
              "400 invalid_request");
    auto twice = good;
    twice.push_back({"code", "y"});
    EXPECT_EQ(errorOf(caller.postForm(asana.host, asana.path, twice)), "400 invalid_request");
    auto items = good;
    set(items, "grant_type", "password");
    EXPECT_EQ(errorOf(caller.postForm(asana.host, asana.path, items)), "400 unsupported_grant_type");
    set(items, "client_secret", "");
    const auto refused = caller.postForm(asana.host, asana.path, items);
    EXPECT_EQ(errorOf(refused), "401 invalid_client");
    EXPECT_EQ(refused.field("WWW-Authenticate"), "Basic realm=\"Asana\"");
    EXPECT_EQ(caller.postForm("zoom.us", "/oauth/token", {}, "Authorization: Basic !!!\r\n").status, 401);
}

TEST(OAuth2Token, OfNotionIsGivenForJSONToo) {
    const SandboxCaller caller;
    const auto& notion = facts("Notion");
    JSONObject body;
    for (const auto& item : codeItems(codeFor(caller, notion))) {
        body.set(item.name, *item.value);
    }
    const auto tokens = caller.post(notion.host, notion.path, "application/json", *JSONValue(body).text(),
                                    basicHeader(clientID(notion), clientSecret(notion)));
    EXPECT_EQ(tokens.status, 200) << tokens.body;
    EXPECT_EQ(tokens.text("workspace_name"), "Sandbox");
}

TEST(OAuth2Token, IsGoodForItsOwnServiceAlone) {
    const SandboxCaller caller;
    const auto tokens = caller.server->issueTokens("Zoom");
    const auto bearer = "Authorization: Bearer " + tokens->accessToken + "\r\n";
    EXPECT_EQ(caller.get("api.zoom.us", "/v2/x", bearer).status, 404);
    EXPECT_EQ(caller.get("api.hubapi.com", "/x", bearer).status, 401);
    const auto ofTeams = caller.server->issueTokens("MicrosoftTeams");
    EXPECT_EQ(
        caller
            .get("graph.microsoft.com", "/v1.0/me", "Authorization: Bearer " + ofTeams->accessToken + "\r\n")
            .status,
        400);
    EXPECT_EQ(caller.server->requests().back().service, "MicrosoftTeams");
    EXPECT_FALSE(caller.server->issueTokens("Instapaper"));
    EXPECT_FALSE(caller.server->issueTokens("Nobody"));
}

TEST(OAuth2Token, OfAnyClientIsRefreshedWhenTheSandboxIssuedIt) {
    const SandboxCaller caller;
    const auto tokens = caller.server->issueTokens("Zoom");
    const auto& zoom = facts("Zoom");
    const auto response = caller.postForm(
        zoom.host, zoom.path, {{"grant_type", "refresh_token"}, {"refresh_token", tokens->refreshToken}},
        basicHeader("my-client", "my-secret"));
    EXPECT_EQ(response.status, 200) << response.body;
}

} // namespace zelto
