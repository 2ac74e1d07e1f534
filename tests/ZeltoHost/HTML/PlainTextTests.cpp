#include <ZeltoHost/HTML/PlainText.h>

#include <Platform/UTF8.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

TEST(PlainText, WhiteSpaceCollapsesAsInABrowser) {
    EXPECT_EQ(plainTextFromHTML("  a \n\t b  <b> c</b> <i></i> d <br>  e  "), "a b c d\ne");
    EXPECT_EQ(plainTextFromHTML("a&nbsp;&nbsp;b"), "a\u00A0\u00A0b");
}

TEST(PlainText, ParagraphsHaveABlankLineBetweenAndDivisionsNone) {
    EXPECT_EQ(plainTextFromHTML("<p>a<p>b<div>c</div><div>d</div>"), "a\n\nb\n\nc\nd");
}

TEST(PlainText, EmptyBlocksAreOneBlankLine) {
    EXPECT_EQ(plainTextFromHTML("<div>a</div><div><br></div><div>&nbsp;</div><div>b</div>"), "a\n\nb");
    EXPECT_EQ(plainTextFromHTML("a<br><br><br>b"), "a\n\n\nb");
    EXPECT_EQ(plainTextFromHTML("<div>a<br></div><div>b</div>"), "a\nb");
}

TEST(PlainText, ListsShowTheirMarks) {
    EXPECT_EQ(plainTextFromHTML("<ul><li>a<li>b<ol start=3><li>c<li value=7>d<li>e</ol></ul>"),
              "• a\n• b\n  3. c\n  7. d\n  8. e");
    EXPECT_EQ(plainTextFromHTML("<ul style='list-style: none'><li>a</ul>"), "a");
    EXPECT_EQ(plainTextFromHTML("<ul><li><p>a</p></li><li></li></ul>b"), "• a\n\nb");
}

TEST(PlainText, CellsOfARowAreJoinedByATab) {
    EXPECT_EQ(plainTextFromHTML("<table><tr><th>a<th>b<tr><td>c<td></td><td>d</table>"), "a\tb\nc\td");
    EXPECT_EQ(plainTextFromHTML("<table><tr><td><p>a</p><td><p>b</p></table>"), "a\n\nb");
}

TEST(PlainText, QuotationsAreMarkedLineByLine) {
    EXPECT_EQ(plainTextFromHTML("a<blockquote>b<br>c<blockquote>d</blockquote></blockquote>e"),
              "a\n\n> b\n> c\n>\n> > d\n\ne");
}

TEST(PlainText, PreformattedTextStays) {
    EXPECT_EQ(plainTextFromHTML("<pre>\n a  b\n\n  c</pre>"), " a  b\n\n  c");
    EXPECT_EQ(plainTextFromHTML("<div style='white-space: pre-wrap'>a  b\nc</div>"), "a  b\nc");
}

TEST(PlainText, NothingHiddenAppears) {
    EXPECT_EQ(
        plainTextFromHTML("<head><title>t</title><style>s</style></head><script>x</script><!-- c -->"
                          "<p style='display:none'>d</p><p hidden>h</p><div style='mso-hide:all'>m</div>"
                          "<select><option>o</select><textarea>t</textarea><svg><text>v</text></svg>seen"),
        "seen");
}

TEST(PlainText, TextOfNoSizeIsHiddenUntilItHasOne) {
    EXPECT_EQ(plainTextFromHTML("<div style='font-size:0px'>no<div style='font-size:13px'>yes</div></div>"),
              "yes");
}

TEST(PlainText, ALinkShowsItsAddressUnlessItsTextDoes) {
    EXPECT_EQ(plainTextFromHTML("<a href='https://a.example/x?y'>read <b>on</b></a>!"),
              "read on <https://a.example/x?y>!");
    EXPECT_EQ(plainTextFromHTML("<a href='https://a.example/'>a.example</a>"), "a.example");
    EXPECT_EQ(plainTextFromHTML("<a href='mailto:a@b.example'>a@b.example</a>"), "a@b.example");
    EXPECT_EQ(plainTextFromHTML("<a href='https://a.example/'>read</a>", {.linkTargets = false}), "read");
    EXPECT_EQ(plainTextFromHTML("<a href='javascript:x'>read</a>"), "read");
}

TEST(PlainText, ImagesAreTheirAlternativeText) {
    EXPECT_EQ(plainTextFromHTML("a <img src=x alt=logo> b<img>"), "a logo b");
}

TEST(PlainText, EntitiesAreCharacters) {
    EXPECT_EQ(plainTextFromHTML("&lt;&amp;&eacute;&#x1F600;&#0;&unknown;"), "<&é😀\uFFFD&unknown;");
}

TEST(PlainText, BytesThatAreNotUTF8BecomeReplacementCharacters) {
    EXPECT_EQ(plainTextFromHTML("a\xFF"
                                "b\xC3"),
              "a\uFFFDb\uFFFD");
    EXPECT_TRUE(isValidUTF8(plainTextFromHTML(std::string("\0\xED\xA0\x80<p \xFE=\xFF>", 12))));
}

TEST(PlainText, AnEmptyTextGivesAnEmptyText) {
    EXPECT_EQ(plainTextFromHTML(""), "");
    EXPECT_EQ(plainTextFromHTML("<p> </p><br>"), "");
}

TEST(PlainText, BecomesHTMLThatShowsTheSame) {
    EXPECT_EQ(htmlFromPlainText("a < b & \"c\"\r\nd\n"), "a &lt; b &amp; &quot;c&quot;<br>\nd<br>\n");
    EXPECT_EQ(htmlFromPlainText("  a   b"), "\u00A0 a \u00A0 b");
    EXPECT_EQ(plainTextFromHTML(htmlFromPlainText("x <b>\n'y' & &amp;")), "x <b>\n'y' & &amp;");
}

TEST(PlainText, EscapingLeavesControlCharactersOut) {
    EXPECT_EQ(htmlEscaped(std::string_view("a\0\x1B\x7F'b", 6)), "a&#39;b");
}

} // namespace
} // namespace zelto
