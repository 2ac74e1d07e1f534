#include <ZeltoHost/HTML/InlineStyle.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

TEST(InlineStyle, BoldIsAWordOrAWeightOfSixHundred) {
    for (const std::string_view bold : {"bold", "bolder", "600", "900", " BOLD ! important"}) {
        EXPECT_EQ(inlineStyle("font-weight:" + std::string(bold)).bold, true) << bold;
    }
    for (const std::string_view light : {"normal", "lighter", "599", "100"}) {
        EXPECT_EQ(inlineStyle("font-weight:" + std::string(light)).bold, false) << light;
    }
    EXPECT_EQ(inlineStyle("font-weight:inherit").bold, std::nullopt);
    EXPECT_EQ(inlineStyle("font-weight:bold;font-weight:inherit").bold, true);
}

TEST(InlineStyle, ItalicIsItalicOrOblique) {
    EXPECT_EQ(inlineStyle("font-style:italic").italic, true);
    EXPECT_EQ(inlineStyle("font-style:oblique 10deg").italic, true);
    EXPECT_EQ(inlineStyle("font-style:normal").italic, false);
}

TEST(InlineStyle, AFontSaysBoth) {
    EXPECT_EQ(inlineStyle("font:bold 12px serif").bold, true);
    EXPECT_EQ(inlineStyle("font:bold 12px serif").italic, false);
    EXPECT_EQ(inlineStyle("font:italic 12px serif").italic, true);
    EXPECT_EQ(inlineStyle("font:oblique 12px serif").italic, true);
    EXPECT_EQ(inlineStyle("font:12px serif").bold, false);
}

TEST(InlineStyle, HiddenIsWhatNoReaderSees) {
    for (const std::string_view hidden :
         {"display:none", "DISPLAY : NONE", "visibility:hidden", "visibility:collapse", "mso-hide:all"}) {
        EXPECT_TRUE(inlineStyle(hidden).hidden) << hidden;
        const auto twice = std::string(hidden) + ";display:block;visibility:visible;mso-hide:none";
        EXPECT_TRUE(inlineStyle(twice).hidden) << twice;
    }
    for (const std::string_view shown :
         {"display:block", "visibility:visible", "mso-hide:none", "visibility", ""}) {
        EXPECT_FALSE(inlineStyle(shown).hidden) << shown;
    }
}

TEST(InlineStyle, InvisibleIsASizeOfZero) {
    for (const std::string_view zero : {"0", "0px", "0.0em"}) {
        EXPECT_EQ(inlineStyle("font-size:" + std::string(zero)).invisible, true) << zero;
    }
    for (const std::string_view size : {"0.5em", "12px", "small"}) {
        EXPECT_EQ(inlineStyle("font-size:" + std::string(size)).invisible, false) << size;
    }
}

TEST(InlineStyle, EachPropertyHasItsNames) {
    EXPECT_EQ(inlineStyle("text-decoration:underline red").underline, true);
    EXPECT_EQ(inlineStyle("text-decoration-line:underline").underline, true);
    EXPECT_EQ(inlineStyle("text-decoration:none").underline, false);
    for (const std::string_view kept : {"pre", "pre-wrap", "break-spaces"}) {
        EXPECT_EQ(inlineStyle("white-space:" + std::string(kept)).preformatted, true) << kept;
    }
    EXPECT_EQ(inlineStyle("white-space:nowrap").preformatted, false);
    EXPECT_TRUE(inlineStyle("list-style:none").withoutMarkers);
    EXPECT_TRUE(inlineStyle("list-style-type:none").withoutMarkers);
    EXPECT_FALSE(inlineStyle("list-style-type:disc").withoutMarkers);
}

} // namespace
} // namespace zelto
