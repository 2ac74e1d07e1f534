#include <Platform/URLComponents.h>

#include <gtest/gtest.h>

using namespace zelto;

namespace {

std::string text(const URLComponents& parts) {
    const auto url = parts.url();
    return url ? url->absoluteString() : "no URL";
}

URLComponents parts(std::string_view text) {
    auto parsed = URLComponents::parse(text);
    EXPECT_TRUE(parsed) << text;
    return parsed.value_or(URLComponents());
}

} // namespace

TEST(URLComponents, ArePutTogether) {
    URLComponents parts;
    parts.scheme = "https";
    parts.host = "api.example.com";
    parts.path = "/1/cards";
    EXPECT_EQ(text(parts), "https://api.example.com/1/cards");
    parts.port = 8443;
    parts.userInfo = "u:p";
    parts.queryItems = {{"a", "1"}, {"flag", std::nullopt}, {"empty", ""}};
    parts.fragment = "top";
    EXPECT_EQ(text(parts), "https://u:p@api.example.com:8443/1/cards?a=1&flag&empty=#top");
}

TEST(URLComponents, EncodeWhatAQueryItemCannotHold) {
    URLComponents parts;
    parts.scheme = "things";
    parts.path = "add";
    parts.queryItems = {{"a&b=c", "d&e=f+g h#i;\u0436%\n\"<>"}};
    EXPECT_EQ(text(parts), "things:add?a%26b%3Dc=d%26e%3Df%2Bg%20h%23i%3B%D0%B6%25%0A%22%3C%3E");
    parts.queryItems = {{"$filter", "name eq 'x'/:?@!*(),-._~"}};
    EXPECT_EQ(text(parts), "things:add?$filter=name%20eq%20'x'/:?@!*(),-._~");
}

TEST(URLComponents, KeepTheItemsThatAreThere) {
    const auto parsed = parts("https://a/?b=1&a=%26%3D&b=2&c&d=&=e&x=y=z&p=1+1&f=%FF&&last=%D0%B6");
    const std::vector<URLQueryItem> expected{
        {"b", "1"},   {"a", "&="},  {"b", "2"},    {"c", std::nullopt}, {"d", ""},         {"", "e"},
        {"x", "y=z"}, {"p", "1+1"}, {"f", "\xff"}, {"", std::nullopt},  {"last", "\u0436"}};
    EXPECT_EQ(parsed.queryItems, expected);
    EXPECT_EQ(text(parsed), "https://a/?b=1&a=%26%3D&b=2&c&d=&=e&x=y%3Dz&p=1%2B1&f=%FF&&last=%D0%B6");
}

TEST(URLComponents, ComeBackAsTheyWere) {
    for (const auto* given :
         {"https://a", "https://a/", "https://a/?", "https://a/?&", "https://a/#", "https://a/?#",
          "http://[::1]:80/a%2Fb/%2e%2e/c", "things:add?title=a", "omnifocus:///add", "file:///a",
          "mid:a%40b", "https://u%40x:p@a/", "x:", "x:/.//a", "x:?a#b", "https://a/;p=1?c=d#/e?f"}) {
        EXPECT_EQ(text(parts(given)), given);
    }
}

TEST(URLComponents, PartsCannotRunOverIntoTheNext) {
    const auto whole = parts("https://u@a:80/b?c=d#e");
    const auto with = [&](auto change) {
        auto changed = whole;
        change(changed);
        return text(changed);
    };
    for (const std::string foreign : {"/", "?", "#", "@", "[", "]", " ", "\n", "\u0436", "%", ":"}) {
        EXPECT_EQ(with([&](auto& to) { to.scheme += foreign; }), "no URL") << foreign;
        EXPECT_EQ(with([&](auto& to) { *to.host += foreign; }), "no URL") << foreign;
        if (foreign != ":") {
            EXPECT_EQ(with([&](auto& to) { *to.userInfo += foreign; }), "no URL") << foreign;
        }
    }
    for (const std::string foreign : {"?", "#", "[", " ", "\n", "\u0436", "%"}) {
        EXPECT_EQ(with([&](auto& to) { to.path += foreign; }), "no URL") << foreign;
    }
    EXPECT_EQ(with([](auto& to) { to.path = "b"; }), "no URL");
    EXPECT_EQ(with([](auto& to) { *to.fragment += "#"; }), "no URL");
    EXPECT_EQ(with([](auto& to) { to.host.reset(); }), "no URL");
    EXPECT_EQ(with([](auto& to) { to.host = to.userInfo = std::nullopt; }), "no URL");
    EXPECT_EQ(with([](auto& to) { to.scheme.clear(); }), "no URL");
    URLComponents rootless;
    rootless.scheme = "x";
    rootless.path = "//evil.example/";
    EXPECT_EQ(text(rootless), "no URL");
}

TEST(URLComponents, FindAndReplaceItems) {
    auto parsed = parts("https://a/?x=1&y=2&x=3&z");
    EXPECT_EQ(parsed.queryValue("y"), "2");
    EXPECT_EQ(parsed.queryValue("x"), "1");
    EXPECT_EQ(parsed.queryValue("z"), std::nullopt);
    EXPECT_EQ(parsed.queryValue("none"), std::nullopt);
    parsed.setQueryItem("x", "9");
    parsed.setQueryItem("w", "a b");
    EXPECT_EQ(text(parsed), "https://a/?x=9&y=2&z&w=a%20b");
}

TEST(URLComponents, AreNoneOfWhatIsNoURL) {
    EXPECT_EQ(URLComponents::parse("a b"), std::nullopt);
    EXPECT_EQ(URLComponents::parse("/a?b=c"), std::nullopt);
}

TEST(FormItems, AreDecodedInTheirOrder) {
    EXPECT_EQ(parseFormItems("a=1&b=%26&c=&d&&e=x+y&f+%2b=z%20&a=2&"),
              (std::vector<URLQueryItem>{{"a", "1"},
                                         {"b", "&"},
                                         {"c", ""},
                                         {"d", std::nullopt},
                                         {"e", "x y"},
                                         {"f +", "z "},
                                         {"a", "2"}}));
    EXPECT_EQ(parseFormItems("=a=b"), (std::vector<URLQueryItem>{{"", "a=b"}}));
    EXPECT_EQ(parseFormItems(""), std::vector<URLQueryItem>());
    EXPECT_EQ(parseFormItems("&&"), std::vector<URLQueryItem>());
}

TEST(FormItems, AreNoneOfABrokenEscapeOrWhatIsNotUTF8) {
    for (const auto* form : {"%", "a=%", "a=1&b=%2", "%zz=1", "a=%ff", "%ff", "a=\xff"}) {
        EXPECT_EQ(parseFormItems(form), std::nullopt) << form;
    }
}
