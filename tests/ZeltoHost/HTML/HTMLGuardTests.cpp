#include <ZeltoHost/HTML/CleanedHTML.h>
#include <ZeltoHost/HTML/ENML.h>
#include <ZeltoHost/HTML/FormattedComponents.h>
#include <ZeltoHost/HTML/HTMLGuard.h>
#include <ZeltoHost/HTML/HTMLTreeInternal.h>
#include <ZeltoHost/HTML/PlainText.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

std::string times(std::size_t count, std::string_view piece) {
    std::string all;
    all.reserve(count * piece.size());
    for (std::size_t i = 0; i < count; ++i) {
        all += piece;
    }
    return all;
}

struct Shape {
    std::size_t nodes = 0;
    std::size_t depth = 0;
    std::size_t deepest = 0;

    bool enter(const GumboNode& node) {
        ++nodes;
        if (isElementNode(node)) {
            deepest = std::max(deepest, ++depth);
        }
        return true;
    }

    void leave(const GumboNode&) { --depth; }
};

Shape shapeOf(std::string_view html) {
    const HTMLTree tree{std::string(html)};
    Shape shape;
    walk(tree.root(), shape);
    return shape;
}

TEST(HTMLGuard, HonestHTMLPassesUnchanged) {
    for (const std::string_view html :
         {"", "text < > & <", "<p>a<p>b", "<table><tr><td>a<td>b<tr><td>c</table>", "<b><i>x</b></i>",
          "<!-- <div> --><script>'<div>'</script><a href='>'>x</a>", "<svg><![CDATA[<div>]]></svg>", "<",
          "</", "<a"}) {
        EXPECT_EQ(guardedHTML(std::string(html)), html);
    }
}

TEST(HTMLGuard, NestingStopsAtTheLimitAndTextStays) {
    const auto guarded = guardedHTML(times(1000, "<div>") + "deep" + times(1000, "</div>") + "<p>after");
    EXPECT_EQ(guarded, times(512, "<div>") + "deep" + times(512, "</div>") + "<p>after");
}

TEST(HTMLGuard, ElementsThatCloseOneAnotherAreNotNesting) {
    for (const std::string_view piece :
         {"<p>", "<li>", "<dd><dt>", "<option>", "<h1>", "<br>", "<tr><td>", "</p>"}) {
        const auto html = times(5000, piece);
        EXPECT_EQ(guardedHTML("<table><tr><td>" + html), "<table><tr><td>" + html) << piece;
    }
}

TEST(HTMLGuard, TagsWithinCommentsScriptsAndAttributesAreText) {
    const auto divs = times(1000, "<div>");
    for (const auto& html : {"<!--" + divs, "<script>" + divs, "<p title='" + divs + "'>", "<style>" + divs,
                             "<textarea>" + divs, "<title>" + divs, "<svg><![CDATA[" + divs}) {
        EXPECT_EQ(guardedHTML(std::string(html)), html);
    }
}

TEST(HTMLGuard, AttributesPastTheSixtyFourthAreLeftOut) {
    std::string attributes;
    for (int i = 0; i < 64; ++i) {
        attributes += " a" + std::to_string(i) + "='>'";
    }
    EXPECT_EQ(guardedHTML("<p" + attributes + ">x"), "<p" + attributes + ">x");
    EXPECT_EQ(guardedHTML("<p" + attributes + " b='>' c>x"), "<p" + attributes + " >x");
}

TEST(HTMLGuard, WorkBeyondMeasureLeavesTheTextAlone) {
    EXPECT_EQ(guardedHTML(times(512, "<div>") + "<b>" + times(1'000'000, "x")), std::nullopt);
    EXPECT_EQ(flattenedHTML("<div>a<p>b<b>c</b><script>x</script><br>d"),
              "<pre style=\"white-space:pre-wrap\">\na\nbc\nd</pre>");
    EXPECT_EQ(flattenedHTML("<p> a\n  b <p>"), "<pre style=\"white-space:pre-wrap\">\na b \n</pre>");
}

