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
