#include <ZeltoIntegrations/Export/ContentText.h>

#include <Support/Completed.h>
#include <Support/FakeDataInteractor.h>

#include <gtest/gtest.h>

#include <vector>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using Source = ContentText::Source;
using Link = ContentText::Link;
using Format = IntegrationLinkFormat;
using Links = std::vector<IntegrationLinkType>;
using Texts = std::vector<std::string>;

constexpr ContentText rows[] = {
    {Type::plainText, Source::messagePlainText, Link::safeBacklink, Format::markdown},
    {Type::backLink, Source::link, Link::altBacklink, Format::html},
    {Type::webLink, Source::link, Link::webLink, Format::markdown},
    {Type::mtSummaryBacklink, Source::meetingSummary, Link::backlink, Format::mrkdwn},
};

const WebLinkSettings settings{.visibility = IntegrationWebLinkVisibility::team, .teamId = 7};

class ContentTextTest : public testing::Test {
  protected:
    ContentTextTest() {
        data.onAsked = [this](const std::string& what) { asked.push_back(what); };
    }

    std::optional<std::string> text(const ContentText& row) {
        Completed<std::optional<std::string>> completed;
        loadText(data, row, settings, completed.callback<Callback<std::optional<std::string>>>());
        return completed.value();
    }

    std::optional<IntegrationExportPreview> preview(Type type) {
        Completed<std::optional<IntegrationExportPreview>> completed;
        loadTextPreview(data, type, rows, settings,
                        completed.callback<Callback<std::optional<IntegrationExportPreview>>>());
        return completed.value();
    }

    FakeDataInteractor data;
    Texts asked;
};

} // namespace

TEST_F(ContentTextTest, ARowIsFoundByItsType) {
    for (const auto& row : rows) {
        EXPECT_EQ(contentTextFor(row.type, rows), &row);
    }
    EXPECT_EQ(contentTextFor(Type::pdf, rows), nullptr);
    EXPECT_EQ(contentTextFor(Type::plainText, {}), nullptr);
}

TEST_F(ContentTextTest, EachSourceIsAskedForWithItsLink) {
    EXPECT_EQ(text(rows[0]), "Body");
    EXPECT_EQ(text(rows[1]), "mid:1@example.org");
    EXPECT_EQ(text(rows[2]), "mid:1@example.org");
    EXPECT_EQ(text(rows[3]), "Summary");
    EXPECT_EQ(asked, (Texts{"messagePlainText", "link", "link", "meetTranscript"}));
    EXPECT_EQ(data.askedLinks(),
              (Links{IntegrationLinkType::safeBacklink(Format::markdown),
                     IntegrationLinkType::altBacklink(Format::html),
                     IntegrationLinkType::webLink(Format::markdown, IntegrationWebLinkVisibility::team, 7),
                     IntegrationLinkType::backlink(Format::mrkdwn)}));
}

TEST_F(ContentTextTest, ATextThatTheHostDoesNotHaveIsNone) {
    data.plainText = data.linkText = data.summary = std::nullopt;
    for (const auto& row : rows) {
        EXPECT_EQ(text(row), std::nullopt);
        EXPECT_EQ(preview(row.type), std::nullopt);
    }
}

TEST_F(ContentTextTest, APreviewOfALinkIsItsPlainAddress) {
    EXPECT_EQ(preview(Type::backLink), IntegrationExportPreview::backLink("mid:1@example.org"));
    EXPECT_EQ(preview(Type::webLink), IntegrationExportPreview::webLink("mid:1@example.org"));
    EXPECT_EQ(data.askedLinks(),
              (Links{IntegrationLinkType::altBacklink(Format::raw),
                     IntegrationLinkType::webLink(Format::raw, IntegrationWebLinkVisibility::team, 7)}));
}

TEST_F(ContentTextTest, APreviewOfATextIsTheBodyOfAMail) {
    EXPECT_EQ(preview(Type::plainText), IntegrationExportPreview::email("Body"));
    EXPECT_EQ(preview(Type::mtSummaryBacklink), IntegrationExportPreview::email("Summary"));
    EXPECT_EQ(data.askedLinks(), (Links{IntegrationLinkType::safeBacklink(Format::markdown),
                                        IntegrationLinkType::backlink(Format::mrkdwn)}));
}

TEST_F(ContentTextTest, ATypeWithoutARowHasNoPreviewAndAsksForNothing) {
    EXPECT_EQ(preview(Type::pdf), std::nullopt);
    EXPECT_EQ(asked, Texts{});
}

TEST_F(ContentTextTest, WithoutSettingsOnlyTheUserMayOpenALink) {
    EXPECT_EQ(WebLinkSettings(),
              (WebLinkSettings{.visibility = IntegrationWebLinkVisibility::onlyMe, .teamId = std::nullopt}));
}

TEST(ContentTextTypes, AreThoseOfTheTarget) {
    EXPECT_EQ(
        textContentTypes(IntegrationExportTarget::email),
        (IntegrationExportContentTypes{
            Type::emailWeblink, {Type::emailBacklink, Type::emailWeblink, Type::backLink, Type::webLink}}));
    EXPECT_EQ(textContentTypes(IntegrationExportTarget::meetingNote),
              (IntegrationExportContentTypes{
                  Type::mtSummaryWeblink,
                  {Type::mtSummaryBacklink, Type::mtSummaryWeblink, Type::backLink, Type::webLink}}));
}

TEST(ContentTextLinks, AreThoseOfTheRow) {
    const auto linkOf = [](Link link) {
        return linkTypeOf({Type::webLink, Source::link, link, Format::mrkdwn}, settings);
    };
    EXPECT_EQ(linkOf(Link::backlink), IntegrationLinkType::backlink(Format::mrkdwn));
    EXPECT_EQ(linkOf(Link::altBacklink), IntegrationLinkType::altBacklink(Format::mrkdwn));
    EXPECT_EQ(linkOf(Link::safeBacklink), IntegrationLinkType::safeBacklink(Format::mrkdwn));
    EXPECT_EQ(linkOf(Link::webLink),
              IntegrationLinkType::webLink(Format::mrkdwn, settings.visibility, settings.teamId));
}

TEST(ContentTextLinksDeathTest, OneThatThereIsNotStopsTheProcess) {
    const ContentText row{Type::webLink, Source::link, static_cast<Link>(99), Format::raw};
    EXPECT_DEATH(linkTypeOf(row, settings), "Unexpected linkUsage");
}

} // namespace zelto
