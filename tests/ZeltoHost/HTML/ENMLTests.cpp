#include <ZeltoHost/HTML/ENML.h>

#include <ZeltoHost/Process/Process.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

constexpr std::string_view head =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE en-note SYSTEM \"http://xml.evernote.com/pub/enml2.dtd\">\n<en-note>";

std::string contentOf(std::string_view html, const EnmlOptions& options = {}) {
    const auto enml = enmlFromHTML(std::string(html), options);
    EXPECT_TRUE(enml.starts_with(head)) << enml;
    EXPECT_TRUE(enml.ends_with("</en-note>\n")) << enml;
    return enml.substr(head.size(), enml.size() - head.size() - 11);
}

// The errors that Python's expat finds; empty if there are none.
std::string xmlErrors(const std::string& xml) {
    return runProcess(
               {.arguments = {"/usr/bin/python3", "-I", "-c",
                              "import sys, xml.parsers.expat\n"
                              "try: xml.parsers.expat.ParserCreate().Parse(sys.stdin.buffer.read(), True)\n"
                              "except Exception as error: print(error)"},
                .input = xml})
        .output;
}

TEST(ENML, TextAndMarkupAreWellFormedXML) {
    EXPECT_EQ(contentOf("<P ALIGN=center>a &amp; b &nbsp;<br>c<hr><b>d"),
              "<p align=\"center\">a &amp; b \u00A0<br/>c</p><hr/><b>d</b>");
}

TEST(ENML, ForbiddenAttributesAreStripped) {
    EXPECT_EQ(contentOf("<p id=a class=b onclick=c accesskey=d tabindex=e data=f dynsrc=g title=h>x</p>"),
              "<p title=\"h\">x</p>");
}

TEST(ENML, ElementsThatItLacksBecomeTheNearestOrTheirContent) {
    EXPECT_EQ(
        contentOf(
            "<article><nav>a</nav></article><button>b</button><mark>c</mark><x>d</x><listing>e</listing>"),
        "<div><div>a</div></div>b<span>c</span>d<pre>e</pre>");
    EXPECT_EQ(
        contentOf("<style>p{}</style><script>x</script><iframe>y</iframe><svg>z</svg><form><p>f</p></form>"),
        "<div><p>f</p></div>");
}

TEST(ENML, OnlyLinksThatCanBeFollowedStay) {
    EXPECT_EQ(contentOf("<a href='https://a.example/?a=1&b'>x</a><a href=javascript:y>y</a><a href=#z>z</a>"),
              "<a href=\"https://a.example/?a=1&amp;b\">x</a><a>y</a><a>z</a>");
}

TEST(ENML, AnImageBecomesMediaWhereThereIsAResource) {
    EnmlOptions options;
    options.mediaForImage = [](std::string_view source) -> std::optional<EnmlMedia> {
        return source == "cid:1" ? std::optional(EnmlMedia{"0cc175b9c0f1b6a831c399e269772661", "image/png"})
                                 : std::nullopt;
    };
    EXPECT_EQ(
        contentOf("<img src=cid:1 alt='a\"' width=3 id=x><img src=http://a.example/ alt='b&c'>", options),
        "<en-media type=\"image/png\" hash=\"0cc175b9c0f1b6a831c399e269772661\" alt=\"a&quot;\" "
        "width=\"3\"/>b&amp;c");
    EXPECT_EQ(contentOf("<img src='data:image/png;base64,AA==' alt=c>"), "c");
}

