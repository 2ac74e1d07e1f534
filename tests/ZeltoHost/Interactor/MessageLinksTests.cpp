#include <Platform/URL.h>
#include <ZeltoHost/Interactor/MessageLinks.h>

#include <gtest/gtest.h>

namespace zelto {
namespace {

TEST(MessageLinks, AnyMessageIDMakesURLs) {
    for (const std::string id :
         {"a@b", "<>@\"q q\"", "%41@x", "a/b?c#d@e", "ünï@код.example", "(){}[]|\\^`@x", ""}) {
        const auto links = linksToMail(id);
        for (const auto& url : {links.backlink, links.altBacklink, links.safeBacklink}) {
            ASSERT_TRUE(url.has_value());
            EXPECT_TRUE(URL::parse(*url).has_value()) << *url;
        }
    }
    EXPECT_EQ(linksToMail("a/b?c=d%e@f").backlink, "mid:a%2Fb%3Fc=d%25e@f");
}

TEST(MessageLinks, AMessageIDIsEscapedOnlyWhereItMustBe) {
    const auto links = linksToMail("CAF-1.2+x=y$z!_~@mail.harbour.example");
    EXPECT_EQ(links.backlink, "mid:CAF-1.2+x=y$z!_~@mail.harbour.example");
    EXPECT_EQ(links.altBacklink, "message:%3CCAF-1.2+x=y$z!_~@mail.harbour.example%3E");
    EXPECT_EQ(links.safeBacklink, "mid:CAF-1.2+x=y$z!%5F%7E@mail.harbour.example");
    EXPECT_EQ(linksToMail("a/b?c#d%e&f(g)@[h]").safeBacklink, "mid:a%2Fb%3Fc%23d%25e%26f%28g%29@%5Bh%5D");
}

TEST(MessageLinks, WithoutAMessageIDThereAreNone) {
    const auto links = linksToMail(std::nullopt);
    EXPECT_FALSE(links.backlink || links.altBacklink || links.safeBacklink || links.webLink);
    EXPECT_EQ(links.appended("text", IntegrationLinkType::backlink(IntegrationLinkFormat::raw)), "text");
}

TEST(MessageLinks, EachFormatEscapesItsText) {
    const IntegrationLinkComponents link{"a <b> [c] \"d\" & *e* |f", "https://x.example/(a)?b=c&d|e"};
    EXPECT_EQ(writtenLink(link, IntegrationLinkFormat::raw), "https://x.example/(a)?b=c&d|e");
    EXPECT_EQ(writtenLink(link, IntegrationLinkFormat::html),
              "<a href=\"https://x.example/(a)?b=c&amp;d|e\">a &lt;b&gt; [c] &quot;d&quot; &amp; *e* |f</a>");
    EXPECT_EQ(writtenLink(link, IntegrationLinkFormat::markdown),
              "[a \\<b\\> \\[c\\] \"d\" & \\*e\\* |f](https://x.example/%28a%29?b=c&d|e)");
    EXPECT_EQ(writtenLink(link, IntegrationLinkFormat::mrkdwn),
              "<https://x.example/(a)?b=c&amp;d%7Ce|a &lt;b&gt; [c] \"d\" &amp; *e* |f>");
}

TEST(MessageLinks, ATextWithAMrkdwnLinkIsEscapedAsAWhole) {
    MessageLinks links{.text = "Q&A <1>", .backlink = "mid:1@x"};
    const std::string body = "1 < 2 & 3 > 2 <!channel> <@U1> <https://evil.example|x> &amp; *b*";
    const std::string escaped = "1 &lt; 2 &amp; 3 &gt; 2 &lt;!channel&gt; &lt;@U1&gt; "
                                "&lt;https://evil.example|x&gt; &amp;amp; *b*";
    EXPECT_EQ(links.appended(body, IntegrationLinkType::backlink(IntegrationLinkFormat::mrkdwn)),
              escaped + "\n\n<mid:1@x|Q&amp;A &lt;1&gt;>");
    EXPECT_EQ(links.appended(body, IntegrationLinkType::safeBacklink(IntegrationLinkFormat::mrkdwn)), escaped)
        << "also without a link";
    for (const auto format :
         {IntegrationLinkFormat::raw, IntegrationLinkFormat::html, IntegrationLinkFormat::markdown}) {
        EXPECT_EQ(links.appended(body, IntegrationLinkType::altBacklink(format)), body);
    }
    EXPECT_EQ(links.appended(body, std::nullopt), body);
}

} // namespace
} // namespace zelto
