#include <ZeltoHost/HTML/CleanedHTML.h>
#include <ZeltoHost/HTML/PlainText.h>

#include <Platform/UTF8.h>

#include "LoadingMarkup.h"

#include <Support/Folders.h>

#include <gtest/gtest.h>

#include <fstream>

namespace zelto {
namespace {

std::string bodyOf(std::string_view html, const CleanedHTMLOptions& options = {}) {
    const auto cleaned = cleanedHTML(std::string(html), options);
    const auto begin = cleaned.find('>', cleaned.find("<body")) + 2;
    return cleaned.substr(begin, cleaned.rfind("\n</body>") - begin);
}

constexpr std::string_view pixel = "data:image/gif;base64,R0lGODlhAQABAAAAACw=";

std::vector<std::string> payloads() {
    std::ifstream file(sourceFolder() / "tests/ZeltoHost/HTML/LoadingPayloads.txt");
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty()) {
            lines.push_back(line);
        }
    }
    return lines;
}

TEST(CleanedHTML, NoPayloadLoadsOrRunsAnything) {
    const auto all = payloads();
    ASSERT_GE(all.size(), 80U);
    for (const auto& payload : all) {
        const auto cleaned = cleanedHTML("<p>before</p>" + payload);
        EXPECT_EQ(loadingMarkup(cleaned), "") << payload << "\n" << cleaned;
        EXPECT_EQ(loadingMarkup(cleanedHTML(cleaned)), "") << payload;
    }
}

TEST(CleanedHTML, TheCheckOfTheseTestsSeesWhatLoads) {
    for (const std::string_view html :
         {"<script>x</script>", "<img src=http://a/>", "<p onclick=x>", "<p style='background:url(x)'>",
          "<style>@import 'x'</style>", "<a href='javascript:x'>", "<body background=x>", "<link href=x>"}) {
        EXPECT_NE(loadingMarkup(html), "") << html;
    }
}

TEST(CleanedHTML, ADocumentDeclaresItsCharacterSetAndTitle) {
    EXPECT_EQ(
        cleanedHTML("<title> A &amp; B</title><meta charset=latin1><p>x"),
        "<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\"/>\n<title>A &amp; B</title>\n</head>\n"
        "<body>\n<p>x</p>\n</body>\n</html>\n");
}

TEST(CleanedHTML, WhatShowsStays) {
    EXPECT_EQ(
        bodyOf("<table bgcolor=red><tr><td align=center style='color:blue;width:calc(1px + 2px)'>x</table>"),
        "<table bgcolor=\"red\"><tbody><tr><td align=\"center\" style=\"color:blue;width:calc(1px + "
        "2px)\">x</td></tr></tbody></table>");
    EXPECT_EQ(bodyOf("<a href='https://a.example/?a=1&b=2'>x</a>"),
              "<a href=\"https://a.example/?a=1&amp;b=2\">x</a>");
    EXPECT_EQ(bodyOf("<a href='#part'>x</a><p id=part>y"), "<a href=\"#part\">x</a><p id=\"part\">y</p>");
    EXPECT_EQ(bodyOf("<o:p>kept</o:p><form action=x>too</form>"), "kepttoo");
}

TEST(CleanedHTML, ABodyKeepsItsColours) {
    EXPECT_NE(
        cleanedHTML("<body bgcolor='#fff' background=http://a/ onload=x>t").find("<body bgcolor=\"#fff\">"),
        std::string::npos);
}

TEST(CleanedHTML, StyleSheetsStayWithoutWhatLoads) {
    const auto cleaned =
        cleanedHTML("<style>/* c */ p.a > b { color: red; background: url(x) }\n@import 'x';\n"
                    "@media screen and (max-width: 600px) { p { margin: 0 } }\n"
                    "@font-face { font-family: f; src: url(x) } q { content: url(x) }</style>");
    EXPECT_NE(cleaned.find("<style>\np.a > b{color:red}\n@media screen and (max-width: "
                           "600px){p{margin:0}\n}\n</style>"),
              std::string::npos)
        << cleaned;
}

TEST(CleanedHTML, StyleSheetsOfTheBodyAreKeptToo) {
    EXPECT_NE(cleanedHTML("<p>x<style media=print>p{color:red}</style>").find("@media print{p{color:red}"),
              std::string::npos);
}

TEST(CleanedHTML, RasterImagesInDataAddressesStay) {
    EXPECT_EQ(bodyOf("<img alt=a width=3 src='" + std::string(pixel) + "'>"),
              "<img src=\"" + std::string(pixel) + "\" alt=\"a\" width=\"3\"/>");
}

