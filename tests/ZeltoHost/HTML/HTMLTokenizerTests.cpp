#include <ZeltoHost/HTML/HTMLTokenizer.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

using Texts = std::vector<std::string>;

std::string nameOf(HTMLToken::Kind kind) {
    switch (kind) {
    case HTMLToken::Kind::text:
        return "text ";
    case HTMLToken::Kind::startTag:
        return "start ";
    case HTMLToken::Kind::endTag:
        return "end ";
    case HTMLToken::Kind::comment:
        return "comment ";
    }
    return {};
}

// The kind and source of each token; the sources, joined, have to be the input.
Texts tokensOf(std::string_view html, HTMLTokenizer tokenizer) {
    Texts tokens;
    std::string joined;
    for (HTMLToken token; tokenizer.next(token);) {
        tokens.push_back(nameOf(token.kind) + std::string(token.source));
        joined += token.source;
    }
    EXPECT_EQ(joined, html);
    return tokens;
}

Texts tokensOf(std::string_view html) {
    return tokensOf(html, HTMLTokenizer(html));
}

TEST(HTMLTokenizer, SplitsIntoTextTagsAndComments) {
    EXPECT_EQ(tokensOf("a<b>c</b>d<!--e-->f"),
              (Texts{"text a", "start <b>", "text c", "end </b>", "text d", "comment <!--e-->", "text f"}));
    EXPECT_EQ(tokensOf("<?xml a?>b<!DOCTYPE html>c</1>d<!e"),
              (Texts{"comment <?xml a?>", "text b", "comment <!DOCTYPE html>", "text c", "comment </1>",
                     "text d", "comment <!e"}));
    EXPECT_EQ(tokensOf(""), Texts());
}

TEST(HTMLTokenizer, ASignThatBeginsNoMarkupIsText) {
    for (const std::string text : {"a < b", "<", "<1>", "< a>", "<<", "</", "a<=b</"}) {
        EXPECT_EQ(tokensOf(text), Texts{"text " + text});
    }
}

TEST(HTMLTokenizer, ACommentEndsAsInABrowser) {
    struct {
        std::string comment;
        std::string text;
    } const rows[] = {{"<!-->", "a-->"},      {"<!--->", "a-->"}, {"<!--a--!>", "b-->"}, {"<!--a--b-->", "c"},
                      {"<!--a-- >b-->", "c"}, {"<!--a--->", "b"}, {"<!---->", "a"},      {"<!--a->b-->", "c"},
                      {"<!--a--", ""},        {"<!--a--!", ""},   {"<!--", ""},          {"<!--a>", ""},
                      {"<!-a>", "b-->"},      {"<!-", ""}};

    for (const auto& [comment, text] : rows) {
        const auto expected =
            text.empty() ? Texts{"comment " + comment} : Texts{"comment " + comment, "text " + text};
        EXPECT_EQ(tokensOf(comment + text), expected);
    }
}

TEST(HTMLTokenizer, ATagEndsBehindItsAttributes) {
    struct {
        std::string tag;
        std::string name;
        bool selfClosing;
    } const rows[] = {{"<br/>", "br", true},
                      {"<a b/>", "a", true},
                      {"<a b / >", "a", false},
                      {"<a b=c/>", "a", false},
                      {"<a/b>", "a", false},
                      {"<a b/c>", "a", false},
                      {"<a b='>' c>", "a", false},
                      {"<a b=\">\"/>", "a", true},
                      {"<a =>", "a", false},
                      {"<a b = c d>", "a", false},
                      {"<a b=c\nd>", "a", false},
                      {"<a\tb c>", "a", false},
                      {"<a-b:c d=\"e\"f>", "a-b:c", false}};

    for (const auto& [tag, name, selfClosing] : rows) {
        const auto html = tag + "text";
        HTMLTokenizer tokenizer(html);
        HTMLToken token;
        ASSERT_TRUE(tokenizer.next(token));
        EXPECT_EQ(token.source, tag);
        EXPECT_EQ(token.kind, HTMLToken::Kind::startTag) << tag;
        EXPECT_EQ(token.name, name) << tag;
        EXPECT_EQ(token.selfClosing, selfClosing) << tag;
    }
}

TEST(HTMLTokenizer, ATagWithoutAnEndTakesAllThatFollows) {
    for (const std::string tag : {"<a", "<a ", "<a b", "<a b ", "<a b=", "<a b= ", "<a b=c", "<a b='c",
                                  "<a b='>", "<a b=\"c' d>", "<a b/", "<a ="}) {
        EXPECT_EQ(tokensOf(tag), Texts{"start " + tag});
    }
    EXPECT_EQ(tokensOf("</a b"), Texts{"end </a b"});
}

TEST(HTMLTokenizer, RawTextEndsAtItsOwnEndTagOnly) {
    const auto rawTokensOf = [](std::string_view html) {
        HTMLTokenizer tokenizer(html);
        tokenizer.readRawText("script");
        return tokensOf(html, tokenizer);
    };
    EXPECT_EQ(rawTokensOf("<b></b></scripts></s</script>a"),
              (Texts{"text <b></b></scripts></s", "end </script>", "text a"}));
    EXPECT_EQ(rawTokensOf("a</SCRIPT b>"), (Texts{"text a", "end </SCRIPT b>"}));
    EXPECT_EQ(rawTokensOf("a</script/>"), (Texts{"text a", "end </script/>"}));
    EXPECT_EQ(rawTokensOf("a</script"), (Texts{"text a", "end </script"}));
    EXPECT_EQ(rawTokensOf("</script>"), (Texts{"end </script>"}));
    EXPECT_EQ(rawTokensOf("a<b></style>"), (Texts{"text a<b></style>"}));
}

TEST(HTMLTokenizer, CharacterDataIsTextWithinForeignElementsOnly) {
    const auto foreignTokensOf = [](std::string_view html) {
        HTMLTokenizer tokenizer(html);
        tokenizer.setForeign(true);
        return tokensOf(html, tokenizer);
    };
    EXPECT_EQ(foreignTokensOf("<![CDATA[a<b>]]>c"), (Texts{"text <![CDATA[a<b>]]>", "text c"}));
    EXPECT_EQ(foreignTokensOf("<![CDATA[a<b>"), (Texts{"text <![CDATA[a<b>"}));
    EXPECT_EQ(foreignTokensOf("<!--a>-->b<![cdata[>"),
              (Texts{"comment <!--a>-->", "text b", "comment <![cdata[>"}));
    EXPECT_EQ(tokensOf("<![CDATA[a<b>]]>c"), (Texts{"comment <![CDATA[a<b>", "text ]]>c"}));
}

} // namespace
} // namespace zelto
