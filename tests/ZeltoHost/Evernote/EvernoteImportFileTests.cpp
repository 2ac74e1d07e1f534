#include <ZeltoHost/Evernote/EvernoteImportFile.h>

#include <ZeltoHost/Evernote/ValidNotes.h>
#include <ZeltoHost/HTML/ENML.h>

#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

const std::string content = enmlFromHTML("<p>a</p>");

EvernoteImportNote note() {
    return {.title = "Title",
            .content = content,
            .created = Date::fromUnixSeconds(1761048000.9),
            .notebook = {"n1", "Work & more"},
            .tags = {},
            .sourceUrl = "",
            .attachments = {}};
}

std::string fileOf(const EvernoteImportNote& note) {
    std::string file;
    EXPECT_TRUE(writeEvernoteImportFile(note, [&](std::string_view piece) {
        file += piece;
        return Result<void, FileError>();
    }));
    const TemporaryFolder folder;
    EXPECT_EQ(testing::errorsOfImportFile(folder.write("a.enex", file)), "");
    return file;
}

std::string fileWith(const std::string& title, const std::string& behind) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE en-export SYSTEM \"http://xml.evernote.com/pub/evernote-export3.dtd\">\n"
           "<en-export export-date=\"20251021T120000Z\" application=\"Zelto\" version=\"1\">\n<note>\n"
           "<title>" +
           title + "</title>\n<content><![CDATA[" + content +
           "]]></content>\n<created>20251021T120000Z</created>\n<updated>20251021T120000Z</updated>\n" +
           behind + "</note>\n</en-export>\n";
}

const std::string notebook = "<application-data key=\"notebook\">Work &amp; more</application-data>";

} // namespace

TEST(EvernoteImportFile, HoldsOneNote) {
    EXPECT_EQ(fileOf(note()), fileWith("Title", "<note-attributes>" + notebook + "</note-attributes>\n"));
}

TEST(EvernoteImportFile, HoldsTagsTheSourceAndFilesInTheirOrder) {
    auto one = note();
    one.title = "a & <b> \"c\"";
    one.tags = {{"t1", "mail"}, {"t2", "<&>"}};
    one.sourceUrl = "https://a.example/?a=1&b=2";
    one.attachments = {{"ä \"b\".txt", "text/plain", Data{'a', 'b', 'c', 'd'}}, {"empty", "", {}}};
    EXPECT_EQ(fileOf(one),
              fileWith("a &amp; &lt;b&gt; &quot;c&quot;",
                       "<tag>mail</tag>\n<tag>&lt;&amp;&gt;</tag>\n"
                       "<note-attributes><source-url>https://a.example/?a=1&amp;b=2</source-url>" +
                           notebook +
                           "</note-attributes>\n"
                           "<resource><data encoding=\"base64\">YWJjZA==</data><mime>text/plain</mime>"
                           "<resource-attributes><file-name>ä &quot;b&quot;.txt</file-name>"
                           "</resource-attributes></resource>\n"
                           "<resource><data encoding=\"base64\"></data><mime>application/octet-stream</mime>"
                           "<resource-attributes><file-name>empty</file-name>"
                           "</resource-attributes></resource>\n"));
}

TEST(EvernoteImportFile, ALargeFileIsGivenInPiecesThatAreOneText) {
    auto one = note();
    one.attachments = {{"a.bin", "application/octet-stream", Data((std::size_t{1} << 20) + 1, 0xA5)}};
    std::size_t maximum = 0;
    std::string file;
    ASSERT_TRUE(writeEvernoteImportFile(one, [&](std::string_view piece) {
        maximum = std::max(maximum, piece.size());
        file += piece;
        return Result<void, FileError>();
    }));
    EXPECT_LE(maximum, std::size_t{256} << 10);
    const TemporaryFolder folder;
    const auto path = folder.write("a.enex", file);
    EXPECT_EQ(testing::errorsOfImportFile(path), "");
    std::string expected;
    for (std::size_t group = 0; group < (std::size_t{1} << 20) / 3; ++group) {
        expected += "paWl";
    }
    EXPECT_EQ(testing::selected(path, "/en-export/note/resource/data"), expected + "paU=");
}

