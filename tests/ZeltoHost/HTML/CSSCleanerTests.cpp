#include <ZeltoHost/HTML/CSSCleaner.h>

#include <gtest/gtest.h>

using namespace std::string_view_literals;

namespace zelto {
namespace {

TEST(CSSCleaner, HarmlessDeclarationsStay) {
    for (const std::string_view declaration :
         {"color:red", "mso-line-height-2:1", "width:calc((1px + 2px) * (3 - 1))", "grid-area:(1)",
          "float:left", "float:right", "float:none", "float:RIGHT !important", "margin:1px 2px",
          "font-family:\"A b\",'C'", "background:linear-gradient(rgb(1,2,3),RGBA(4,5,6,0.5))",
          "font-family:a_b-\u00e9", "color:#fff;width:1px"}) {
        EXPECT_EQ(cleanedDeclarations(declaration), declaration);
    }
    EXPECT_EQ(cleanedDeclarations(" COLOR : Red ;; width\n:\t1px ; "), "color:Red;width:1px");
}

TEST(CSSCleaner, OthersAreLeftOut) {
    for (const std::string_view declaration : {"",
                                               "color",
                                               "color:",
                                               "color: ",
                                               ":red",
                                               "2x:red",
                                               "-x:red",
                                               "co_lor:red",
                                               "co lor:red",
                                               "color:\\72 ed",
                                               "color:<b>",
                                               "color:@x",
                                               "color:{red}",
                                               "color:red}",
                                               "color:a)b(c",
                                               "color:rgb(1",
                                               "color:rgb(1))",
                                               "color:rgb(1;2)",
                                               "color:[a;b]",
                                               "font-family:\"a",
                                               "font-family:\"a/*b\"",
                                               "font-family:\"a(b\"",
                                               "x:alpha:1",
                                               "x:ProgID",
                                               "x:url(y)",
                                               "x:url (y)",
                                               "x:url\n(y)",
                                               "x:rgb2(y)",
                                               "x:_rgb(y)",
                                               "x:rgb\u00e9(y)",
                                               "x:1rgb(y)",
                                               "float:top",
                                               "float:calc(1)",
                                               "margin:-1px",
                                               "margin-left:calc(1px)",
                                               "position:fixed",
                                               "inset-block:0",
                                               "content:x"}) {
        EXPECT_EQ(cleanedDeclarations(declaration), "") << declaration;
        EXPECT_EQ(cleanedDeclarations("width:1px;" + std::string(declaration) + "\n"), "width:1px")
            << declaration;
    }
    EXPECT_EQ(cleanedDeclarations("color:re\0d"sv), "");
    EXPECT_EQ(cleanedDeclarations("font-family:\"a\0b\""sv), "");
}

TEST(CSSCleaner, ALineEndClosesAQuote) {
    EXPECT_EQ(cleanedDeclarations("font-family:\"a\n/* ; */;color:red"), "color:red");
    EXPECT_EQ(cleanedDeclarations("font-family:'a;b\n;color:red"), "color:red");
}

TEST(CSSCleaner, CommentsAndMarksOfAncientBrowsersAreBlanks) {
    EXPECT_EQ(cleanedDeclarations("color:/* a;b:c */red/**/;width:1px/* open"), "color:red;width:1px");
    EXPECT_EQ(cleanedStyleSheet("<!-- a{color:red} -->b{color:red}"), "a{color:red}\nb{color:red}\n");
    EXPECT_EQ(cleanedDeclarations("font-family:'/*',\"-->\""), "");
    EXPECT_EQ(cleanedDeclarations("font-family:'*/'"), "font-family:'*/'");
}

TEST(CSSCleaner, RulesStayWithWhatIsHarmlessInThem) {
    EXPECT_EQ(cleanedStyleSheet("a , b > c{color:red;position:fixed}} d{top:0} e{color:blue"),
              "a , b > c{color:red}\ne{color:blue}\n");
    EXPECT_EQ(cleanedStyleSheet("a\\62{color:red}b;c{color:red}d{color:red}"), "d{color:red}\n");
    EXPECT_EQ(cleanedStyleSheet("{color:red}a"), "");
    EXPECT_EQ(cleanedStyleSheet("a[b=\"}\"]{color:red}"), "");
}

TEST(CSSCleaner, OfTheRulesWithANameOnlyThoseForMediaStay) {
    EXPECT_EQ(cleanedStyleSheet("@MEDIA print and (min-width:1px){a{color:red}}b{color:red}"),
              "@media print and (min-width:1px){a{color:red}\n}\nb{color:red}\n");
    for (const std::string_view rule :
         {"@media", "@mediax print{a{color:red}}", "@media-print{a{color:red}}", "@media2 {a{color:red}}",
          "@media_x{a{color:red}}", "@media \"x\"{a{color:red}}", "@media 'x'{a{color:red}}",
          "@media <x{a{color:red}}", "@media print{a{top:0}}", "@import 'x';", "@font-face{color:red}",
          "@page{color:red}", "@supports (a:b){a{color:red}}"}) {
        EXPECT_EQ(cleanedStyleSheet(std::string(rule) + " b{color:red}"),
                  rule == "@media" ? "" : "b{color:red}\n")
            << rule;
    }
}

TEST(CSSCleaner, RulesForMediaStayToTheFourthLevel) {
    const auto nested = [](int levels) {
        std::string sheet = "a{color:red}\n";
        for (int level = 0; level < levels; ++level) {
            sheet = "@media print{" + sheet + "}\n";
        }
        return sheet;
    };
    EXPECT_EQ(cleanedStyleSheet(nested(4)), nested(4));
    EXPECT_EQ(cleanedStyleSheet(nested(5)), "");
}

TEST(CSSCleaner, RulesAreForTheElementsOfAScope) {
    struct {
        std::string_view selectors;
        std::string_view scoped;
    } const rows[] = {{"a", ".s a"},
                      {"a,b c", ".s a,.s b c"},
                      {"a,, b,", ".s a,.s b"},
                      {"> a,+b,~c,|d,e", ".s e"},
                      {"body", ".s"},
                      {"HTML > body.wide td", ".s.wide td"},
                      {"html body", ".s"},
                      {":root[a=b]>c", ".s[a=b]>c"},
                      {"body2,html_x,html\u00e9", ".s body2,.s html_x,.s html\u00e9"},
                      {"body:is(a,b) c", ".s:is(a,b) c"}};

    for (const auto& [selectors, scoped] : rows) {
        EXPECT_EQ(cleanedStyleSheet(std::string(selectors) + "{color:red}", ".s"),
                  std::string(scoped) + "{color:red}\n");
    }
    EXPECT_EQ(cleanedStyleSheet(",{color:red}>a{color:red}", ".s"), "");
}

} // namespace
} // namespace zelto
