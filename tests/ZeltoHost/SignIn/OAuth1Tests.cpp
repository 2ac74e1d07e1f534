#include <ZeltoHost/SignIn/OAuth1.h>

#include <gtest/gtest.h>

#include <set>

namespace zelto {

namespace {

URLRequest requestOf(std::string_view url, std::string method = "POST") {
    return URLRequest(URL::parse(url).value(), std::move(method));
}

} // namespace

// RFC 5849, section 3.4.1.1.
TEST(OAuth1, TheBaseStringIsThatOfTheStandardsExample) {
    const auto request = requestOf("http://EXAMPLE.COM:80/request?b5=%3D%253D&a3=a&c%40=&a2=r%20b");
    const FormItems body{{"c2", ""}, {"a3", "2 q"}};
    EXPECT_EQ(oauth1BaseString(request,
                               {{"oauth_consumer_key", "9djdj82h48djs9d2"},
                                {"oauth_token", "kkk9d7dh3k39sjv7"},
                                {"oauth_signature_method", "HMAC-SHA1"},
                                {"oauth_timestamp", "137131201"},
                                {"oauth_nonce", "7d8f3e4a"}},
                               body),
              "POST&http%3A%2F%2Fexample.com%2Frequest&a2%3Dr%2520b%26a3%3D2%2520q%26a3%3Da%26b5%3D%253D%"
              "25253D%26c%2540%3D%26c2%3D%26oauth_consumer_key%3D9djdj82h48djs9d2%26oauth_nonce%3D7d8f3e4a%"
              "26oauth_signature_method%3DHMAC-SHA1%26oauth_timestamp%3D137131201%26oauth_token%3D"
              "kkk9d7dh3k39sjv7");
}

// OAuth Core 1.0, appendix A.
TEST(OAuth1, ARequestIsSignedAsTheFirstEditionsExample) {
    auto request = requestOf("http://photos.example.net/photos?file=vacation.jpg&size=original", "GET");
    signOAuth1(request,
               {.consumerKey = "dpf43f3p2l4k3l03",
                .consumerSecret = "kd94hf93k423kf44",
                .token = "nnch734d00sl2jdk",
                .tokenSecret = "pfkkdhi9sl3r4s00"},
               {}, {}, {.nonce = "kllo9940pd9333jh", .timestamp = "1191242096"});
    EXPECT_EQ(request.headers.value("Authorization"),
              "OAuth oauth_consumer_key=\"dpf43f3p2l4k3l03\", oauth_nonce=\"kllo9940pd9333jh\", "
              "oauth_signature_method=\"HMAC-SHA1\", oauth_timestamp=\"1191242096\", oauth_version=\"1.0\", "
              "oauth_token=\"nnch734d00sl2jdk\", oauth_signature=\"tR3%2BTy81lMeYAr%2FFid0kMTYa%2FWM%3D\"");
}

TEST(OAuth1, ARequestWithoutATokenIsSignedWithAnEmptySecret) {
    auto request = requestOf("https://trello.com/1/OAuthGetRequestToken");
    signOAuth1(request, {.consumerKey = "key", .consumerSecret = "secret"},
               {{"oauth_callback", "http://127.0.0.1:8217/sign-in/trello"}}, {},
               {.nonce = "once", .timestamp = "1"});
    // Computed with Python: hmac.new(b"secret&", base_string, "sha1").
    EXPECT_EQ(request.headers.value("Authorization"),
              "OAuth oauth_consumer_key=\"key\", oauth_nonce=\"once\", "
              "oauth_signature_method=\"HMAC-SHA1\", oauth_timestamp=\"1\", oauth_version=\"1.0\", "
              "oauth_callback=\"http%3A%2F%2F127.0.0.1%3A8217%2Fsign-in%2Ftrello\", "
              "oauth_signature=\"RCjpHRqPDBi0KbMMrkHh%2Fv%2BR1VE%3D\"");
}

TEST(OAuth1, ThePortAndTheBracketsOfTheAddressAreSignedAsTheyAre) {
    EXPECT_TRUE(oauth1BaseString(requestOf("https://[::1]:8443"), {}, {})
                    .starts_with("POST&https%3A%2F%2F%5B%3A%3A1%5D%3A8443%2F&"));
    EXPECT_TRUE(oauth1BaseString(requestOf("https://a.example:443/x"), {}, {})
                    .starts_with("POST&https%3A%2F%2Fa.example%2Fx&"));
    EXPECT_TRUE(oauth1BaseString(requestOf("https://a.example:80/x"), {}, {})
                    .starts_with("POST&https%3A%2F%2Fa.example%3A80%2Fx&"));
}

TEST(OAuth1, NoNonceIsUsedTwice) {
    std::set<std::string> nonces;
    for (int i = 0; i < 100; ++i) {
        nonces.insert(OAuth1Moment::now().nonce);
    }
    EXPECT_EQ(nonces.size(), 100U);
}

TEST(OAuth1, TokensAreReadFromAForm) {
    const auto token =
        readOAuth1Token("oauth_token=a%2Bb&oauth_token_secret=s&oauth_callback_confirmed=true");
    ASSERT_TRUE(token);
    EXPECT_EQ(token->token, "a+b");
    EXPECT_EQ(token->secret, "s");
    EXPECT_TRUE(token->callbackIsConfirmed);
    EXPECT_FALSE(readOAuth1Token("oauth_token=a&oauth_token_secret=s")->callbackIsConfirmed);
    EXPECT_EQ(readOAuth1Token("oauth_token=a&oauth_token_secret=")->secret, "");
    for (const auto* bad : {"", "oauth_token=a", "oauth_token=&oauth_token_secret=s", "oauth_token_secret=s",
                            "oauth_token=a&oauth_token=b&oauth_token_secret=s", "%zz", "<html></html>"}) {
        EXPECT_FALSE(readOAuth1Token(bad)) << bad;
    }
}

} // namespace zelto
