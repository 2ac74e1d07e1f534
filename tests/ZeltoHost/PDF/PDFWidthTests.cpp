#include "ConvertedMail.h"

#include <array>

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
          "<table width=600><tr><td>body <a href='https://example.org/" + address + "'>" + address +
              "</a> and " + address + "</table>",
          "<p style='white-space:pre'>body" + std::string(300, ' ') + "\n</p>",
          "<p style='visibility:hidden;white-space:nowrap'>" + address + "</p><p>body</p>",
          std::string(
              "<div style='width:300px;overflow:hidden'><div style='width:2000px'>body</div></div>")}) {
        EXPECT_NEAR(heightOf("body", pdfOf(message(body))), plain, 0.01) << body;
    }
}

// A piece of a newsletter of a width in CSS pixels. The word given stands at its right edge.
using Block = std::string (*)(int width, const std::string& edge);

std::string px(int length) {
    return std::to_string(length) + "px";
}

// An image of one grey pixel, which is stretched.
const std::string pixel =
    "src='data:image/png;base64,"
    "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklEQVQI12NoAAAAggCB3UNq9AAAAABJRU5ErkJggg=='";

// As mails show text in the list of a client without showing it in the mail.
std::string preheader(int, const std::string& edge) {
    return "<div style='display:none;max-height:0;overflow:hidden;font-size:1px'>hidden " +
           std::string(200, 'h') + "</div><div style='text-align:right'>" + edge + "</div>";
}

std::string forOutlook(int width, const std::string& edge) {
    const auto w = std::to_string(width);
    return "<!--[if mso | IE]><table width='" + w +
           "'><tr><td>outlook<![endif]--><div style='margin:0 auto;max-width:" + px(width) +
           "'><table align=center role=presentation style='width:100%'><tr><td>left<td align=right>" + edge +
           "</table></div><!--[if mso | IE]></td></tr></table><![endif]-->";
}

std::string bannerImage(int width, const std::string& edge) {
    const auto w = std::to_string(width);
    return "<img " + pixel + " width='" + w + "' height='90' style='display:block;width:" + px(width) +
           "'><table width='" + w + "'><tr><td align=right>" + edge + "</table>";
}

std::string imageRow(int width, const std::string& edge) {
    const auto w = std::to_string(width / 3);
    std::string cells;
    for (int index = 0; index < 3; ++index) {
        cells += "<td width='" + w + "'><img " + pixel + " width='" + w + "' height=40>";
    }
    return "<table cellpadding=0 cellspacing=0><tr>" + cells + "<td>" + edge + "</table>";
}

std::string nestedTables(int width, const std::string& edge) {
    std::string html = "<table width='100%' bgcolor='#eeeeee'><tr><td align=center>";
    for (int depth = 0; depth < 5; ++depth) {
        html +=
            "<table width='" + std::to_string(width - 20 * depth) + "' cellpadding=10 cellspacing=0><tr><td>";
    }
    html += "<p style='text-align:right'>" + edge + "</p>";
    for (int depth = 0; depth < 6; ++depth) {
        html += "</td></tr></table>";
    }
    return html;
}

std::string minimumWidth(int width, const std::string& edge) {
    return "<div style='min-width:" + px(width) + ";text-align:right'>" + edge + "</div>";
}

std::string unbrokenMenu(int width, const std::string& edge) {
    std::string cells;
    for (int at = 0; at < width; at += 100) {
        cells += "<td nowrap style='padding:0 12px'><a href='https://shop.example/'>Department</a>";
    }
    return "<table><tr>" + cells + "<td nowrap style='white-space:nowrap'>last " + edge + "</table>";
}

std::string preformattedTable(int width, const std::string& edge) {
    return "<pre style='white-space:pre;font-size:13px'>item" +
           std::string(static_cast<std::size_t>(width / 8), '.') + " " + edge + "\n</pre>";
}

std::string longAddress(int width, const std::string& edge) {
    const auto address = "https://track.example/?id=" + std::string(400, 'x');
    return "<table width='" + std::to_string(width) + "'><tr><td><a href='" + address + "'>" + address +
           "</a><td align=right>" + edge + "</table>";
}

