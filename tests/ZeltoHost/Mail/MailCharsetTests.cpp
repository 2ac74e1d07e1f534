#include <ZeltoHost/Mail/MailCharset.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

std::string htmlDeclaring(std::string_view declaration) {
    return "<meta charset=" + std::string(declaration) + ">\xC1";
}

TEST(MailCharset, TextIsReadInTheDeclaredCharset) {
    EXPECT_EQ(toUTF8("\xE9", "iso-8859-1", false), "é");
    EXPECT_EQ(toUTF8("\xE9", "ISO_8859-1:1987", false), "é");
    EXPECT_EQ(toUTF8("\xC1", "koi8-r", false), "а");
    EXPECT_EQ(toUTF8("\x93", " Latin1 ", false), "\u201C") << "mails call windows-1252 so";
}

TEST(MailCharset, AnUnknownOneIsGuessed) {
    EXPECT_EQ(toUTF8("\xE9", "x-unknown", false), "é");
    EXPECT_EQ(toUTF8("é", "x-unknown", false), "é");
    EXPECT_EQ(toUTF8("\xE9", "x+unknown", false), "é");
    EXPECT_EQ(toUTF8("\xE9", "", false), "é");
    for (const std::string_view ascii : {"us-ascii", "ASCII"}) {
        EXPECT_EQ(toUTF8("\xE9", ascii, false), "é") << "a mail that says ASCII is often wrong";
    }
}

TEST(MailCharset, AnHTMLDocumentMayDeclareItself) {
    for (const std::string_view declaration : {"koi8-r", "\"koi8-r\"", "'koi8-r'", " koi8-r"}) {
        const auto html = htmlDeclaring(declaration);
        EXPECT_TRUE(toUTF8(html, "", true).ends_with("а")) << declaration;
        EXPECT_TRUE(toUTF8(html, "", false).ends_with("Á")) << "plain text does not: " << declaration;
        EXPECT_TRUE(toUTF8(html, "iso-8859-1", true).ends_with("Á")) << "the mail's word counts first";
    }
    EXPECT_EQ(toUTF8("<p>\xC1", "", true), "<p>Á");
    EXPECT_EQ(toUTF8("<meta charset=", "", true), "<meta charset=");
}

TEST(MailCharset, BytesThatTheCharsetDoesNotHaveBecomeReplacementCharacters) {
    EXPECT_EQ(toUTF8("a\xFF"
                     "b",
                     "utf-8", false),
              "a\uFFFDb");
    EXPECT_EQ(toUTF8("\xB0\xA1\xFF\xB0\xA1", "euc-jp", false), "亜\uFFFD亜");
    EXPECT_EQ(toUTF8("\xB0\xA1\xB0", "euc-jp", false), "亜\uFFFD") << "cut off at the end";
}

TEST(MailCharset, ALongTextIsReadWhole) {
    std::string text;
    std::string expected;
    for (int each = 0; each < 20'000; ++each) {
        text += "a\xE9";
        expected += "aé";
    }
    EXPECT_EQ(toUTF8(text, "iso-8859-1", false), expected);
}

TEST(MailCharset, ByteOrderMarksNULAndCarriageReturnsAreGone) {
    EXPECT_EQ(toUTF8("\xEF\xBB\xBFhello", "utf-8", false), "hello");
    EXPECT_EQ(toUTF8(std::string_view("a\0b", 3), "utf-8", false), "ab");
    EXPECT_EQ(toUTF8("a\r\nb\rc\r", "utf-8", false), "a\nb\nc\n");
}

} // namespace
} // namespace zelto
