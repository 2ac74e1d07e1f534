#include <ZeltoHost/SignIn/SignInToken.h>

#include <ZeltoCommonLogger/SecretRegistry.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

// The error's text; "" for a token.
std::string complaint(ServiceType type, int status, std::string_view body) {
    const auto token = readSignInToken(signInServiceFor(type).value(), status, body);
    return token ? "" : token.error().message;
}

SignInToken tokenOf(ServiceType type, std::string_view body) {
    return readSignInToken(signInServiceFor(type).value(), 200, body).value_or(SignInToken());
}

} // namespace

TEST(SignInToken, IsReadFromTheTokenEndpointsResponse) {
    EXPECT_EQ(tokenOf(ServiceType::Asana, R"({"access_token":"a","refresh_token":"r","expires_in":3600})"),
              (SignInToken{.accessToken = "a", .refreshToken = "r", .expiresIn = 3600}));
    EXPECT_EQ(tokenOf(ServiceType::TodoIst, R"({"access_token":"a","token_type":"Bearer"})"),
              (SignInToken{.accessToken = "a"}));
    EXPECT_EQ(
        tokenOf(ServiceType::Dropbox, R"({"access_token":"a","refresh_token":"","expires_in":"14400"})"),
        (SignInToken{.accessToken = "a", .expiresIn = 14400}));
    EXPECT_EQ(tokenOf(ServiceType::Notion, R"({"access_token":"a","expires_in":null,"refresh_token":null})"),
              (SignInToken{.accessToken = "a"}));
}

TEST(SignInToken, OfSlackIsTheUsers) {
    EXPECT_EQ(tokenOf(ServiceType::Slack,
                      R"({"ok":true,"access_token":"bot","authed_user":{"id":"U1","access_token":"user"}})"),
              (SignInToken{.accessToken = "user"}));
    EXPECT_EQ(complaint(ServiceType::Slack, 200, R"({"ok":true,"access_token":"bot","authed_user":{}})"),
              "Slack responded without a token.");
    EXPECT_EQ(complaint(ServiceType::Slack, 200, R"({"ok":true,"access_token":"bot"})"),
              "Slack responded without a token.");
    EXPECT_EQ(complaint(ServiceType::Slack, 200, R"({"ok":false,"error":"invalid_code"})"),
              "Slack does not take the code of its own page; it is spent or too old. Sign in again "
              "(invalid_code).");
}

TEST(SignInToken, ThatIsRefusedIsReportedInPlainWordsWithTheServersOwnBehindThem) {
    const auto secret = SecretRegistry::shared().add("secret-code");
    EXPECT_EQ(
        complaint(ServiceType::Asana, 400,
                  R"({"error":"invalid_grant","error_description":"code secret-code\n\u001b[2J is bad"})"),
        "Asana does not take the code of its own page; it is spent or too old. Sign in again "
        "(invalid_grant). It says: \"code *** [2J is bad\".");
    const auto words = std::string(400, 'a');
    EXPECT_EQ(complaint(ServiceType::Asana, 400, R"({"error":"x","error_description":")" + words + R"("})"),
              "Asana refused the sign-in (x). It says: \"" + words.substr(0, 300) + "\".");
    EXPECT_EQ(complaint(ServiceType::ZoomMeeting, 401, R"({"error":"invalid_client"})"),
              "Zoom does not know this program's client identifier or its secret; name your own registration "
              "(invalid_client).");
    EXPECT_EQ(complaint(ServiceType::ZoomMeeting, 503, "<html>"),
              "Zoom has trouble of its own; try again later (server_error).");
    EXPECT_EQ(complaint(ServiceType::ZoomMeeting, 403, "no"), "Zoom refused the sign-in. It says: \"no\".");
    EXPECT_EQ(complaint(ServiceType::ZoomMeeting, 400, R"({"error":{"code":1}})"),
              "Zoom refused the sign-in.");
    for (const auto* body : {"", "{}", "[]", "null", R"({"access_token":""})", R"({"access_token":7})", "x",
                             R"({"token":"a"})"}) {
        EXPECT_EQ(complaint(ServiceType::ZoomMeeting, 200, body), "Zoom responded without a token.") << body;
    }
}

TEST(SignInToken, OfAnImpossibleLifetimeHasNone) {
    for (const auto* lifetime : {"0", "-5", "1e999", "\"soon\"", "\"nan\"", "[]"}) {
        EXPECT_EQ(
            tokenOf(ServiceType::Asana, R"({"access_token":"a","expires_in":)" + std::string(lifetime) + "}"),
            (SignInToken{.accessToken = "a"}))
            << lifetime;
    }
}

TEST(SignInToken, ReplacesAllThatTheAccountHadBefore) {
    const ClockOverride clock(Date::fromReferenceSeconds(1000));
    auto credentials = ServiceAccountCredentials::forIdentifier("Zoom");
    credentials.refreshToken = "old";
    credentials.tokenSecret = "old";
    SignInToken{.accessToken = "a", .expiresIn = 60}.fill(credentials);
    auto expected = ServiceAccountCredentials::forIdentifier("Zoom");
    expected.accessToken = "a";
    expected.expirationDate = Date::fromReferenceSeconds(1060);
    EXPECT_EQ(credentials, expected);
}

TEST(SignInToken, OfTheImplicitFlowIsReadFromTheResponseItself) {
    EXPECT_EQ(signInTokenOf(parseFormItems("access_token=a&expires_in=7200&state=s").value()),
              (SignInToken{.accessToken = "a", .expiresIn = 7200}));
    EXPECT_EQ(signInTokenOf(parseFormItems("access_token=a&expires_in=x").value()),
              (SignInToken{.accessToken = "a"}));
}

TEST(SignInToken, IsUsableIfItCanBeSentAsItStands) {
    EXPECT_TRUE(isUsableToken("a"));
    EXPECT_TRUE(isUsableToken("xoxp-1/2+3=~!"));
    EXPECT_TRUE(isUsableToken(std::string(32 * 1024, 'a')));
    for (const auto& bad : {std::string(), std::string("a b"), std::string("a\r\nb"), std::string("a\0b", 3),
                            std::string("\xc3\xa4"), std::string("a\x7f"), std::string(64 * 1024, 'a')}) {
        EXPECT_FALSE(isUsableToken(bad));
    }
}

} // namespace zelto