TEST(EvernoteImportFile, TitlesAreThoseThatEvernoteTakes) {
    const std::string end = "<note-attributes>" + notebook + "</note-attributes>\n";
    const std::string longest(255, 'x');
    for (const auto& [title, expected] : std::vector<std::pair<std::string, std::string>>{
             {"", "Untitled"},
             {" \n ", "Untitled"},
             {" a\tb\nc ", "a b c"},
             {longest, longest},
             {longest + "y", longest},
             {std::string(254, 'x') + " y", std::string(254, 'x')},
             {"a\xFFz", "a\uFFFDz"}}) {
        auto one = note();
        one.title = title;
        EXPECT_EQ(fileOf(one), fileWith(expected, end));
    }
}

TEST(EvernoteImportFile, TagsAreThoseThatEvernoteTakes) {
    const std::string longest(100, 'x');
    for (const auto& [name, expected] :
         std::vector<std::pair<std::string, std::string>>{{"", ""},
                                                          {" \n\x01", ""},
                                                          {" a\tb ", "<tag>a b</tag>\n"},
                                                          {"Smith, Robin", "<tag>Smith; Robin</tag>\n"},
                                                          {longest, "<tag>" + longest + "</tag>\n"},
                                                          {longest + "y", "<tag>" + longest + "</tag>\n"}}) {
        auto one = note();
        one.tags = {{"t", name}};
        EXPECT_EQ(fileOf(one),
                  fileWith("Title", expected + "<note-attributes>" + notebook + "</note-attributes>\n"));
    }
}

TEST(EvernoteImportFile, ASourceThatEvernoteDoesNotTakeIsLeftOut) {
    auto one = note();
    one.sourceUrl = std::string(4096, 'x');
    EXPECT_NE(fileOf(one).find("<source-url>" + one.sourceUrl + "</source-url>"), std::string::npos);
    one.sourceUrl += 'x';
    EXPECT_EQ(fileOf(one), fileWith("Title", "<note-attributes>" + notebook + "</note-attributes>\n"));
}

TEST(EvernoteImportFile, AFileWithoutANameHasNone) {
    auto one = note();
    one.attachments = {{"", "text/plain", Data{'a'}}};
    EXPECT_NE(fileOf(one).find("<mime>text/plain</mime><resource-attributes></resource-attributes>"),
              std::string::npos);
}

TEST(EvernoteImportFile, TheEndOfASectionInTheContentDoesNotEndIt) {
    auto one = note();
    one.content = "<en-note>a<![CDATA[b]]>c</en-note>";
    const auto file = fileOf(one);
    EXPECT_NE(file.find("<![CDATA[b]]]]><![CDATA[>c</en-note>]]></content>"), std::string::npos) << file;
}

TEST(EvernoteImportFile, TheFirstFailureEndsIt) {
    auto one = note();
    one.attachments = {{"a", "b", Data(std::size_t{1} << 20)}, {"c", "d", Data{1}}};
    std::size_t whole = 0;
    ASSERT_TRUE(writeEvernoteImportFile(one, [&](std::string_view) {
        ++whole;
        return Result<void, FileError>();
    }));
    const FileError error{FileErrorCode::noSpace, 0, "x"};
    for (std::size_t failing = 1; failing <= whole; ++failing) {
        std::size_t pieces = 0;
        const auto written = writeEvernoteImportFile(one, [&](std::string_view) -> Result<void, FileError> {
            return ++pieces == failing ? failure(error) : Result<void, FileError>();
        });
        ASSERT_FALSE(written);
        EXPECT_EQ(written.error(), error);
        EXPECT_EQ(pieces, failing);
    }
}

} // namespace zelto
