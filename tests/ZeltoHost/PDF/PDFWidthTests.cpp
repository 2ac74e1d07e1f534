#include "ConvertedMail.h"

namespace zelto {
namespace {

class PDFWidth : public ConvertedMail {};

// Newsletters and the like that are wider than a page; the word "edge" stands at their right edge.
constexpr std::array<std::string_view, 20> wideBodies{
    "<table width=800><tr><td>left<td align=right>edge</table>",
    "<table width=1000 cellpadding=20><tr><td width=700>left<td width=300 align=right>edge</table>",
    "<table style='width:900px'><tr><td>left<td style='text-align:right'>edge</table>",
    "<table style='min-width:1200px'><tr><td>left<td style='text-align:right'>edge</table>",
    "<div style='width:900px;text-align:right'>edge</div>",
    "<div style='min-width:800px;text-align:right'>edge</div>",
    "<div style='width:250mm;text-align:right'>edge</div>",
    "<div style='width:60em;text-align:right'>edge</div>",
    "<style>.wide{width:750px;text-align:right}</style><div class=wide>edge</div>",
    "<style>body{width:1000px;text-align:right}</style>edge",
    "<center><table width=960><tr><td>left<td align=right>edge</table></center>",
    "<table width=100%><tr><td align=center><table width=1400><tr><td>left<td align=right>edge</table></table>",
    "<table><tr><td style='width:500px'>left<td style='width:600px;text-align:right'>edge</table>",
    "<table><tr><td><div style='width:500px'>left</div><td><div style='width:500px;text-align:right'>edge</div>"
    "</table>",
    "<div style='padding-left:600px;width:200px;text-align:right'>edge</div>",
    "<div style='margin-left:500px;width:300px;text-align:right'>edge</div>",
    "<div style='float:left;width:500px'>left</div><div style='float:left;width:200px;text-align:right'>edge</div>",
    "<div style='display:inline-block;width:1100px;text-align:right'>edge</div>",
    "<div style='white-space:nowrap'><span style='display:inline-block;width:500px'>left</span>"
    "<span style='display:inline-block;width:400px;text-align:right'>edge</span></div>",
    "<blockquote><blockquote><table width=800><tr><td align=right>edge</table></blockquote></blockquote>",
};

constexpr double leftMargin = 42; // points
constexpr double rightMargin = 553.1;

TEST_F(PDFWidth, OfABodyIsThatOfThePageAtMost) {
    for (const auto body : tried(wideBodies)) {
        const auto edge = rightEdgeOf("edge", pdfOf(message(std::string(body))));
        EXPECT_GT(edge, leftMargin) << body;
        EXPECT_LT(edge, rightMargin) << body;
    }
}

TEST_F(PDFWidth, ABodyThatFitsIsNotScaled) {
    const auto plain = heightOf("body", pdfOf(message("<p>body</p>")));
    EXPECT_GT(plain, 0);
    const std::string address(300, 'a');
    for (const auto& body :
         {std::string("<table width=600><tr><td>body</table>"),
          std::string("<div style='width:100%'>body</div>"),
          "<p>body <a href='https://example.org/" + address + "'>" + address + "</a>",
          std::string(
              "<div style='width:300px;overflow:hidden'><div style='width:2000px'>body</div></div>")}) {
        EXPECT_NEAR(heightOf("body", pdfOf(message(body))), plain, 0.01) << body;
    }
}

} // namespace
} // namespace zelto
