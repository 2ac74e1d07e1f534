#include <ZeltoIntegrations/Evernote/EvernoteContent.h>

#include <gtest/gtest.h>

namespace zelto {

TEST(EvernoteContent, ARemarkIsTrimmedAndItsLineEndsAreBreaks) {
    EXPECT_EQ(htmlRemark("  a\nb  "), "<p style='white-space:pre;'>a<br/>b<br/></p><hr/><br/>");
    EXPECT_EQ(htmlRemark("a\r\nb\r\n"), "<p style='white-space:pre;'>a<br/>b<br/></p><hr/><br/>");
    EXPECT_EQ(htmlRemark("\n\t a\n\nb \n"), "<p style='white-space:pre;'>a<br/><br/>b<br/></p><hr/><br/>");
}

TEST(EvernoteContent, ARemarkWithoutTextIsEmpty) {
    EXPECT_EQ(htmlRemark(std::nullopt), "");
    EXPECT_EQ(htmlRemark(""), "");
    EXPECT_EQ(htmlRemark(" \n "), "");
}

TEST(EvernoteContent, MarkupInARemarkIsText) {
    EXPECT_EQ(htmlRemark("a & b <b>\"c\"</b>"), "<p style='white-space:pre;'>a & b "
                                                "&lt;b&gt;&quot;c&quot;&lt;/b&gt;<br/></p><hr/><br/>");
}

} // namespace zelto
