#include <ZeltoHost/Evernote/EvernoteNoteContent.h>

#include <ZeltoHost/Evernote/ValidNotes.h>
#include <ZeltoHost/HTML/ENML.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

constexpr std::string_view head =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE en-note SYSTEM \"http://xml.evernote.com/pub/enml2.dtd\">\n<en-note>";
constexpr std::string_view foot = "</en-note>\n";

// The MD5 of "a" and of "b".
const std::string hashOfA = "0cc175b9c0f1b6a831c399e269772661";
const std::string hashOfB = "92eb5ffee6ae2fec3ad71c777531578f";
const EvernoteAttachment fileA{"a.png", "image/png", Data{'a'}};
const EvernoteAttachment fileB{"b.pdf", "application/pdf", Data{'b'}};

std::string contentOf(std::string_view content, const std::vector<EvernoteAttachment>& attachments = {}) {
    const auto enml = evernoteNoteContent(std::string(content), attachments);
    EXPECT_EQ(testing::errorsOfNoteContent(enml), "");
    EXPECT_TRUE(enml.starts_with(head) && enml.ends_with(foot)) << enml;
    return enml.substr(head.size(), enml.size() - head.size() - foot.size());
}

std::string media(const std::string& type, const std::string& hash) {
    return "<en-media type=\"" + type + "\" hash=\"" + hash + "\"/>";
}

} // namespace

TEST(EvernoteNoteContent, ABareAmpersandIsText) {
    EXPECT_EQ(contentOf("<p style='white-space:pre;'>a & b<br/></p><hr/><br/>"),
              "<p style=\"white-space:pre\">a &amp; b<br/></p><hr/><br/>");
    EXPECT_EQ(contentOf("<a href=\"https://a.example/?a=1&b=2\">https://a.example/?a=1&b=2</a>"),
              "<a href=\"https://a.example/?a=1&amp;b=2\">https://a.example/?a=1&amp;b=2</a>");
}

TEST(EvernoteNoteContent, WhatENMLDoesNotHaveIsLeftOut) {
    EXPECT_EQ(contentOf("<p class=x onclick=y>a</p><script>b</script><form><input><b>c</b></form><x-y>d"),
              "<p>a</p><div><b>c</b></div>d");
}

namespace {

// Every attribute that HTML has or had.
constexpr std::string_view attributes =
    " abbr='1' accept='1' accesskey='1' action='1' align='left' alt='1' archive='1' axis='1' background='1'"
    " bgcolor='red' border='1' cellpadding='1' cellspacing='1' char='1' charoff='1' charset='1' checked='1'"
    " cite='1' class='1' clear='all' code='1' color='red' cols='1' colspan='1' compact='1' content='1'"
    " contenteditable='1' coords='1' data='1' data-x='1' datetime='1' dir='ltr' disabled='1' download='1'"
    " face='x' frame='1' headers='1' height='1' hreflang='1' hspace='1' id='1' ismap='1' itemprop='1' label='1'"
    " lang='en' language='1' link='1' loading='1' longdesc='1' media='1' name='1' nohref='1' noshade='1'"
    " nowrap='1' onclick='1' open='1' ping='1' prompt='1' rel='1' rev='1' reversed='1' role='1' rowspan='1'"
    " rules='1' scope='col' shape='1' size='1' span='1' spellcheck='1' start='1' style='color:red' summary='1'"
    " tabindex='1' target='1' text='1' title='1' translate='1' type='1' usemap='1' valign='top' value='1'"
    " version='1' vspace='1' width='1' xml:lang='en' xmlns='1'";

// The elements that may stand in a body.
constexpr std::string_view elements[] = {
    "a",        "abbr", "acronym",  "address",    "applet", "article",  "aside",  "audio",   "b",
    "bdi",      "bdo",  "big",      "blockquote", "button", "canvas",   "center", "cite",    "code",
    "data",     "dd",   "del",      "details",    "dfn",    "dialog",   "dir",    "div",     "dl",
    "dt",       "em",   "fieldset", "figcaption", "figure", "font",     "footer", "form",    "h1",
    "h2",       "h3",   "h4",       "h5",         "h6",     "header",   "hgroup", "i",       "iframe",
    "ins",      "kbd",  "label",    "legend",     "li",     "listing",  "main",   "map",     "mark",
    "marquee",  "menu", "meter",    "nav",        "nobr",   "noscript", "object", "ol",      "output",
    "p",        "pre",  "progress", "q",          "ruby",   "s",        "samp",   "section", "select",
    "small",    "span", "strike",   "strong",     "sub",    "summary",  "sup",    "svg",     "template",
    "textarea", "time", "tt",       "u",          "ul",     "var",      "video",  "xmp"};

std::string with(std::string_view element) {
    return "<" + std::string(element) + std::string(attributes) + ">";
}

} // namespace

