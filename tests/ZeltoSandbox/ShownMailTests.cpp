#include <ZeltoSandbox/ShownMail.h>
#include <ZeltoSandbox/ShownMarkup.h>

#include <gtest/gtest.h>

namespace zelto {

using namespace sandbox;

namespace {

void expectShown(const std::string& html, const std::string& body) {
    EXPECT_EQ(shownMailHTML(html), shownDocument(body)) << html;
}

} // namespace

TEST(ShownMail, KeepsWhatAMailLooksLike) {
    expectShown("<p style=\"color:red\">Größe &amp; <b>Maß</b><br>x</p>",
                "<p style=\"color:red\">Größe &amp; <b>Maß</b><br>x</p>");
    expectShown("<TABLE Border=1><tr><td colspan='2'>x</TABLE>",
                "<table border=\"1\"><tr><td colspan=\"2\">x</table>");
    expectShown("<a href=\"https://a.example/?b=1&amp;c=2\">x</a> <a href='mailto:a@b.example'>y</a>",
                "<a href=\"https://a.example/?b=1&amp;c=2\">x</a> <a href=\"mailto:a@b.example\">y</a>");
    expectShown("<img src=\"data:image/png;base64,AA==\" alt=x>",
                "<img src=\"data:image/png;base64,AA==\" alt=\"x\">");
}

TEST(ShownMail, LeavesOutWhatRunsOrLoads) {
    expectShown("a<script>run()</script>b<STYLE>@import url(x)</Style >c", "abc");
    expectShown("<p onclick=\"run()\" class=x>a", "<p>a");
    expectShown("<a href=\"javascript:run()\">a</a><a href=\"&#106;avascript:run()\">b</a>",
                "<a>a</a><a>b</a>");
    expectShown("<img src=\"https://a.example/x.png\" alt=\"A <b>\" onerror=run()>", "A &lt;b>");
    for (const std::string style : {"background:url(https://a.example/)", "color:re\\64", "a<b", "@import x",
                                    "width:EXPRESSION(run())", "x:attr(y)", "-moz-binding:x"}) {
        expectShown("<p style=\"" + style + "\">a</p>", "<p>a</p>");
    }
    expectShown("<iframe src=x>b</iframe><object data=x></object><embed src=x><link rel=preconnect href=x>"
                "<meta http-equiv=refresh content=0><base href=x><svg onload=run()><form action=x><input>",
                "");
    expectShown("<noscript><img src=x></noscript><textarea><b></textarea><title>t</title>", "");
}

TEST(ShownMail, ReadsWhatIsNotWellFormed) {
    expectShown("a < b <3 </ c", "a &lt; b &lt;3 &lt;/ c");
    expectShown("AT&T &lt;x&gt;", "AT&amp;T &lt;x&gt;");
    expectShown("<!DOCTYPE html><!-- <p> --><?xml x?>a<![endif]>b", "ab");
    expectShown("<p title='a\"b' dir=rtl=x/>c", "<p title=\"a&quot;b\" dir=\"rtl=x/\">c");
    expectShown("<p =x y>a", "<p>a");
    expectShown("a<!-- b", "a");
    expectShown("a<script>b", "a");
    expectShown("a<p title=\"b", "a");
    expectShown("a<p", "a");
    expectShown("a</p", "a</p>");
    expectShown("a<", "a&lt;");
    expectShown("", "");
}

} // namespace zelto
