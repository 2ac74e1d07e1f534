// What the host gives of a mail is HTML as the service wants it, whatever the mail's own is.

#include <ZeltoHost/Mail/MailDataInteractor.h>
#include <ZeltoHost/Mail/MailReader.h>
#include <ZeltoIntegrations/OneNote/OneNotePage.h>
#include <ZeltoSandbox/OneNote/OneNoteHTML.h>

#include <Support/Completed.h>
#include <Support/TemporaryFolder.h>

#include <gtest/gtest.h>

#include <iterator>
#include <optional>
#include <string>
#include <string_view>

namespace zelto {

namespace {

using Text = std::optional<std::string>;

constexpr std::string_view brokenBodies[] = {
    "",
    "<",
    "<p",
    "</body>",
    "</BODY></html><p>x",
    "<body><body></body></body>",
    "text </body> text </body> text",
    "&lt;/body&gt;",
    "<p title='</body>'>x",
    "<p title=</body>x>y",
    "<!-- </body> --><p>x",
    "<!-- </body> <p>x",
    "<!-- a -- b --> <!--> <!---> x",
    "<script></body></script>x",
    "<script>if (a < b && c) document.write('</body>')</script",
    "<style></body></style>x",
    "<style>p > a { color: red } a & b { color: blue } </style><p>x",
    "<style>p { font-family: \"A & B\" }</style><p>x",
    "<style>p { color: red; /* </body> & */ }\x01\x02\x0C</style><p>x",
    "<title>A & </body> B</title><p>x",
    "<textarea></body></textarea>x",
    "<xmp></body></xmp>x",
    "<plaintext></body>",
    "<noscript></body></noscript>x",
    "<template></body></template>x",
    "<![CDATA[</body>]]>x",
    "<?xml version='1.0'?><p>x",
    "<!DOCTYPE html [<!ENTITY a '</body>'>]>&a;x",
    "AT&T &copy &amp; &nbsp; &#0; &#xD800; &#x1; &unknown; & x",
    "<a href=https://x/?a=1&b=2&copy=3>a & b</a>",
    "<a href='https://x/\"><script>x</script>'>x</a>",
    "<b><i>x</b></i><p>one<p>two<div>three",
    "<p><table><p>in a table<tr><td>x<table><td>y",
    "<ul><li>one<li>two</ul></ul></li>",
    "<select><option>a<p>b</select>c",
    "<form><input value=a><button>b</form>c",
    "<br><br/></br><hr><hr/><wbr><img><col><input>",
    "<img src=x alt='a < b & \"c\"'><img src='data:image/gif;base64,R0lGODlhAQABAAAAACw='>",
    "<p hidden a=1 a=2 A=3 on=x =y \"z '>x",
    "<p style='color:red;font-family:\"a & b\"' class=a&b id='<>'>x",
    "<p style=\"background:url(x)\" style=\"color:red\">x",
    "<svg><title></body></title><p>x</svg><math><mi>y</math>",
    "<frameset><frame></frameset><p>x",
    "<object><param></object><embed src=x><iframe></body></iframe>x",
    "<p \xFF\xFE=x>\xFF\xFE \xC3( \xED\xA0\x80</p>",
    "<p>\x01\x02\x0B\x0C\x1F\x7F \xEF\xBF\xBE \xEF\xBF\xBF</p>",
    "<a:b xmlns:a=x><o:p>x</o:p></a:b><1>2</1><_x>y</_x>",
    "<pre>\n\n<b>x\r\ny\rz</pre",
    "<font color=red><center><nobr>x</center></font><marquee>y",
    "<details open><summary>x<ruby>a<rt>b<rp>c</ruby></details",
};

static_assert(std::size(brokenBodies) == 50);

template <class Ask> Text resultOf(Ask ask) {
    Completed<Text> completed;
    ask(completed.template callback<Callback<Text>>());
    return completed.value();
}

// The page of a mail with that body, a note, and two files.
std::string pageOf(std::string_view body, const TemporaryFolder& folder) {
    const auto file = folder.write("mail.eml", "Subject: A & <b>\r\nFrom: \"A & B\" <a@b.example>\r\n"
                                               "Message-ID: <1&2@b.example>\r\nMIME-Version: 1.0\r\n"
                                               "Content-Type: text/html; charset=utf-8\r\n\r\n" +
                                                   std::string(body));
    MailDataInteractor mail(MailReader::open(file).value(), {});
    const auto link = resultOf([&](auto done) {
        mail.link(IntegrationLinkType::backlink(IntegrationLinkFormat::html), std::move(done));
    });
    const auto block = resultOf([&](auto done) { mail.htmlHeader(std::move(done)); });
    IntegrationExportHtmlOptions options;
    options.customHeader = oneNoteHeader(link.value_or(""), "a & <b> \"c\" \x01", block);
    const auto html = resultOf([&](auto done) { mail.html(options, std::move(done)); });
    OneNotePage page{.html = html.value_or("(none)"), .parts = {}};
    for (const auto* name : {"one & \"two\".txt", "three.txt"}) {
        page.attach(oneNotePart(folder.write(name, "content")).value());
    }
    return page.html;
}

} // namespace

TEST(OneNoteHTMLOfAMail, IsWellFormedAndHoldsItsFilesWhateverTheBodyIs) {
    const TemporaryFolder folder;
    for (const auto body : brokenBodies) {
        SCOPED_TRACE(body);
        const auto html = pageOf(body, folder);
        const auto read = sandbox::readOneNoteHTML(html);
        ASSERT_TRUE(read) << read.error() << "\n" << html;
        EXPECT_EQ(html.find("</body>"), html.rfind("</body>")) << html;
        EXPECT_EQ(read->title, "A & <b>");
        ASSERT_EQ(read->references.size(), 2U);
        EXPECT_EQ(read->references.front().fileName, "one & \"two\".txt");
        EXPECT_TRUE(html.ends_with("\" type=\"text/plain\" /></body>\n</html>\n")) << html;
    }
}

TEST(OneNoteHTMLOfAMail, BeginsWithTheNoteAndTheLink) {
    const TemporaryFolder folder;
    const auto html = pageOf("<p>Body</p>", folder);
    const auto note = html.find("a &amp; &lt;b&gt; \"c\" <br/>______________________________</p>");
    const auto link = html.find("<a href=\"mid:1%262@b.example\">A &amp; &lt;b&gt;</a><br/></p>");
    const auto body = html.find("<p>Body</p>");
    EXPECT_NE(note, std::string::npos) << html;
    EXPECT_NE(link, std::string::npos) << html;
    EXPECT_LT(note, link);
    EXPECT_LT(link, body);
}

} // namespace zelto
