#include <ZeltoIntegrations/Helpers/HTMLText.h>

#include <gtest/gtest.h>

namespace zelto {

TEST(HTMLText, MarkupCharactersAreEntities) {
    EXPECT_EQ(htmlText("<b> \"A&T\" 'x' ä\n"), "&lt;b&gt; &quot;A&amp;T&quot; 'x' ä\n");
    EXPECT_EQ(htmlText("<a&b>", Ampersands::keep), "&lt;a&b&gt;");
    EXPECT_EQ(htmlText(""), "");
}

TEST(HTMLText, ControlCharactersAreLeftOutAndWhiteSpaceStays) {
    EXPECT_EQ(htmlText(std::string("a\0b\x01\x1F\x7F\t\r\nc", 11)), "ab\t\r\nc");
}

TEST(HTMLText, ALinkIsItsOwnText) {
    EXPECT_EQ(htmlLink("https://example.org/?a=1&b=2"),
              "<a href=\"https://example.org/?a=1&b=2\">https://example.org/?a=1&b=2</a>");
    EXPECT_EQ(htmlLink("\"><script>"), "<a href=\"&quot;&gt;&lt;script&gt;\">&quot;&gt;&lt;script&gt;</a>");
}

} // namespace zelto
