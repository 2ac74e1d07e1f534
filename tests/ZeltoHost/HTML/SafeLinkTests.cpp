#include <ZeltoHost/HTML/SafeLink.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

std::string linkOf(std::string_view href) {
    const auto url = safeLink(href);
    return url ? url->absoluteString() : "none";
}

TEST(SafeLink, OfASchemeThatOnlyShowsSomethingIsKept) {
    for (const std::string_view href :
         {"http://a.example/", "HTTPS://a.example/b?c=d#e", "mailto:a@b.example?subject=x", "tel:+4930123456",
          "mid:1%40b.example"}) {
        EXPECT_EQ(linkOf(href), href);
    }
    for (const std::string_view href :
         {"javascript:alert(1)", "java\nscript:x", "data:text/html,x", "file:///a", "vbscript:x",
          "ftp://a.example/", "a.html", "/a", "//a.example/", "#a", "https://", "http:a", "", " \t\n"}) {
        EXPECT_EQ(linkOf(href), "none") << href;
    }
}

TEST(SafeLink, OfABareAddressGetsItsScheme) {
    EXPECT_EQ(linkOf("jane.doe+x@example.org"), "mailto:jane.doe+x@example.org");
    EXPECT_EQ(linkOf(" jane@example.org\n"), "mailto:jane@example.org");
    EXPECT_EQ(linkOf("+49 (30) 123-456.7/8"), "tel:+49%20(30)%20123-456.7/8");
    EXPECT_EQ(linkOf("0301234"), "tel:0301234");
    for (const std::string_view href :
         {"030123", "+", "1+2345678", "0301234x", "jane@", "@example.org", "jane@example.org/page", "jane",
          "jane@example.org, joe@example.org"}) {
        EXPECT_EQ(linkOf(href), "none") << href;
    }
}

TEST(SafeLink, LosesBlanksAroundItAndLineEndsWithinIt) {
    EXPECT_EQ(linkOf(" \n\x01https://a.example/ \r\n"), "https://a.example/");
    EXPECT_EQ(linkOf("ht\ttps://a.ex\r\nample/b"), "https://a.example/b");
}

TEST(SafeLink, WhatAURLCannotHoldIsEncoded) {
    EXPECT_EQ(linkOf("https://a.example/b c\"<>\\^`{|}\x7f\u00e4"),
              "https://a.example/b%20c%22%3C%3E%5C%5E%60%7B%7C%7D%7F%C3%A4");
    EXPECT_EQ(linkOf("https://a.example/%20%c3%A4?b=100%&c=%2&d=%2g&e=%g2&f=%"),
              "https://a.example/%20%c3%A4?b=100%25&c=%252&d=%252g&e=%25g2&f=%25");
    EXPECT_EQ(linkOf("https://a.example/#b#c##d"), "https://a.example/#b%23c%23%23d");
}

TEST(SafeLink, MayHave65536BytesAndNoMore) {
    const std::string start = "https://a.example/";
    const auto longest = start + std::string(65536 - start.size(), 'b');
    EXPECT_EQ(linkOf(longest), longest);
    EXPECT_EQ(linkOf(longest + "b"), "none");
}

} // namespace
} // namespace zelto
