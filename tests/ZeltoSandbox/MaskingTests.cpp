#include <ZeltoSandbox/SandboxCaller.h>

#include <ZeltoSandbox/Masking.h>
#include <ZeltoSandbox/OAuth/SecretTable.h>

#include <gtest/gtest.h>

namespace zelto {

using namespace sandbox;

namespace {

std::string shownOf(const std::string& type, const std::string& body) {
    SandboxRequest request;
    request.body = std::make_shared<SpooledBytes>(body);
    request.contentType = type;
    return shownBody(request);
}

} // namespace

TEST(SandboxMasking, HidesCredentialsInHeaders) {
    const auto masked = maskedFields({{"Authorization", "Bearer abc"},
                                      {"authorization", "Basic eDp5"},
                                      {"Authorization", "OAuth oauth_token=\"t\", oauth_signature=\"s\""},
                                      {"Authorization", "abc"},
                                      {"Cookie", "a=b"},
                                      {"X-Api-Key", "abc"},
                                      {"X-Auth-Token", "abc"},
                                      {"Accept", "*/*"},
                                      {"X-Note", "see zsb_AbC-_9 there"}});
    std::string text;
    for (const auto& field : masked) {
        text += field.name + ": " + field.value + "\n";
    }
    EXPECT_EQ(text,
              "Authorization: Bearer ***\nauthorization: Basic ***\nAuthorization: OAuth ***\nAuthorization: "
              "***\nCookie: ***\nX-Api-Key: ***\nX-Auth-Token: ***\nAccept: */*\nX-Note: see *** there\n");
}

TEST(SandboxMasking, HidesCredentialsInQueries) {
    EXPECT_EQ(maskedTarget("/1/cards?name=x%20y&key=abc&token=def&idList=1"),
              "/1/cards?name=x%20y&key=***&token=***&idList=1");
    EXPECT_EQ(maskedTarget("/x?to%6Ben=abc&%zz=abc&oauth%5Fsignature=a&state=s"),
              "/x?to%6Ben=***&%zz=***&oauth%5Fsignature=***&state=s");
    EXPECT_EQ(maskedTarget("/oauth/v1/access-tokens/zsb_abc/x?a=zsb_def"),
              "/oauth/v1/access-tokens/***/x?a=***");
    EXPECT_EQ(maskedTarget("/oauth/v1/access-tokens/abc/x"), "/oauth/v1/access-tokens/***/x");
    EXPECT_EQ(maskedTarget("/oauth/v1/access%2Dtokens/abc?b=c"), "/oauth/v1/access%2Dtokens/***?b=c");
    EXPECT_EQ(maskedTarget("/access-tokens//abc"), "/access-tokens//abc");
    EXPECT_EQ(maskedTarget("/access-tokens/"), "/access-tokens/");
    EXPECT_EQ(maskedTarget("/zsb%5Fabc/y%20z?zsb%5Fa=zs%62_x&note=zsb%5Fabc"), "/***/y%20z?***=***&note=***");
    EXPECT_EQ(maskedTarget("/plain"), "/plain");
    EXPECT_EQ(maskedTarget("/x?token"), "/x?token");
}

TEST(SandboxMasking, HidesCredentialsInBodies) {
    EXPECT_EQ(
        shownOf("application/x-www-form-urlencoded",
                "grant_type=refresh_token&refresh_token=a&client_secret=b&code=c&code_verifier=d&password=e&"
                "username=f&client_id=g"),
        "grant_type=refresh_token&refresh_token=***&client_secret=***&code=***&code_verifier=***&password=***"
        "&"
        "username=f&client_id=g");
    EXPECT_EQ(
        shownOf("application/json", R"({"a":[{"access_token":"x","n":1}],"code":5,"note":"zsb_q w"})"),
        "{\n  \"a\": [\n    {\n      \"access_token\": \"***\",\n      \"n\": 1\n    }\n  ],\n  \"code\": "
        "\"***\",\n  \"note\": \"*** w\"\n}");
    EXPECT_EQ(shownOf("application/json", R"({"access_token":"x")"), "(no JSON that could be masked)");
    EXPECT_EQ(shownOf("application/json", R"({"\u007asb_1":1})"), "{\n  \"***\": 1\n}");
    EXPECT_EQ(shownOf("text/plain", "a zsb_1 b"), "a *** b");
    EXPECT_EQ(shownOf("application/octet-stream", "zsb_1"), "");
    EXPECT_LT(shownOf("text/plain", std::string(100'000, 'x')).size(), 9000U);
}

TEST(SandboxMasking, ShowsThePartsOfAnUploadWithItsMetadata) {
    SandboxRequest request;
    request.head.fields = {{"Content-Type", "multipart/related; boundary=B"}};
    request.contentType = "multipart/related";
    const auto shown = [&](const std::string& body) {
        request.body = std::make_shared<SpooledBytes>(body);
        return shownBody(request);
    };
    EXPECT_EQ(shown("\r\n--B\r\nContent-Type: application/json; charset=UTF-8\r\n\r\n"
                    "{\"name\":\"zsb_secret\",\"token\":\"x\"}\r\n--B\r\nContent-Type: text/plain\r\n\r\n"
                    "content\r\n--B--"),
              "application/json; charset=UTF-8, 33 bytes\n{\n  \"name\": \"***\",\n  \"token\": \"***\"\n}\n"
              "text/plain, 7 bytes\n");
    EXPECT_EQ(shown("--B\r\n\r\nx\r\n--B--"), "(no Content-Type), 1 bytes\n");
    EXPECT_EQ(shown("--B\r\n\r\nx"), "");
}

TEST(SandboxMasking, ShowsNoSecretOfAWholeSignIn) {
    const SandboxCaller caller;
    const auto tokens = caller.server->issueTokens("Zoom");
    caller.get("api.zoom.us", "/x/" + tokens->accessToken + "?q=" + tokens->refreshToken,
               "Authorization: Bearer " + tokens->accessToken + "\r\nX-Other: " + tokens->accessToken +
                   "\r\n");
    caller.postForm("zoom.us", "/oauth/token",
                    {{"grant_type", "refresh_token"},
                     {"refresh_token", tokens->refreshToken},
                     {"x", tokens->accessToken}},
                    "Authorization: Basic eDp5\r\n");
    const auto shown = caller.get(caller.ownHost(), "/control/requests").body +
                       caller.get(caller.ownHost(), "/control/state").body;
    EXPECT_EQ(shown.find(secretPrefix), std::string::npos) << shown;
    EXPECT_EQ(shown.find("eDp5"), std::string::npos);
    EXPECT_EQ(caller.server->requests().size(), 2U);
}

} // namespace zelto