std::string threeColumns(int width, const std::string& edge) {
    const auto column = "display:inline-block;vertical-align:top;width:" + px(width / 3);
    return "<div style='white-space:nowrap;font-size:0'><div style='" + column +
           "'><p style='font-size:14px'>one</p></div><div style='" + column +
           "'><p style='font-size:14px'>two</p></div><div style='" + column +
           "'><p style='font-size:14px;text-align:right'>" + edge + "</p></div></div>";
}

std::string floatingColumns(int width, const std::string& edge) {
    return "<table width='" + std::to_string(width) + "'><tr><td><table align=left width='" +
           std::to_string(width / 2 - 10) + "'><tr><td>left</table><table align=right width='" +
           std::to_string(width / 2 - 10) + "'><tr><td align=right>" + edge + "</table></table>";
}

std::string footer(int width, const std::string& edge) {
    return "<center><table width='" + std::to_string(width) +
           "' style='font-size:11px;min-width:" + px(width) +
           "'><tr><td align=center>You get this since you have signed up. <a "
           "href='https://shop.example/u'>Unsubscribe</a><td align=right>" +
           edge + "</table></center>";
}

// A body that is wider by less than a hundredth is not scaled: it reaches into the margin.
constexpr double toleratedEdge = rightMargin + (rightMargin - leftMargin) / 100;

struct Newsletter {
    int width;
    std::vector<Block> blocks;
};

const std::array<Newsletter, 20> newsletters{{
    {600, {preheader, forOutlook, bannerImage, nestedTables, footer}},
    {640, {preheader, bannerImage, imageRow, threeColumns, footer}},
    {650, {forOutlook, nestedTables, floatingColumns, longAddress, footer}},
    {680, {preheader, unbrokenMenu, bannerImage, floatingColumns, footer}},
    {700, {preheader, forOutlook, bannerImage, threeColumns, footer}},
    {720, {nestedTables, minimumWidth, longAddress, footer}},
    {750, {preheader, imageRow, preformattedTable, footer}},
    {760, {bannerImage, nestedTables, nestedTables, footer}},
    {800, {preheader, forOutlook, unbrokenMenu, floatingColumns, footer}},
    {800, {bannerImage, imageRow, imageRow, longAddress}},
    {850, {minimumWidth, threeColumns, threeColumns, footer}},
    {900, {preheader, forOutlook, bannerImage, preformattedTable, footer}},
    {900, {unbrokenMenu, nestedTables, floatingColumns}},
    {960, {preheader, bannerImage, threeColumns, imageRow, footer}},
    {960, {forOutlook, minimumWidth, longAddress, preformattedTable}},
    {1000, {preheader, unbrokenMenu, imageRow, nestedTables, footer}},
    {1024, {bannerImage, floatingColumns, threeColumns, longAddress, footer}},
    {1100, {preheader, nestedTables, minimumWidth, unbrokenMenu}},
    {1200, {forOutlook, bannerImage, imageRow, preformattedTable, footer}},
    {1280, {preheader, unbrokenMenu, minimumWidth, floatingColumns, footer}},
}};

std::string edgeWord(std::size_t index) {
    return "edge" + std::to_string(index);
}

std::string bodyOf(const Newsletter& newsletter) {
    std::string html = "<!doctype html><html><head><style>@media only screen and (max-width:480px)"
                       "{table{width:100%!important}}</style></head><body style='margin:0;padding:0'>";
    for (std::size_t index = 0; index < newsletter.blocks.size(); ++index) {
        html += newsletter.blocks[index](newsletter.width, edgeWord(index));
    }
    return html + "</body></html>";
}

TEST_F(PDFWidth, OfANewsletterIsThatOfThePageAtMost) {
    for (const auto& newsletter : tried(newsletters)) {
        const auto body = bodyOf(newsletter);
        const auto pdf = pdfOf(message(body));
        for (std::size_t index = 0; index < newsletter.blocks.size(); ++index) {
            const auto edge = rightEdgeOf(edgeWord(index), pdf);
            EXPECT_GT(edge, leftMargin) << edgeWord(index) << " of " << body;
            EXPECT_LT(edge, toleratedEdge) << edgeWord(index) << " of " << body;
        }
        EXPECT_EQ(rightEdgeOf("hidden", pdf), 0) << body;
        EXPECT_EQ(rightEdgeOf("outlook", pdf), 0) << body;
    }
}

} // namespace
} // namespace zelto