TEST(ENML, EachElementKeepsItsOwnAttributes) {
    for (const std::string_view kept :
         {R"(<font color="red" face="serif" size="2">x</font>)", R"(<hr size="2" width="50%" noshade=""/>)",
          R"(<br clear="all"/>)", R"(<ol start="3" type="a"><li type="i" value="4">x</li></ol>)",
          R"(<ul type="square"><li>x</li></ul>)", R"(<ins datetime="2024-01-02">x</ins>)",
          R"(<del datetime="2024-01-02">x</del>)", R"(<p lang="de" dir="rtl">x</p>)",
          R"(<table width="9" border="1" cellspacing="2" cellpadding="3" bgcolor="red" summary="s">)"
          R"(<colgroup span="2" width="5"><col span="1" width="4"/></colgroup>)"
          R"(<tbody valign="top"><tr bgcolor="blue" valign="top">)"
          R"(<td colspan="2" rowspan="3" width="4" height="5" bgcolor="red" nowrap="" abbr="a" )"
          R"(valign="top" align="left">x</td></tr></tbody></table>)"}) {
        EXPECT_EQ(contentOf(kept), kept);
    }
}

TEST(ENML, AnAttributeOfAnotherElementIsStripped) {
    EXPECT_EQ(contentOf("<p size=1 color=red start=2 valign=top colspan=2 span=3 datetime=x>a</p>"),
              "<p>a</p>");
    EXPECT_EQ(contentOf("<ul start=2><li start=1>a</li></ul>"), "<ul><li>a</li></ul>");
    EXPECT_EQ(contentOf("<br lang=de dir=rtl><hr lang=de dir=rtl>"), "<br/><hr/>");
    EXPECT_EQ(contentOf("<span align=left>a</span><i align=left>b</i>"), "<span>a</span><i>b</i>");
    EXPECT_EQ(contentOf("<table colspan=2><tr><td cellspacing=1 span=2>a</td></tr></table>"),
              "<table><tbody><tr><td>a</td></tr></tbody></table>");
}

TEST(ENML, OldListsBecomeLists) {
    EXPECT_EQ(contentOf("<dir><li>a</dir><menu><li>b</menu>"), "<ul><li>a</li></ul><ul><li>b</li></ul>");
}

TEST(ENML, AnImageWithoutASourceIsItsText) {
    EnmlOptions options;
    options.mediaForImage = [](std::string_view) { return EnmlMedia{"0", "image/png"}; };
    EXPECT_EQ(contentOf("<img alt=x>", options), "x");
}

TEST(ENML, HiddenElementsAreLeftOut) {
    EXPECT_EQ(contentOf("<p style='display:none'>x</p><p hidden>y</p>z"), "z");
}

TEST(ENML, StylesAreCleaned) {
    EXPECT_EQ(contentOf("<p style='color:red;background:url(x)'>x</p>"), "<p style=\"color:red\">x</p>");
}

TEST(ENML, AHeaderAndAFooterAreWrittenLikeTheRest) {
    EXPECT_EQ(
        contentOf("b", {.header = "<p style='white-space:pre;'>a<br/></p><hr/><br/>", .footer = "<i>c"}),
        "<p style=\"white-space:pre\">a<br/></p><hr/><br/>b<i>c</i>");
}

TEST(ENML, WhatXMLCannotHoldIsLeftOut) {
    EXPECT_EQ(contentOf(std::string_view("a\x01\x0B\x1F\x7F&#x1;\xEF\xBF\xBE\xEF\xBF\xBF"
                                         "b",
                                         17)),
              "a\uFFFD\uFFFDb");
}

TEST(ENML, AParserOfXMLTakesWhatComesOut) {
    for (const std::string_view html :
         {"<p>a<b>b<p>c</b>d", "<table><tr>x<td>y", "]]>&#x1;<!-- -- --><![CDATA[x]]>",
          "<a href='http://a.example/?a&b=\"'>", "<p title=\"&quot;<>&amp;'\" a'b=c <=d>x",
          "\xFF\xFE\xED\xA0\x80", "<ul><ul><li></ul></p></div>",
          "<svg:x y:z=1>&unknown;&#xD800;&#xFFFF;</svg:x>"}) {
        const auto enml = enmlFromHTML(std::string(html));
        EXPECT_EQ(xmlErrors(enml), "") << enml;
    }
    EXPECT_NE(xmlErrors("<a>"), "");
}

} // namespace
} // namespace zelto
