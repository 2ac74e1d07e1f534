#include <ZeltoHost/HTML/MarkupEscape.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

std::string escaped(std::string_view text, Quotes quotes) {
    std::string markup = "before ";
    appendEscaped(markup, text, quotes);
    EXPECT_TRUE(markup.starts_with("before "));
    return markup.substr(7);
}

TEST(MarkupEscape, MarkupCharactersBecomeEntities) {
    EXPECT_EQ(escaped("a&b<c>d", Quotes::keep), "a&amp;b&lt;c&gt;d");
    EXPECT_EQ(escaped("\"'", Quotes::escape), "&quot;&#39;");
    EXPECT_EQ(escaped("\"'", Quotes::keep), "\"'");
}

TEST(MarkupEscape, WhatMarkupCannotHoldIsLeftOut) {
    EXPECT_EQ(escaped(std::string_view("a\0b\x01\x1F\x7F", 6), Quotes::keep), "ab");
    EXPECT_EQ(escaped("a\tb\nc\rd", Quotes::keep), "a\tb\nc\rd");
    EXPECT_EQ(escaped("a\xEF\xBF\xBE"
                      "b\xEF\xBF\xBF"
                      "c",
                      Quotes::keep),
              "abc");
    EXPECT_EQ(escaped("\xEF\xBF\xBD", Quotes::keep), "\uFFFD");
}

} // namespace
} // namespace zelto
