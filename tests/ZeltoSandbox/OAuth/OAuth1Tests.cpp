#include <ZeltoSandbox/SandboxCaller.h>

#include <Platform/Date.h>
#include <Platform/PercentEncoding.h>
#include <ZeltoSandbox/OAuth/OAuth1Signature.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Items = SandboxCaller::Items;

const std::string callback = "http://127.0.0.1:5555/sign-in/trello?x=1";

struct Call {
    std::string service = "Trello";
    std::string host = "trello.com";
    std::string path = "/1/OAuthGetRequestToken";
    std::string method = "POST";
    std::string secret = "placeholder-secret-of-Trello";
    std::string tokenSecret = {};
    Items items = {};
};

// Everything that a request needs but its signature.
Items parameters(const std::string& service, Items further) {
    static int nonce = 0;
    Items items{{"oauth_consumer_key", "placeholder-id-of-" + service},
                {"oauth_signature_method", "HMAC-SHA1"},
                {"oauth_timestamp", std::to_string(static_cast<std::int64_t>(Date::now().unixSeconds()))},
                {"oauth_nonce", "nonce" + std::to_string(++nonce)},
                {"oauth_version", "1.0"}};
    items.insert(items.end(), further.begin(), further.end());
    return items;
}

std::string headerOf(const Call& call, const std::optional<std::string>& signature = {}) {
    auto items = call.items;
    items.push_back({"oauth_signature", signature.value_or(sandbox::oauth1Signature(
                                            call.method, "https://" + call.host + call.path, call.items,
                                            call.secret, call.tokenSecret))});
    std::string header = "Authorization: OAuth realm=\"x\"";
    for (const auto& item : items) {
        header += ", " + item.name + "=\"" +
                  percentEncodeBytes(*item.value, AllowedCharacters::alphanumerics) + "\"";
    }
    return header + "\r\n";
}

CallerResponse send(const SandboxCaller& caller, const Call& call) {
    return caller.send(call.method + " " + call.path + " HTTP/1.1\r\nHost: " + call.host + "\r\n" +
                       headerOf(call) + "Content-Length: 0\r\n\r\n");
}

Items formOf(const CallerResponse& response) {
    return parseFormItems(response.body).value_or(Items());
}

std::string valueIn(const CallerResponse& response, std::string_view name) {
    return sandbox::valueOf(formOf(response), name).value_or("");
}

Call requestToken(const std::string& back = callback) {
    return {.items = parameters("Trello", {{"oauth_callback", back}})};
}

Call accessToken(const CallerResponse& given, const std::string& verifier) {
    return {.path = "/1/OAuthGetAccessToken",
            .tokenSecret = valueIn(given, "oauth_token_secret"),
            .items = parameters(
                "Trello", {{"oauth_token", valueIn(given, "oauth_token")}, {"oauth_verifier", verifier}})};
}

CallerResponse allow(const SandboxCaller& caller, const CallerResponse& given, const std::string& more = {}) {
    return caller.get("trello.com",
                      "/1/OAuthAuthorizeToken?name=Zelto&expiration=never&scope=read,write,account"
                      "&sandbox_consent=allow&oauth_token=" +
                          valueIn(given, "oauth_token") + more);
}

} // namespace

// The request for a photo of RFC 5849, section 1.2.
TEST(OAuth1Signature, IsThatOfTheStandard) {
    EXPECT_EQ(sandbox::oauth1Signature("GET", "http://photos.example.net/photos",
                                       {{"file", "vacation.jpg"},
                                        {"size", "original"},
                                        {"oauth_consumer_key", "dpf43f3p2l4k3l03"},
                                        {"oauth_token", "nnch734d00sl2jdk"},
                                        {"oauth_signature_method", "HMAC-SHA1"},
                                        {"oauth_timestamp", "137131202"},
                                        {"oauth_nonce", "chapoH"}},
                                       "kd94hf93k423kf44", "pfkkdhi9sl3r4s00"),
              "MdpQcU8iPSUjWoN/UDMsK2sui9I=");
}