TEST(EvernoteNoteContent, NoElementAndNoAttributeIsOneThatENMLDoesNotHave) {
    std::string all;
    for (const auto element : elements) {
        all += with(element) + "x</" + std::string(element) + ">";
    }
    for (const auto* empty : {"br", "hr", "img", "wbr", "input", "embed"}) {
        all += with(empty);
    }
    const auto written = contentOf(all);
    for (const auto* kept : {"<a ", "<abbr ", "<ins ", "<var ", "<ul ", "<hr "}) {
        EXPECT_NE(written.find(kept), std::string::npos) << kept;
    }
    contentOf(with("body") + "x");
    const auto table =
        contentOf(with("table") + with("caption") + "c</caption>" + with("colgroup") + with("col") +
                  "</colgroup>" + with("thead") + with("tr") + with("th") + "h</th></tr></thead>" +
                  with("tbody") + with("tr") + with("td") + "d</td></tr></tbody>" + with("tfoot") +
                  with("tr") + with("td") + "f</td></tr></tfoot></table>");
    EXPECT_NE(table.find("<th "), std::string::npos) << table;
    EXPECT_NE(table.find("colspan=\"1\""), std::string::npos) << table;
}

TEST(EvernoteNoteContent, AWholeDocumentStaysAsItIs) {
    const auto enml = std::string(head) + "<p>a &amp; b<br/>" + media("image/png", hashOfA) +
                      "c</p><table><tr><td>" + media("application/pdf", hashOfB) +
                      "</td></tr></table><ul><li>d</li></ul>" + std::string(foot);
    EXPECT_EQ(contentOf(enml, {fileA, fileB}),
              "<p>a &amp; b<br/>" + media("image/png", hashOfA) + "c</p><table><tbody><tr><td>" +
                  media("application/pdf", hashOfB) + "</td></tr></tbody></table><ul><li>d</li></ul>");
}

TEST(EvernoteNoteContent, AFileThatNothingRefersToIsShownBehindTheTextOnce) {
    EXPECT_EQ(contentOf("<p>a</p>", {fileA, fileB, fileA}), "<p>a</p><div>" + media("image/png", hashOfA) +
                                                                "</div><div>" +
                                                                media("application/pdf", hashOfB) + "</div>");
    EXPECT_EQ(contentOf("a" + media("image/png", hashOfA) + "b", {fileA, fileB}),
              "a" + media("image/png", hashOfA) + "b<div>" + media("application/pdf", hashOfB) + "</div>");
}

TEST(EvernoteNoteContent, AReferenceToAFileThatIsNotThereIsLeftOut) {
    EXPECT_EQ(contentOf("a" + media("image/png", hashOfB) + "b<en-media/><en-media hash='x'>c", {}), "abc");
}

TEST(EvernoteNoteContent, AReferenceHasTheTypeOfItsFileAndItsOwnSize) {
    EXPECT_EQ(
        contentOf("<en-media hash='" + hashOfA + "' type='\"&' width=\"5\" alt='a>b' onclick=x />c", {fileA}),
        "<en-media type=\"image/png\" hash=\"" + hashOfA + "\" alt=\"a&gt;b\" width=\"5\"/>c");
    EXPECT_EQ(contentOf("", {{"a", "", Data{'a'}}}),
              "<div>" + media("application/octet-stream", hashOfA) + "</div>");
    EXPECT_EQ(contentOf("", {{"a", "x/\"<&", Data{'a'}}}),
              "<div>" + media("x/&quot;&lt;&amp;", hashOfA) + "</div>");
}

TEST(EvernoteNoteContent, ManyReferencesDoNotNest) {
    std::string many;
    for (int count = 0; count < 2000; ++count) {
        many += media("image/png", hashOfA);
    }
    EXPECT_EQ(contentOf("<p>" + many + "</p>", {fileA}), "<p>" + many + "</p>");
}

TEST(EvernoteNoteContent, BrokenTagsAreTextOrNothing) {
    for (const auto* broken :
         {"<en-media", "<en-media hash='", "a<en-media />b<en-media \"", "</en-note>a", "<en-note><en-note>a",
          "<?xml", "<![CDATA[a]]>", "]]>", "\x01\xFF\xEF\xBF\xBE"}) {
        contentOf(broken, {fileA});
    }
}

} // namespace zelto