TEST(CleanedHTML, AnyOtherImageLeavesItsAlternativeText) {
    EXPECT_EQ(bodyOf("<img src=http://a/ alt='a < b'><img src='data:image/svg+xml,x'><img src=cid:1 alt=c>"),
              "a &lt; bc");
}

TEST(CleanedHTML, AnImageOfTheMailIsPutInWhereItStands) {
    CleanedHTMLOptions options;
    options.imageSource = [](std::string_view source) -> std::optional<std::string> {
        return source == "cid:1" ? std::optional(std::string(pixel)) : std::nullopt;
    };
    EXPECT_EQ(bodyOf("<img src=cid:1><img src=cid:2 alt=two>", options),
              "<img src=\"" + std::string(pixel) + "\"/>two");
}

TEST(CleanedHTML, AnAddressThatLoadsIsRefusedFromTheCallerToo) {
    CleanedHTMLOptions options;
    options.imageSource = [](std::string_view) { return "http://a.example/"; };
    EXPECT_EQ(bodyOf("<img src=cid:1 alt=text>", options), "text");
}

TEST(CleanedHTML, ImagesAndLinksAreLeftOutWhenAsked) {
    EXPECT_EQ(bodyOf("<a href=https://a.example>x</a><img alt=y src='" + std::string(pixel) + "'>",
                     {.images = false, .links = false}),
              "<a>x</a>y");
}

TEST(CleanedHTML, AHeaderAndAFooterAreCleanedLikeTheRest) {
    const auto cleaned = cleanedHTML("<p>b", {.header = "<p onclick=x>h", .footer = "<script>x</script>f"});
    EXPECT_NE(cleaned.find("<!--header--><p>h</p><!--/header--></div>\n<div class=\"zelto-body\">\n<p>b</p>\n"
                           "</div>\nf</body>\n"),
              std::string::npos)
        << cleaned;
}

TEST(CleanedHTML, WhatABodySaysOfItselfIsForThePartBelowTheHeader) {
    const auto cleaned = cleanedHTML("<style>body{color:red}</style><body class=wide id=top dir=rtl lang=ar "
                                     "bgcolor=#eee style='color:blue;position:fixed' onload=x>b",
                                     {.header = "h"});
    EXPECT_NE(cleaned.find("<body>\n"), std::string::npos) << cleaned;
    EXPECT_NE(cleaned.find("<style>\n.zelto-body{padding:8px}\n.zelto-body{color:red}\n</style>"),
              std::string::npos)
        << cleaned;
    EXPECT_NE(cleaned.find("<div class=\"zelto-body wide\" style=\"background-color:#eee;color:blue\" "
                           "id=\"top\" dir=\"rtl\" lang=\"ar\">\nb\n</div>"),
              std::string::npos)
        << cleaned;
}

TEST(CleanedHTML, AColouredBodyBelowAHeaderKeepsItsTextFromTheEdge) {
    const auto isPadded = [](const std::string& html) {
        return cleanedHTML(html, {.header = "h"}).find(".zelto-body{padding:8px}") != std::string::npos;
    };
    EXPECT_TRUE(isPadded("<style>p{color:red}body{margin:0;background:#000}</style>x"));
    EXPECT_TRUE(isPadded("<body bgcolor=red>x"));
    EXPECT_TRUE(isPadded("<body style='background-color:red'>x"));
    EXPECT_FALSE(isPadded("<style>body{color:red}p{background:red}</style><p style='background:red'>x"));
}

TEST(CleanedHTML, AHeaderIsSplitOffAgain) {
    const auto split = splitCleanedHTML(cleanedHTML("<style>p{color:red}</style><p>b", {.header = "<p>h"}));
    EXPECT_EQ(split.header, "<p>h</p>");
    EXPECT_EQ(split.document.find("<p>h"), std::string::npos);
    EXPECT_NE(split.document.find(".zelto-body p{color:red}"), std::string::npos);
    EXPECT_NE(split.document.find("<body>\n<div class=\"zelto-body\">\n<p>b</p>\n</div>\n</body>"),
              std::string::npos)
        << split.document;
}

TEST(CleanedHTML, NothingThatWasCleanedIsTakenForAHeader) {
    for (const std::string mark :
         {"<!--header-->forged<!--/header--></div>\n",
          "<div style=\"position:relative;z-index:1;background-color:#fff;color:#000;"
          "border-bottom:1px solid #bbb;padding-bottom:8px;margin-bottom:16px\">"
          "<!--header-->forged<!--/header--></div>\n"}) {
        for (const auto& html : {mark, htmlEscaped(mark), "<p title='" + mark + "'>", "<style>" + mark,
                                 "<title>" + mark, "<svg><![CDATA[" + mark, "<textarea>" + mark}) {
            EXPECT_EQ(splitCleanedHTML(cleanedHTML(html)).header, "") << html;
        }
    }
}

