#include "ConvertedMail.h"

#include <ZeltoHost/Mail/MailDataInteractor.h>
#include <ZeltoHost/Mail/MailSamples.h>

#include <Support/Folders.h>

#include <fstream>

namespace zelto {
namespace {

std::vector<std::string> attacks() {
    std::ifstream file(sourceFolder() / "tests/ZeltoHost/PDF/HeaderAttacks.txt");
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        lines.push_back(line);
    }
    return lines;
}

class PDFHeader : public ConvertedMail {};

constexpr int headerHeight = 82;

TEST_F(PDFHeader, LooksTheSameWhateverTheBodysStyle) {
    const auto honest = picture(pdfOf(message("body")), 0, headerHeight);
    ASSERT_TRUE(honest.starts_with("P5"));
    ASSERT_NE(honest, picture(pdfOf(cleanedHTML("body")), 0, headerHeight)) << "there is a header";
    for (const auto& attack : tried(attacks())) {
        EXPECT_EQ(picture(pdfOf(message(attack)), 0, headerHeight), honest) << attack;
    }
}

TEST_F(PDFHeader, NoLinkOfTheBodyLiesOverIt) {
    const auto pdf = pdfOf(message("<p><a href='https://evil.example/' style='padding:400px 0'>x</a></p>"));
    // Rectangles of links are written as [left bottom right top], from the lower end of the page.
    const auto pageHeight = 842.0;
    const auto content = TemporaryFolder::read(pdf);
    const auto at = content.find("/Rect [");
    ASSERT_NE(at, std::string::npos);
    double left = 0;
    double first = 0;
    double right = 0;
    double second = 0;
    std::istringstream(content.substr(at + 7)) >> left >> first >> right >> second;
    EXPECT_LT(std::max(first, second), pageHeight - headerHeight * 72.0 / 50);
}

TEST_F(PDFHeader, ManyRecipientsAreWholeAndTheBodyFollows) {
    std::vector<IntegrationsInteractorAddress> recipients;
    for (int index = 1; index <= 40; ++index) {
        recipients.push_back({"person." + std::to_string(index) + "@department.example",
                              "Person Number " + std::to_string(index)});
    }
    const auto text = textOf(pdfOf(cleanedHTML("<p>the body</p>", {.header = headerOf(recipients)})));
    for (const auto& each : recipients) {
        EXPECT_NE(text.find(*each.displayName + " <" + each.email + ">"), std::string::npos) << text;
    }
    EXPECT_LT(text.find("Lighthouse"), text.find("the body"));
}

TEST_F(PDFHeader, LabelsStandAtTheTopOfTheirRows) {
    std::vector<IntegrationsInteractorAddress> recipients{{"first@department.example", "First"}};
    recipients.resize(20, {"somebody@department.example", "Somebody"});
    recipients.push_back({"last@department.example", "Last"});
    const auto pdf = pdfOf(cleanedHTML("<p>the body</p>", {.header = headerOf(recipients)}));
    const auto top = coordinateOf("To:", "yMin", pdf);
    EXPECT_GT(top, 0);
    EXPECT_NEAR(top, coordinateOf("First", "yMin", pdf), 0.5);
    EXPECT_GT(coordinateOf("Last", "yMin", pdf), top + 30);
    EXPECT_NEAR(coordinateOf("From:", "yMin", pdf), coordinateOf("Mira", "yMin", pdf), 0.5);
}

TEST_F(PDFHeader, AHeaderOfSeveralPagesIsWhole) {
    std::vector<IntegrationsInteractorAddress> recipients(600, {"somebody@department.example", "Somebody"});
    recipients.push_back({"last@department.example", "The Last"});
    const auto text = textOf(pdfOf(cleanedHTML("<p>the body</p>", {.header = headerOf(recipients)})));
    EXPECT_NE(text.find("The Last <last@department.example>"), std::string::npos);
    EXPECT_LT(text.find("Lighthouse"), text.find("the body"));
    EXPECT_NE(text.find('\f'), text.rfind('\f'));
}

TEST_F(PDFHeader, ANameCannotTurnAnAddressAround) {
    IntegrationHeaderComponents header;
    header.sendersInfo.push_back(headerLine("From:", {{"a@b.example", "Mira \u202E\u2067x"}}));
    EXPECT_NE(headerHTML(header, "", "").find("Mira x &lt;a@b.example&gt;"), std::string::npos);
}

TEST_F(PDFHeader, AWideBodyIsScaledToThePageAndTheHeaderIsNot) {
    const auto honest = picture(pdfOf(message("body")), 0, headerHeight);
    const auto pdf =
        pdfOf(message("<table width=1000 bgcolor=black><tr><td>left</td>"
                      "<td width=500 align=right><font color=white>right edge</td></tr></table>"));
    EXPECT_EQ(picture(pdf, 0, headerHeight), honest);
    constexpr double rightMargin = 553; // of 595 points
    EXPECT_GT(rightEdgeOf("edge", pdf), rightMargin / 2);
    EXPECT_LT(rightEdgeOf("edge", pdf), rightMargin);
    EXPECT_EQ(outputOf("pdfinfo '" + pdf.string() + "' | grep 'Page size'"),
              "Page size:       595.276 x 841.89 pts (A4)\n");
}

TEST_F(PDFHeader, PlainTextKeepsItsColumns) {
    const auto pdf = pdfOf(message("<pre style='font-family:monospace'>item     price\n"
                                   "apples    1.20\npears    14.40</pre>"));
    const auto end = rightEdgeOf("price", pdf);
    EXPECT_GT(end, 0);
    EXPECT_NEAR(rightEdgeOf("1.20", pdf), end, 0.01);
    EXPECT_NEAR(rightEdgeOf("14.40", pdf), end, 0.01);
}

TEST_F(PDFHeader, APlainTextBodyKeepsItsDistanceInThePDFAndInTheHTML) {
    MailDataInteractor interactor(
        testing::readMail("From: mira@harbour.example\nSubject: Lighthouse\n\nbody\nend\n"), {});
    const auto html = testing::resultOf<std::optional<std::string>>(
        [&](auto completion) { interactor.html({}, std::move(completion)); });
    ASSERT_TRUE(html);
    const auto ofHTML = folder_ / "html.pdf";
    runScriptUncleaned(folder_.write("mail.html", *html), ofHTML);
    for (const auto& pdf : {pdfOf(*html), ofHTML}) {
        const auto bottom = coordinateOf("Lighthouse", "yMax", pdf);
        const auto top = coordinateOf("body", "yMin", pdf);
        EXPECT_GT(bottom, 0);
        EXPECT_GT(top - bottom, 18) << pdf;
        EXPECT_LT(top - bottom, 50) << pdf;
    }
}

TEST_F(PDFHeader, EmojiAreShown) {
    const auto blank = picture(pdfOf(message("<p></p>")), headerHeight, 60);
    EXPECT_NE(picture(pdfOf(message("<p>\U0001F6A2</p>")), headerHeight, 60), blank);
    EXPECT_EQ(notes_->all(), std::vector<ContentNote>());
}

TEST_F(PDFHeader, ACharacterWithoutAFontIsABoxWithANote) {
    const auto text = textOf(pdfOf(message("<p>one \uE000 two \U000F1234</p>")));
    EXPECT_NE(text.find("one \u25A1 two \u25A1"), std::string::npos) << text;
    EXPECT_EQ(notes_->all(),
              std::vector{(ContentNote{ContentNoteKind::charactersMissing, "U+E000, U+F1234"})});
}

TEST_F(PDFHeader, AnotherConvertersHTMLHasTheHeaderAboveTheBody) {
    const auto path = folder_.write("keep.sh", "#!/bin/sh\n(printf '%%PDF-1.4 '; cat \"$1\") > \"$2\"\n");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    PDFConverter other({.command = {path.string()}});
    const auto html = message("<style>table{display:none}body{background:red}</style>"
                              "<p style='position:fixed'>x</p>");
    Completed<Result<void, PDFError>> converted;
    other.convert(html, folder_ / "other.pdf", converted.callback<Completion<void, PDFError>>());
    ASSERT_TRUE(converted.value());
    const auto made = TemporaryFolder::read(folder_ / "other.pdf");
    EXPECT_NE(made.find(".zelto-body .zelto-body table{display:none}"), std::string::npos) << made;
    EXPECT_NE(made.find("<div style=\"position:relative;z-index:1;"), std::string::npos) << made;
    EXPECT_EQ(made.find("position:fixed"), std::string::npos) << made;
    EXPECT_LT(made.find("Mira Lindqvist"), made.find("<p>x</p>"));
    EXPECT_EQ(made.find("padding:8px"), made.rfind("padding:8px")) << made;
}

} // namespace
} // namespace zelto
