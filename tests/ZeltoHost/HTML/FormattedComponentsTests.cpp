#include <ZeltoHost/HTML/FormattedComponents.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

using Component = FormattedBodyComponent;
using Part = FormattedBodyComponent::TextPart;
using Modifiers = Part::Modifiers;
using Components = std::vector<Component>;

constexpr Modifiers plain{};

Part part(std::string text, Modifiers modifiers = plain, const char* link = nullptr) {
    return {std::move(text), modifiers, link == nullptr ? std::nullopt : URL::parse(link)};
}

TEST(FormattedComponents, ParagraphsAndHeadingsStandInOrderWithTheirLineEnds) {
    EXPECT_EQ(formattedComponentsFromHTML("<h2>Title</h2><div>a</div><div>b</div><p>c"),
              (Components{Component::header(Component::HeaderLevel::h2, {part("Title"), part("\n\n")}),
                          Component::text({part("a"), part("\n")}),
                          Component::text({part("b"), part("\n\n")}), Component::text({part("c")})}));
}

TEST(FormattedComponents, AllSixLevelsOfHeadingsAreKnown) {
    for (int level = 1; level <= 6; ++level) {
        const auto tag = "h" + std::to_string(level);
        EXPECT_EQ(formattedComponentsFromHTML("<" + tag + ">x"),
                  (Components{Component::header(static_cast<Component::HeaderLevel>(level), {part("x")})}));
    }
}

TEST(FormattedComponents, StylesAreRecognisedByElements) {
    EXPECT_EQ(
        formattedComponentsFromHTML("a<b>b<i>c</i></b><u>d</u><strong>e</strong><em>f</em>"),
        (Components{Component::text(
            {part("a"), part("b", Modifiers::bold), part("c", Modifiers::bold | Modifiers::italic),
             part("d", Modifiers::underline), part("e", Modifiers::bold), part("f", Modifiers::italic)})}));
}

TEST(FormattedComponents, StylesAreRecognisedByInlineStyles) {
    EXPECT_EQ(formattedComponentsFromHTML(
                  "<span style='FONT-WEIGHT: 700 !important'>a</span>"
                  "<b style='font-weight:normal'>b</b>"
                  "<span style='font-style:italic;text-decoration:underline dotted'>c</span>"
                  "<span style='font: bold 12px Arial'>d</span>"),
              (Components{Component::text({part("a", Modifiers::bold), part("b"),
                                           part("c", Modifiers::italic | Modifiers::underline),
                                           part("d", Modifiers::bold)})}));
}

TEST(FormattedComponents, LinksOfSafeSchemesAreKept) {
    for (const char* link :
         {"http://a.example/", "https://a.example/", "mailto:a@b.example", "tel:+123456", "mid:a@b"}) {
        EXPECT_EQ(formattedComponentsFromHTML("<a href='" + std::string(link) + "'>x</a>"),
                  (Components{Component::text({part("x", plain, link)})}));
    }
}

TEST(FormattedComponents, OtherLinksLeaveTheirText) {
    for (const char* link : {"javascript:x", "file:///etc/passwd", "data:text/html,x", "//a.example", "x", "",
                             "http://", "ftp://a.example/"}) {
        EXPECT_EQ(formattedComponentsFromHTML("<a href='" + std::string(link) + "'>x</a>"),
                  (Components{Component::text({part("x")})}))
            << link;
    }
}

TEST(FormattedComponents, AnAddressThatAURLCannotHoldIsEncoded) {
    EXPECT_EQ(
        formattedComponentsFromHTML("<a href=' https://a.example/a b/ü?q=\"100%\" \n'>x</a>"),
        (Components{Component::text({part("x", plain, "https://a.example/a%20b/%C3%BC?q=%22100%25%22")})}));
}

TEST(FormattedComponents, AdjacentTextOfOneStyleIsOnePart) {
    EXPECT_EQ(formattedComponentsFromHTML("a<span>b</span> <span>c</span><br>d"),
              (Components{Component::text({part("ab c\nd")})}));
}

TEST(FormattedComponents, ListsCellsAndQuotationsAreMarked) {
    EXPECT_EQ(formattedComponentsFromHTML("<ul><li><b>a</b></ul><table><tr><td>b<td>c</table>"
                                          "<blockquote>d<br>e</blockquote>"),
              (Components{Component::text({part("• "), part("a", Modifiers::bold), part("\n\n")}),
                          Component::text({part("b\tc"), part("\n\n")}),
                          Component::text({part("> "), part("d\n> e")})}));
}

TEST(FormattedComponents, ABodyWithoutTextHasNone) {
    EXPECT_TRUE(formattedComponentsFromHTML("<p> <br></p><style>x</style>").empty());
}

} // namespace
} // namespace zelto