TEST(OAuth1, GivesATokenThatTrelloTakes) {
    const SandboxCaller caller;
    const auto given = send(caller, requestToken());
    ASSERT_EQ(given.status, 200) << given.body;
    EXPECT_EQ(valueIn(given, "oauth_callback_confirmed"), "true");
    const auto back = allow(caller, given);
    ASSERT_EQ(back.status, 303);
    EXPECT_TRUE(back.field("Location").starts_with(callback + "&oauth_token="));
    EXPECT_EQ(back.redirectItem("oauth_token"), valueIn(given, "oauth_token"));
    const auto access = send(caller, accessToken(given, back.redirectItem("oauth_verifier").value_or("")));
    ASSERT_EQ(access.status, 200) << access.body;
    const auto member = caller.get("api.trello.com", "/1/members/me?key=placeholder-id-of-Trello&token=" +
                                                         valueIn(access, "oauth_token"));
    EXPECT_EQ(member.text("email"), "robin@sandbox.example");
    EXPECT_EQ(
        caller.get("api.trello.com", "/1/members/me?key=another&token=" + valueIn(access, "oauth_token"))
            .body,
        "invalid key");
}

TEST(OAuth1, ShowsAPageAndReturnsWithoutAVerifierAfterADenial) {
    const SandboxCaller caller;
    const auto given = send(caller, requestToken());
    const std::string page = "/host/trello.com/1/OAuthAuthorizeToken";
    const auto question =
        caller.get(caller.ownHost(), page + "?name=%3Cb%3EMe&oauth_token=" + valueIn(given, "oauth_token"));
    EXPECT_EQ(question.status, 200);
    EXPECT_NE(question.body.find("&lt;b&gt;Me wants to use your account"), std::string::npos)
        << question.body;
    const auto denied = caller.postForm(
        caller.ownHost(), page, {{"consent", hiddenField(question.body, "consent")}, {"decision", "deny"}});
    EXPECT_EQ(denied.redirectItem("oauth_token"), valueIn(given, "oauth_token"));
    EXPECT_EQ(denied.redirectItem("oauth_verifier"), std::nullopt);
    EXPECT_EQ(send(caller, accessToken(given, "")).status, 401);
}

TEST(OAuth1, ShowsTheVerifierToWhomCannotBeSentBack) {
    const SandboxCaller caller;
    const auto given = send(caller, requestToken("oob"));
    const auto shown = allow(caller, given);
    EXPECT_EQ(shown.status, 200);
    const auto start = shown.body.find("zsb_");
    ASSERT_NE(start, std::string::npos);
    const auto verifier = shown.body.substr(start, shown.body.find('<', start) - start);
    EXPECT_EQ(send(caller, accessToken(given, verifier)).status, 200);
}

TEST(OAuth1, TakesARequestTokenOnce) {
    const SandboxCaller caller;
    const auto given = send(caller, requestToken());
    const auto verifier = allow(caller, given).redirectItem("oauth_verifier").value_or("");
    EXPECT_EQ(allow(caller, given).status, 400);
    EXPECT_EQ(send(caller, accessToken(given, verifier)).status, 200);
    EXPECT_EQ(send(caller, accessToken(given, verifier)).body, "token not found");
}

TEST(OAuth1, RefusesAWrongSignatureWhateverIsWrong) {
    const SandboxCaller caller;
    auto call = requestToken();
    call.secret = "another";
    EXPECT_EQ(send(caller, call).body, "invalid signature");
    call = requestToken();
    const auto header = headerOf(call);
    call.items.push_back({"oauth_extra", "1"});
    EXPECT_EQ(
        caller.send("POST " + call.path + "?a=b HTTP/1.1\r\nHost: trello.com\r\n" + header + "\r\n").body,
        "invalid signature");
    EXPECT_EQ(caller.send("GET " + call.path + " HTTP/1.1\r\nHost: trello.com\r\n" + header + "\r\n").body,
              "invalid signature");
    const auto given = send(caller, requestToken());
    auto access = accessToken(given, allow(caller, given).redirectItem("oauth_verifier").value_or(""));
    access.tokenSecret = "another";
    EXPECT_EQ(send(caller, access).body, "invalid signature");
    EXPECT_EQ(send(caller, accessToken(given, "another")).body, "invalid oauth_verifier");
}

