#include <ZeltoSandbox/OneNote/OneNoteHTML.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using sandbox::readOneNoteHTML;

std::string document(const std::string& body) {
    return "<html><head><title>T</title></head><body>" + body + "</body></html>";
}

// What is wrong with the body; "good" for a good one.
std::string problem(const std::string& body) {
    const auto read = readOneNoteHTML(document(body));
    return read ? "good" : read.error();
}

// What is shown of a body.
std::string shown(const std::string& body) {
    const auto read = readOneNoteHTML(document(body));
    if (!read) {
        return read.error();
    }
    const std::string_view begin = "<body>\n";
    const auto start = read->shown.find(begin) + begin.size();
    return read->shown.substr(start, read->shown.rfind("\n</body>") - start);
}

} // namespace

TEST(OneNoteHTML, IsReadWithItsTitleAndItsReferences) {
    const auto read = readOneNoteHTML(
        "<!DOCTYPE html>\n<html lang=\"de\">\n<head><title>A &amp; &#66;</title></head>\n<body>"
        "<object data-attachment=\"a &quot;b&quot;.pdf\" data=\"name:one\" type=\"application/pdf\" />"
        "<img src=\"name:two\" alt=\"x\" /></body>\n</html>\n<!-- end -->\n");
    ASSERT_TRUE(read) << read.error();
    EXPECT_EQ(read->title, "A & B");
    ASSERT_EQ(read->references.size(), 2U);
    EXPECT_EQ(read->references[0].part, "one");
    EXPECT_EQ(read->references[0].fileName, "a \"b\".pdf");
    EXPECT_EQ(read->references[1].part, "two");
    EXPECT_EQ(read->references[1].fileName, "");
}

TEST(OneNoteHTML, MayHaveALineBreakWithoutAnEndAndABareAmpersandInALink) {
    EXPECT_EQ(problem("a<br>b<br/>c<br />"), "good");
    EXPECT_EQ(problem("<a href=\"https://x/?a=1&b=2\">https://x/?a=1&b=2</a>"), "good");
    EXPECT_EQ(problem("<p>a &amp; &#38; &#x26; &nbsp;</p>"), "good");
    EXPECT_EQ(problem("<p title='single \"quotes\"'>x > y</p>"), "good");
}

TEST(OneNoteHTML, IsRefusedForAnyOtherMalformation) {
    EXPECT_EQ(problem("<p>a & b</p>"), "there is a \"&\" that begins no entity (line 1)");
    EXPECT_EQ(problem("<p title=\"a & b\">x</p>"), "there is a \"&\" that begins no entity (line 1)");
    EXPECT_EQ(problem("<a href=\"x\"><b>a & b</b></a>"), "there is a \"&\" that begins no entity (line 1)");
    EXPECT_EQ(problem("<p>a &#xZ; b</p>"), "there is a \"&\" that begins no entity (line 1)");
    EXPECT_EQ(problem("<p>a &#; b</p>"), "there is a \"&\" that begins no entity (line 1)");
    EXPECT_EQ(problem("\n<p>one<p>two"), "</body> ends <p> (line 2)");
    EXPECT_EQ(problem("<b><i>x</b></i>"), "</b> ends <i> (line 1)");
    EXPECT_EQ(problem("<img src=\"x\">"), "</body> ends <img> (line 1)");
    EXPECT_EQ(problem("<hr>"), "</body> ends <hr> (line 1)");
    EXPECT_EQ(problem("x</br>"), "</br> ends <body> (line 1)");
    EXPECT_EQ(problem("<p class=a>x</p>"), "the attribute \"class\" of <p> has no quoted value (line 1)");
    EXPECT_EQ(problem("<p hidden>x</p>"), "the attribute \"hidden\" of <p> has no quoted value (line 1)");
    EXPECT_EQ(problem("<p a=\"1\" a=\"2\">x</p>"), "<p> has the attribute \"a\" twice (line 1)");
    EXPECT_EQ(problem("<p a=\"1\"b=\"2\">x</p>"),
              "<p> has attributes without a blank in front of them (line 1)");
    EXPECT_EQ(problem("<p a=\"<\">x</p>"), "the attribute \"a\" of <p> has a \"<\" (line 1)");
    EXPECT_EQ(problem("1 < 2"), "\"<\" is not followed by a name (line 1)");
    EXPECT_EQ(problem("<!-- a -- b -->"), "a comment does not end (line 1)");
    EXPECT_EQ(problem("<![CDATA[x]]>"), "a declaration is not allowed there (line 1)");
    EXPECT_EQ(problem("<?xml?>"), "\"<\" is not followed by a name (line 1)");
    EXPECT_EQ(problem("a\x01"), "there is a control character (line 1)");
    EXPECT_EQ(problem("</p"), "the end tag of <p> does not end (line 1)");
    EXPECT_EQ(problem("<p /x>"), "<p> does not end (line 1)");
    EXPECT_EQ(problem("\xFF"), "it is not UTF-8");
}

