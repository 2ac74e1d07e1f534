#include <ZeltoIntegrations/Client/OAuthToken.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

Result<OAuthToken, DecodingError> tokenOf(std::string_view text) {
    return JSONDecoder().decode<OAuthToken>(text);
}

} // namespace

TEST(OAuthToken, IsReadFromATokenEndpointsResponse) {
    EXPECT_EQ(tokenOf(R"({"access_token":"a","refresh_token":"r","expires_in":3600,"token_type":"bearer"})"),
              (OAuthToken{"a", "r", 3600}));
    EXPECT_EQ(tokenOf(R"({"access_token":"a","expires_in":0.5})"), (OAuthToken{"a", std::nullopt, 0.5}));
}

TEST(OAuthToken, LivesForNoTimeWhenTheResponseDoesNotSay) {
    EXPECT_EQ(tokenOf(R"({"access_token":"a"})"), (OAuthToken{"a", std::nullopt, 0}));
    EXPECT_EQ(tokenOf(R"({"access_token":"a","refresh_token":null,"expires_in":null})"),
              (OAuthToken{"a", std::nullopt, 0}));
}

TEST(OAuthToken, IsNoneWithoutAnAccessToken) {
    for (const auto* text : {R"({"refresh_token":"r"})", R"({"access_token":null})", R"({"access_token":1})",
                             R"({"access_token":"a","expires_in":"3600"})", "[]", "", "null",
                             R"({"access_token":"a","expires_in":1e400})"}) {
        EXPECT_FALSE(tokenOf(text)) << text;
    }
}

TEST(OAuthToken, IsWrittenUnderTheSameKeys) {
    EXPECT_EQ(JSONEncoder().encode(OAuthToken{"a", "r", 60}),
              R"({"access_token":"a","refresh_token":"r","expires_in":60})");
    EXPECT_EQ(JSONEncoder().encode(OAuthToken{"a", std::nullopt, 0}),
              R"({"access_token":"a","expires_in":0})");
}

TEST(OAuthErrorBody, IsItsError) {
    const auto body =
        JSONDecoder().decode<OAuthErrorBody>(R"({"error":"invalid_grant","error_description":"x"})");
    EXPECT_EQ(body, OAuthErrorBody{"invalid_grant"});
    EXPECT_FALSE(JSONDecoder().decode<OAuthErrorBody>("{}"));
    EXPECT_EQ(JSONEncoder().encode(OAuthErrorBody{"e"}), R"({"error":"e"})");
}

TEST(Empty, IsAnyObject) {
    EXPECT_TRUE(JSONDecoder().decode<Empty>("{}"));
    EXPECT_TRUE(JSONDecoder().decode<Empty>(R"({"id":1})"));
    for (const auto* text : {"", "[]", "1", "null", "\"\""}) {
        EXPECT_FALSE(JSONDecoder().decode<Empty>(text)) << text;
    }
    EXPECT_EQ(JSONEncoder().encode(Empty{}), "{}");
}

} // namespace zelto