TEST(OAuth1, RefusesWhatIsMissingTwiceOrUnknown) {
    const SandboxCaller caller;

    struct Row {
        const char* name;
        const char* value; // null: left out
        int status;
        const char* text;
    };

    constexpr Row rows[] = {
        {"oauth_consumer_key", nullptr, 400, "missing oauth_consumer_key"},
        {"oauth_nonce", nullptr, 400, "missing oauth_nonce"},
        {"oauth_timestamp", nullptr, 400, "missing oauth_timestamp"},
        {"oauth_callback", nullptr, 400, "missing oauth_callback"},
        {"oauth_callback", "https://evil.example/", 400, "invalid oauth_callback"},
        {"oauth_signature_method", "PLAINTEXT", 400, "unsupported oauth_signature_method"},
        {"oauth_version", "2.0", 400, "unsupported oauth_version"},
        {"oauth_consumer_key", "unknown", 401, "invalid key"},
        {"oauth_timestamp", "1", 401, "invalid timestamp or nonce"},
        {"oauth_timestamp", "soon", 401, "invalid timestamp or nonce"},
    };
    for (const auto& row : rows) {
        auto call = requestToken();
        std::erase_if(call.items, [&](const URLQueryItem& item) { return item.name == row.name; });
        if (row.value) {
            call.items.push_back({row.name, row.value});
        }
        const auto response = send(caller, call);
        EXPECT_EQ(response.status, row.status) << row.name;
        EXPECT_EQ(response.body, row.text);
    }
    auto call = requestToken();
    call.items.push_back({"oauth_nonce", "again"});
    EXPECT_EQ(send(caller, call).body, "an oauth_ parameter stands twice");
    EXPECT_EQ(caller
                  .send("POST /1/OAuthGetRequestToken HTTP/1.1\r\nHost: trello.com\r\nAuthorization: OAuth "
                        "x\r\nContent-Length: 0\r\n\r\n")
                  .status,
              400);
}

TEST(OAuth1, TakesANonceOnce) {
    const SandboxCaller caller;
    const auto call = requestToken();
    EXPECT_EQ(send(caller, call).status, 200);
    EXPECT_EQ(send(caller, call).body, "invalid timestamp or nonce");
}

TEST(OAuth1, TakesAClientsOwnSecretFromTheOptions) {
    SandboxOptions options;
    options.clients = {{"Trello", "mine", "my secret&"}};
    const SandboxCaller caller(options);
    auto call = requestToken();
    call.items.front().value = "mine";
    call.secret = "my secret&";
    EXPECT_EQ(send(caller, call).status, 200);
}

TEST(OAuth1, GivesATokenTheLifetimeThatWasAskedFor) {
    ClockOverride clock(Date::fromUnixSeconds(1'800'000'000));
    const SandboxCaller caller;
    const auto given = send(caller, requestToken());
    const auto back =
        caller.get("trello.com", "/1/OAuthAuthorizeToken?expiration=1hour&scope=read&sandbox_consent="
                                 "allow&oauth_token=" +
                                     valueIn(given, "oauth_token"));
    const auto access = send(caller, accessToken(given, back.redirectItem("oauth_verifier").value_or("")));
    const auto target = "?key=placeholder-id-of-Trello&token=" + valueIn(access, "oauth_token");
    clock.advance(TimeInterval(3599));
    EXPECT_EQ(caller.get("api.trello.com", "/1/members/me" + target).status, 200);
    EXPECT_EQ(caller.post("api.trello.com", "/1/cards" + target, "text/plain", "").body,
              "unauthorized permission requested");
    // Without the scope "account" there is no address.
    EXPECT_EQ(caller.get("api.trello.com", "/1/members/me" + target).text("email"), "(none)");
    clock.advance(TimeInterval(1));
    EXPECT_EQ(caller.get("api.trello.com", "/1/members/me" + target).body, "expired token");
}

TEST(OAuth1, OfEvernoteHasOneAddressForRequestAndAccessTokens) {
    const SandboxCaller caller;
    Call call{.service = "Evernote",
              .host = "www.evernote.com",
              .path = "/oauth",
              .method = "GET",
              .secret = "placeholder-secret-of-Evernote",
              .items = parameters("Evernote", {{"oauth_callback", callback}})};
    const auto given = send(caller, call);
    ASSERT_EQ(given.status, 200) << given.body;
    const auto back = caller.get("www.evernote.com", "/OAuth.action?sandbox_consent=allow&oauth_token=" +
                                                         valueIn(given, "oauth_token"));
    call.tokenSecret = valueIn(given, "oauth_token_secret");
    call.items = parameters("Evernote", {{"oauth_token", valueIn(given, "oauth_token")},
                                         {"oauth_verifier", back.redirectItem("oauth_verifier")}});
    const auto access = send(caller, call);
    ASSERT_EQ(access.status, 200) << access.body;
    EXPECT_EQ(valueIn(access, "edam_shard"), "s1");
    EXPECT_NE(valueIn(access, "edam_noteStoreUrl"), "");
    EXPECT_EQ(caller.get("www.evernote.com", "/OAuth.action?oauth_token=unknown").status, 400);
}

} // namespace zelto