TEST(OneNoteHTML, HasOneRoot) {
    const auto problemOf = [](std::string_view html) { return readOneNoteHTML(html).error(); };
    EXPECT_EQ(problemOf(""), "there is no <html> (line 1)");
    EXPECT_EQ(problemOf("<p>x</p>"), "<p> is outside <html> (line 1)");
    EXPECT_EQ(problemOf("x<html></html>"), "there is text outside <html> (line 1)");
    EXPECT_EQ(problemOf("<html></html><html></html>"), "<html> is outside <html> (line 1)");
    EXPECT_EQ(problemOf("</p>"), "</p> ends nothing (line 1)");
    EXPECT_EQ(problemOf("<html>"), "<html> has no end tag (line 1)");
    EXPECT_EQ(problemOf("<html></html><!DOCTYPE html>"), "a declaration is not allowed there (line 1)");
    EXPECT_EQ(problemOf("<html"), "<html> does not end (line 1)");
    EXPECT_EQ(problemOf("<html a"), "the attribute \"a\" of <html> has no quoted value (line 1)");
    EXPECT_EQ(problemOf("<html a=\"x"), "the attribute \"a\" of <html> has no quoted value (line 1)");
    std::string deep;
    for (int i = 0; i < 3000; ++i) {
        deep += "<div>";
    }
    EXPECT_EQ(problem(deep), "elements are nested too deep (line 1)");
}

TEST(OneNoteHTML, IsShownWithoutWhatLoadsOrRuns) {
    EXPECT_EQ(shown("<p style=\"color:red\" onclick=\"run()\" class=\"a\">x</p>"),
              "<p style=\"color:red\">x</p>");
    EXPECT_EQ(
        shown("<script>run()</script><style>p{}</style><form><p>x</p></form><iframe src=\"x\"></iframe>"),
        "");
    EXPECT_EQ(shown("<svg><a href=\"https://x\">y</a></svg><custom>text</custom>"), "text");
    EXPECT_EQ(shown("<a href=\"javascript:run()\">x</a><a href=\"https://x/?a=1&b=2\">y & z</a>"),
              "<a>x</a><a href=\"https://x/?a=1&amp;b=2\">y &amp; z</a>");
    EXPECT_EQ(
        shown("<img src=\"https://x/y.png\" alt=\"a &lt; b\" /><img src=\"data:image/svg+xml;base64,x\" />"),
        "a &lt; b");
    EXPECT_EQ(shown("<img src=\"data:image/png;base64,AAAA\" width=\"3\" onload=\"run()\" />"),
              "<img src=\"data:image/png;base64,AAAA\" width=\"3\">");
    EXPECT_EQ(shown("<p title=\"&quot;&gt;&lt;script&gt;\">&lt;script&gt;</p>"),
              "<p title=\"&quot;>&lt;script>\">&lt;script&gt;</p>");
    EXPECT_EQ(shown("<p style=\"background:URL(https://x)\">a</p><p style=\"background:u&#92;72l(x)\">b</p>"),
              "<p>a</p><p>b</p>");
    EXPECT_EQ(shown("a<br>b<hr/>c"), "a<br>b<hr>c");
}

TEST(OneNoteHTML, ShowsTheNameOfAFileInItsPlace) {
    EXPECT_EQ(
        shown("<p>x</p><object data-attachment=\"&lt;a&gt;\" data=\"name:n\" type=\"text/plain\" /><p>y</p>"),
        "<p>x</p><div class=\"file\">&lt;a&gt;</div><p>y</p>");
}

TEST(OneNoteHTML, ThatCannotBeReadIsShownAsASentence) {
    EXPECT_EQ(sandbox::shownOneNoteHTML("<p>"),
              "This page cannot be shown: <p> is outside <html> (line 1)\n");
}

} // namespace zelto
