#include <ZeltoIntegrations/MCP/MCPWWWAuthenticateBearerParser.h>

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>

namespace zelto {
namespace {

using Parser = MCPWWWAuthenticateBearerParser;
using Parameters = std::map<std::string, std::string>;

MCPClientError required(std::string_view url) {
    return MCPClientError::authorizationRequired(URL::parse(url).value());
}

TEST(MCPWWWAuthenticateBearerParser, FindsTheMetadataWhateverTheSchemesCase) {
    for (const auto* header :
         {R"(Bearer resource_metadata="a://b/c")", R"(bearer resource_metadata="a://b/c")",
          R"(BEARER resource_metadata="a://b/c")", R"(Bearer RESOURCE_METADATA="a://b/c")",
          R"(Bearer resource_metadata=a://b/c)", "Bearer \t resource_metadata = \"a://b/c\"\t",
          R"(Basic realm="x", Bearer resource_metadata="a://b/c")",
          R"(Basic realm="x",Bearer resource_metadata="a://b/c")",
          R"(Basic Bearer resource_metadata="a://b/c")", R"(Bearer error="a,b", resource_metadata="a://b/c")",
          R"(Bearer resource_metadata="x://y", resource_metadata="a://b/c")",
          R"(Bearer resource_metadata="a://b/c", Basic realm="Bearer")"}) {
        EXPECT_EQ(Parser::bearerFailure(header), required("a://b/c")) << header;
    }
}

TEST(MCPWWWAuthenticateBearerParser, WithoutMetadataSaysSo) {
    for (const auto* header :
         {R"(Bearer realm="x")", "Bearer", "bearer", "Bearer,", "Bearer =", "Bearer resource_metadata",
          R"(Bearer scope="resource_metadata=a://b")", R"(Bearer, Basic, Bearer)",
          R"(Basic x, Bearer realm="a, resource_metadata=\"a://b\"")"}) {
        EXPECT_EQ(Parser::bearerFailure(header),
                  MCPClientError::authorizationChallengeMissingResourceMetadata())
            << header;
    }
}

TEST(MCPWWWAuthenticateBearerParser, WithoutABearerChallengeGivesNullopt) {
    for (const auto* header :
         {R"(Basic realm="Bearer resource_metadata=1")", "", " ", "xBearer a=b", "Bearers a=b", "Bearer=x",
          "a=Bearer", R"(Basic realm="\" Bearer resource_metadata=a://b")", R"(Basic "Bearer )", "Bea",
          "Bearer\xCC\x81 x", "\"Bearer"}) {
        EXPECT_EQ(Parser::bearerFailure(header), std::nullopt) << header;
        EXPECT_EQ(Parser::bearerParameters(header), Parameters());
    }
}

TEST(MCPWWWAuthenticateBearerParser, MetadataThatIsNoURLFailsWithItsText) {
    for (const auto& [header, text] : {std::pair{R"(Bearer resource_metadata="no scheme")", "no scheme"},
                                       {R"(Bearer resource_metadata="")", ""},
                                       {"Bearer resource_metadata=", ""},
                                       {R"(Bearer resource_metadata="/path")", "/path"},
                                       {R"(Bearer resource_metadata="a)", "\"a"}}) {
        EXPECT_EQ(Parser::bearerFailure(header), MCPClientError::invalidAuthorizationResourceMetadata(text))
            << header;
    }
}

TEST(MCPWWWAuthenticateBearerParser, ReadsParametersOfLaterSchemesToo) {
    EXPECT_EQ(
        Parser::bearerParameters(R"(Digest a=b, Bearer Realm = "x y" , E="a\"b",Basic realm="z",, q, k=a=b)"),
        (Parameters{{"realm", "x y"}, {"e", "a\"b"}, {"basic realm", "z"}, {"k", "a=b"}}));
    EXPECT_EQ(Parser::bearerParameters(R"(Bearer =v, a=1, A=2)"), (Parameters{{"", "v"}, {"a", "2"}}));
}

TEST(MCPWWWAuthenticateBearerParser, GivesTheIndexBehindTheScheme) {
    EXPECT_EQ(Parser::bearerChallengeStart("Bearer x"), 6u);
    EXPECT_EQ(Parser::bearerChallengeStart("Basic \xC3\xA9, bearer"), 16u);
    EXPECT_EQ(Parser::bearerChallengeStart("\\Bearer"), std::nullopt);
    EXPECT_EQ(Parser::bearerChallengeStart(R"(x "a\" b", Bearer)"), 17u);
    EXPECT_EQ(Parser::bearerChallengeStart("x\xC2\xA0"
                                           "Bearer"),
              9u);
}

TEST(MCPWWWAuthenticateBearerParser, SplitsAtCommasOutsideQuotes) {
    using Items = std::vector<std::string>;
    EXPECT_EQ(Parser::splitCommaSeparated(""), Items{""});
    EXPECT_EQ(Parser::splitCommaSeparated("a,b,"), (Items{"a", "b", ""}));
    EXPECT_EQ(Parser::splitCommaSeparated(R"("a,\",b",c)"), (Items{R"("a,\",b")", "c"}));
    EXPECT_EQ(Parser::splitCommaSeparated(R"(a\,b,\",c)"), (Items{R"(a\,b)", R"(\")", "c"}));
    EXPECT_EQ(Parser::splitCommaSeparated(R"("a,b)"), Items{R"("a,b)"});
}

TEST(MCPWWWAuthenticateBearerParser, Unquotes) {
    EXPECT_EQ(Parser::unquote(R"("a\"b")"), "a\"b");
    EXPECT_EQ(Parser::unquote(R"("")"), "");
    EXPECT_EQ(Parser::unquote(R"(")"), "\"");
    EXPECT_EQ(Parser::unquote(R"("a\\b\c")"), R"(a\bc)");
    EXPECT_EQ(Parser::unquote(R"("a\")"), "a");
    EXPECT_EQ(Parser::unquote(R"(a\b)"), R"(a\b)");
    EXPECT_EQ(Parser::unquote(R"("a)"), R"("a)");
    EXPECT_EQ(Parser::unquote(""), "");
}

TEST(MCPWWWAuthenticateBearerParser, NothingThatAServerSendsStopsIt) {
    std::string quotes(300'000, '"');
    EXPECT_EQ(Parser::bearerFailure(quotes), std::nullopt);
    EXPECT_EQ(Parser::bearerFailure("Bearer " + std::string(300'000, ',')),
              MCPClientError::authorizationChallengeMissingResourceMetadata());
    EXPECT_EQ(Parser::bearerFailure("Bearer \xFF\xFE, resource_metadata=a://b"), required("a://b"));
    EXPECT_EQ(Parser::bearerFailure("\xFF"
                                    "Bearer x"),
              std::nullopt);
}

TEST(MCPBearerAuthorizationChallenge, IsMadeOfAHeader) {
    EXPECT_EQ(MCPBearerAuthorizationChallenge::parse("Bearer resource_metadata=a://b"),
              MCPBearerAuthorizationChallenge{URL::parse("a://b").value()});
    EXPECT_EQ(MCPBearerAuthorizationChallenge::parse("Basic"),
              failure(MCPClientError::authorizationChallengeMissingResourceMetadata()));
}

} // namespace
} // namespace zelto