TEST(HTMLTree, IsNeverMuchDeeperThanTheLimit) {
    for (const std::string_view piece :
         {"<div>", "<span>", "<table><tr><td>", "<b><i>", "<b><p>", "<a><div>", "<font size=1><div></font>",
          "<form><div></form>", "<span><div></span>", "<select><style><input><div>", "<svg>",
          "<svg><foreignObject>", "<math><mi><div>", "<object>", "<template>", "<applet><i><p>",
          "<button><div></button>", "<ruby><rt>"}) {
        EXPECT_LE(shapeOf(times(20'000, piece)).deepest, 1600U) << piece;
    }
}

// Without the guard, each takes minutes or all memory. Nothing is timed; a hanging parser fails the run.
TEST(HTMLTree, EveryAttackOnTheParserEnds) {
    const auto deep = times(505, "<div>");
    const std::pair<std::string, std::string_view> attacks[] = {
        {"", "<div>"},          {"", "<table><tr><td>"}, {"", "<i></b>"},
        {"", "<a><div>"},       {"", "<b><p>"},          {"", "<form><div></form>"},
        {deep, "<i></b>"},      {deep + "<b>", "x"},     {deep, "<p>y"},
        {deep, "</x>"},         {"<p ", "a "},           {"", "<!--"},
        {"", "<body a=1>"},     {"", "<isindex>"},       {"<table>", "x<b>"},
        {"<p ", "a=\"<div>\" "}};
    for (const auto& [front, piece] : attacks) {
        EXPECT_GT(shapeOf(front + times(400'000 / piece.size(), piece)).nodes, 2U) << piece;
    }
}

TEST(HTMLTree, ManyParagraphsAreKept) {
    EXPECT_EQ(shapeOf(times(100'000, "<p>")).nodes, 100'003U);
}

TEST(HTMLTree, HTMLThatIsReadWholeHasNoNote) {
    ContentNotes notes;
    const HTMLTree tree(times(100'000, "<p>"), &notes);
    EXPECT_EQ(notes.all(), std::vector<ContentNote>());
}

TEST(HTMLTree, ElementsBeyondTheMemoryLeaveTheTextAloneWithANote) {
    ContentNotes notes;
    const auto html = times(300'000, "<p>") + "<b>bold</b>" + times(300'000, "<p>") + "end";
    EXPECT_EQ(plainTextFromHTML(html, {.notes = &notes}), "bold\nend");
    EXPECT_EQ(notes.all(), std::vector{ContentNote{ContentNoteKind::formattingLeftOut}});
}

TEST(HTMLTree, TextIsWholeWhateverTheElementsWere) {
    ContentNotes notes;
    const auto text = plainTextFromHTML(times(1'000'000, "<p>x") + "<p>end", {.notes = &notes});
    EXPECT_EQ(text.size(), 2'000'003U);
    EXPECT_TRUE(text.ends_with("\nx\nend"));
    EXPECT_EQ(notes.all(), std::vector{ContentNote{ContentNoteKind::formattingLeftOut}});
}

TEST(HTMLTree, HTMLBeyondTheLimitIsCutWithANote) {
    ContentNotes notes;
    const HTMLTree tree(std::string((std::size_t{96} << 20) + 1, ' '), &notes);
    EXPECT_EQ(notes.all(), std::vector{ContentNote{ContentNoteKind::textCut}});
}

TEST(HTMLTree, AttributesThatFormattingMultipliesAreWithinTheMemory) {
    const auto html = "<font face='" + std::string(400'000, 'f') + "'>" + times(100'000, "<p>x</p>");
    ContentNotes notes;
    const HTMLTree tree(html, &notes);
    EXPECT_EQ(notes.all(), std::vector{ContentNote{ContentNoteKind::formattingLeftOut}});
}

TEST(HTMLTree, ALargeImageInAnAddressIsKept) {
    const auto html = "<img src='data:image/png;base64," + times(3'000'000, "AAAA") + "'>";
    ContentNotes notes;
    EXPECT_GT(cleanedHTML(html, {.notes = &notes}).size(), 12'000'000U);
    EXPECT_EQ(notes.all(), std::vector<ContentNote>());
}

TEST(HTMLTree, AllReadersEndOnDeepAndBrokenHTML) {
    const auto html = times(100'000, "<div><b>x</i><table>") + "end";
    EXPECT_NE(plainTextFromHTML(html).find("end"), std::string::npos);
    EXPECT_FALSE(formattedComponentsFromHTML(html).empty());
    EXPECT_NE(cleanedHTML(html).find("end"), std::string::npos);
    EXPECT_NE(enmlFromHTML(html).find("end"), std::string::npos);
}

} // namespace
} // namespace zelto
