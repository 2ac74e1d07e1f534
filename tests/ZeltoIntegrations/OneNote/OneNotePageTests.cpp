#include <ZeltoIntegrations/OneNote/OneNotePage.h>

#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace zelto {

namespace {

constexpr auto hostile = "<b> \"A&T\" >\x01\x7F\t";
constexpr auto entities = "&lt;b&gt; &quot;A&amp;T&quot; &gt;\t";

ExporterHelperMultipartData part(const std::string& name, const std::string& file) {
    return {.name = name, .dataId = file, .contentType = "text/plain", .data = HTTPBody("x")};
}

} // namespace

TEST(OneNoteHeader, IsTheLinkInBlueAndTheHeaderBlockBelow) {
    EXPECT_EQ(oneNoteHeader("<a>L</a>", "", "<table>H</table>"),
              "<p style=\"color:#3e81de; font-size:32px;\"><a>L</a><br></p>\n<table>H</table>");
    EXPECT_EQ(oneNoteHeader("<a>L</a>", "", std::nullopt),
              "<p style=\"color:#3e81de; font-size:32px;\"><a>L</a><br></p>");
}

TEST(OneNoteHeader, BeginsWithTheNoteWhereThereIsOne) {
    EXPECT_EQ(oneNoteHeader("L", "x", "H"), "<p>x<br>______________________________</p>"
                                            "<p style=\"color:#3e81de; font-size:32px;\">L<br></p>\nH");
}

TEST(OneNotePage, HasAFrameWithItsTitle) {
    EXPECT_EQ(oneNoteDocument("T", "<p>C</p>"),
              "<html><head><title>T</title></head><body><p>C</p></body></html>");
    EXPECT_EQ(oneNoteLinkDocument("T", "https://x/?a=1&b=2"),
              "<html><head><title>T</title></head><body><p><a href=\"https://x/?a=1&b=2\">"
              "https://x/?a=1&b=2</a></p></body></html>");
}

TEST(OneNotePage, WritesThePlainTextsAsTextAndTheAmpersandsOfALinkAsTheyAre) {
    EXPECT_EQ(oneNoteDocument(hostile, ""),
              "<html><head><title>" + std::string(entities) + "</title></head><body></body></html>");
    EXPECT_EQ(oneNoteHeader("", hostile, std::nullopt),
              "<p>" + std::string(entities) +
                  "<br>______________________________</p>"
                  "<p style=\"color:#3e81de; font-size:32px;\"><br></p>");
    EXPECT_EQ(createHtmlObject(part("n", hostile)), "<object data-attachment=\"" + std::string(entities) +
                                                        "\" data=\"name:n\" type=\"text/plain\" />");
    EXPECT_EQ(oneNoteLinkDocument("", "\"><script>&"),
              "<html><head><title></title></head><body><p><a href=\"&quot;&gt;&lt;script&gt;&\">"
              "&quot;&gt;&lt;script&gt;&</a></p></body></html>");
}

TEST(OneNotePage, HasItsFilesInTheirOrderInFrontOfTheEndOfItsBody) {
    OneNotePage page{.html = "<body><p>&lt;/body></p></body>\n</html>", .parts = {}};
    page.attach(part("1", "a"));
    page.attach(part("2", "b"));
    EXPECT_EQ(page.html,
              "<body><p>&lt;/body></p>"
              "<object data-attachment=\"a\" data=\"name:1\" type=\"text/plain\" />"
              "<object data-attachment=\"b\" data=\"name:2\" type=\"text/plain\" /></body>\n</html>");
    EXPECT_EQ(page.parts.size(), 2U);
}

TEST(OneNotePage, OfAHostThatDoesNotCloseItsBodyHasItsFilesAtTheEnd) {
    OneNotePage page{.html = "<p>x</p>", .parts = {}};
    page.attach(part("1", "a"));
    EXPECT_EQ(page.html, "<p>x</p><object data-attachment=\"a\" data=\"name:1\" type=\"text/plain\" />");
}

TEST(OneNotePage, IsAFormThatBeginsWithItsHTML) {
    OneNotePage page{.html = "<html>", .parts = {part("1", "a"), part("2", "b")}};
    const auto form = std::move(page).form();
    ASSERT_EQ(form.size(), 3U);
    EXPECT_EQ(form[0].name, "Presentation");
    EXPECT_EQ(form[0].contentType, "text/html");
    EXPECT_EQ(viewOf(form[0].data.bytes().value()), "<html>");
    EXPECT_EQ(form[1].name, "1");
    EXPECT_EQ(form[2].name, "2");
}

TEST(OneNotePart, IsNamedOnceWhateverTheFileIsCalled) {
    const TemporaryFolder folder;
    const auto file = folder.write("a.txt", "content");
    const auto first = oneNotePart(file).value();
    const auto second = oneNotePart(file).value();
    EXPECT_NE(first.name, second.name);
    EXPECT_EQ(first.dataId, "a.txt");
    EXPECT_EQ(first.contentType, "text/plain");
    EXPECT_EQ(viewOf(first.data.bytes().value()), "content");
    EXPECT_EQ(oneNotePart(folder.write("b.unknown", "")).value().contentType, "application/octet-stream");
}

TEST(OneNotePart, IsNoneOfWhatIsNoFile) {
    const TemporaryFolder folder;
    for (const auto& path : {folder / "missing", folder.path(), std::filesystem::path()}) {
        EXPECT_FALSE(oneNotePart(path)) << path;
    }
}

TEST(OneNoteSummary, GetsTheHeaderAtTheFrontOfItsBody) {
    EXPECT_EQ(
        withOneNoteHeader("<html><head></head><body class=\"a\">\n<p>S</p></body></html>", "<p>H</p>", "T"),
        "<html><head></head><body class=\"a\"><p>H</p>\n<p>S</p></body></html>");
}

TEST(OneNoteSummary, WithoutABodyBecomesThePage) {
    EXPECT_EQ(withOneNoteHeader("<p>S</p>", "<p>H</p>", "T"),
              "<html><head><title>T</title></head><body><p>H</p><p>S</p></body></html>");
    EXPECT_EQ(withOneNoteHeader("<body", "<p>H</p>", "T"),
              "<html><head><title>T</title></head><body><p>H</p><body</body></html>");
}

} // namespace zelto