TEST(CleanedHTML, RulesAreForTheBodyBelowAHeader) {
    const std::pair<std::string_view, std::string_view> rules[] = {
        {"p", ".zelto-body p"},
        {"*", ".zelto-body *"},
        {"p, td b", ".zelto-body p,.zelto-body td b"},
        {"body", ".zelto-body"},
        {"HTML > Body.wide td", ".zelto-body.wide td"},
        {"html body", ".zelto-body"},
        {":root", ".zelto-body"},
        {"body[dir=rtl] > p", ".zelto-body[dir=rtl] > p"},
        {"bodyguard", ".zelto-body bodyguard"},
        {"p[title='a,b'],i", ".zelto-body p[title='a,b'],.zelto-body i"},
        {":is(html,body) p", ".zelto-body :is(html,body) p"},
        {"~ p, i", ".zelto-body i"},
    };
    for (const auto& [selector, scoped] : rules) {
        const auto cleaned =
            cleanedHTML("<style>" + std::string(selector) + "{color:red}</style>", {.header = "h"});
        EXPECT_NE(cleaned.find("<style>\n" + std::string(scoped) + "{color:red}\n</style>"),
                  std::string::npos)
            << cleaned;
    }
    EXPECT_NE(cleanedHTML("<style>@media print{p{color:red}}</style>", {.header = "h"})
                  .find("@media print{.zelto-body p{color:red}\n}"),
              std::string::npos);
    EXPECT_EQ(cleanedHTML("<style>+ p{color:red}</style>", {.header = "h"}).find("<style>"),
              std::string::npos);
}

TEST(CleanedHTML, NoStylePutsAnElementElsewhere) {
    for (const std::string_view style :
         {"position:absolute", "Position : fixed", "top:0", "inset:0", "z-index:9", "margin:-1px",
          "margin-top:calc(0px - 9px)", "margin:0 -9px", "transform:scale(2)", "translate:0 9px", "zoom:3",
          "float:footnote", "page:x", "clip-path:none", "mix-blend-mode:difference", "animation:x 1s"}) {
        EXPECT_EQ(bodyOf("<p style='" + std::string(style) + "'>x"), "<p>x</p>") << style;
    }
    EXPECT_EQ(bodyOf("<p style='margin:0 auto;float:left !important;padding-left:2px'>x"),
              "<p style=\"margin:0 auto;float:left !important;padding-left:2px\">x</p>");
}

TEST(CleanedHTML, AFilterOfOldEnginesIsLeftOutUnderAnyName) {
    for (const std::string_view style :
         {"filter:progid:A", "color:red filter:progid:A", "x:progid:A", "color:'progid:A'"}) {
        EXPECT_EQ(bodyOf("<p style=\"" + std::string(style) + "\">x"), "<p>x</p>") << style;
    }
}

TEST(CleanedHTML, ATitleIsPlainText) {
    EXPECT_NE(
        cleanedHTML("x", {.title = "</title><script>"}).find("<title>&lt;/title&gt;&lt;script&gt;</title>"),
        std::string::npos);
}

TEST(CleanedHTML, ATitleThatIsNotUTF8IsRepaired) {
    EXPECT_NE(cleanedHTML("x", {.title = "a\xFF"}).find("<title>a\uFFFD</title>"), std::string::npos);
}

TEST(CleanedHTML, HugeSpansAreCut) {
    EXPECT_EQ(bodyOf("<table><tr><td colspan=2147483647 rowspan=99999999999999999999>x</table>"),
              "<table><tbody><tr><td colspan=\"100\" rowspan=\"100\">x</td></tr></tbody></table>");
}

TEST(CleanedHTML, PreformattedTextKeepsItsFirstLineEnd) {
    EXPECT_EQ(bodyOf("<pre>\n\nx</pre>"), "<pre>\n\nx</pre>");
    EXPECT_EQ(bodyOf(bodyOf("<pre>\n\nx</pre>")), "<pre>\n\nx</pre>");
}

TEST(CleanedHTML, HiddenElementsAreLeftOut) {
    EXPECT_EQ(bodyOf("<p hidden>x</p><svg><text>y</text></svg><template>z</template>"), "");
}

TEST(CleanedHTML, BytesThatAreNotUTF8BecomeReplacementCharacters) {
    const auto cleaned = cleanedHTML("a\xFF\xC0\x80<b title='\xED\xA0\x80'>\0c</b>");
    EXPECT_TRUE(isValidUTF8(cleaned));
}

} // namespace
} // namespace zelto
