#include <ZeltoIntegrations/Content/FormattedBodyComponent.h>
#include <ZeltoIntegrations/Content/IntegrationError.h>
#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>
#include <ZeltoIntegrations/Content/IntegrationHeaderComponents.h>
#include <ZeltoIntegrations/Content/IntegrationLink.h>

#include <Platform/JSON/JSONCoding.h>

#include <gtest/gtest.h>

#include <map>

namespace zelto {

using Modifiers = FormattedBodyComponent::TextPart::Modifiers;
using HeaderLevel = FormattedBodyComponent::HeaderLevel;

TEST(FormattedBodyComponent, HeaderLevelsRunFromOneToSix) {
    EXPECT_EQ(fromRawValue<HeaderLevel>(0), std::nullopt);
    EXPECT_EQ(fromRawValue<HeaderLevel>(7), std::nullopt);
    EXPECT_EQ(fromRawValue<HeaderLevel>(1), HeaderLevel::h1);
    EXPECT_EQ(fromRawValue<HeaderLevel>(6), HeaderLevel::h6);
}

TEST(FormattedBodyComponent, ModifiersAreABitSetWithoutTheLowestBit) {
    EXPECT_EQ(Modifiers::bold.rawValue, 2);
    EXPECT_EQ(Modifiers::italic.rawValue, 4);
    EXPECT_EQ(Modifiers::underline.rawValue, 8);
    EXPECT_EQ((Modifiers::bold | Modifiers::underline).rawValue, 10);
    EXPECT_TRUE((Modifiers::bold | Modifiers::italic).contains(Modifiers::italic));
    EXPECT_FALSE(Modifiers::bold.contains(Modifiers::italic));
    EXPECT_EQ((Modifiers::bold | Modifiers::italic) - Modifiers::bold, Modifiers::italic);
    EXPECT_EQ((Modifiers::bold | Modifiers::italic) & Modifiers::bold, Modifiers::bold);
}

TEST(FormattedBodyComponent, APartWithBoldAndUnderlineHasTheRawValueTen) {
    const FormattedBodyComponent::TextPart part{"a", Modifiers::bold | Modifiers::underline, std::nullopt};
    EXPECT_EQ(part.modifiers.rawValue, 10);
}

TEST(FormattedBodyComponent, ComponentsAreEqualByTheirParts) {
    const auto paragraph =
        FormattedBodyComponent::text({{"a", Modifiers::bold, URL::parse("https://a.example")}});
    EXPECT_EQ(paragraph,
              FormattedBodyComponent::text({{"a", Modifiers::bold, URL::parse("https://a.example")}}));
    EXPECT_NE(paragraph, FormattedBodyComponent::text({{"a", Modifiers::bold, std::nullopt}}));
    EXPECT_NE(FormattedBodyComponent::text({}), FormattedBodyComponent::header(HeaderLevel::h1, {}));
    EXPECT_NE(FormattedBodyComponent::header(HeaderLevel::h2, {}),
              FormattedBodyComponent::header(HeaderLevel::h1, {}));
}

TEST(IntegrationLink, VisibilityHasThreeRawValuesAndIsCodedAsItsNumber) {
    EXPECT_EQ(fromRawValue<IntegrationWebLinkVisibility>(3), std::nullopt);
    EXPECT_EQ(fromRawValue<IntegrationWebLinkVisibility>(0), IntegrationWebLinkVisibility::onlyMe);
    EXPECT_EQ(fromRawValue<IntegrationWebLinkVisibility>(1), IntegrationWebLinkVisibility::anyone);
    EXPECT_EQ(fromRawValue<IntegrationWebLinkVisibility>(2), IntegrationWebLinkVisibility::team);
    EXPECT_EQ(JSONEncoder().encode(IntegrationWebLinkVisibility::team).value(), "2");
    EXPECT_FALSE(JSONDecoder().decode<IntegrationWebLinkVisibility>("3"));
}

TEST(IntegrationLink, TypesCarryTheirFormatAndAWebLinkItsTeam) {
    using enum IntegrationLinkFormat;
    EXPECT_EQ(IntegrationLinkType::backlink(raw).format(), raw);
    EXPECT_EQ(IntegrationLinkType::altBacklink(html).format(), html);
    EXPECT_EQ(IntegrationLinkType::safeBacklink(mrkdwn).format(), mrkdwn);
    const auto web = IntegrationLinkType::webLink(markdown, IntegrationWebLinkVisibility::team, ~0ull);
    EXPECT_EQ(std::get<IntegrationLinkType::WebLink>(web.value).teamId, ~0ull);
    EXPECT_NE(IntegrationLinkType::backlink(raw), IntegrationLinkType::altBacklink(raw));
}

TEST(IntegrationHeaderComponents, AddressesTellSendersFromTheirAbsence) {
    using Address = IntegrationHeaderComponents::Address;
    EXPECT_EQ(Address::sender({"Ann", "ann@example.org"}), Address::sender({"Ann", "ann@example.org"}));
    EXPECT_NE(Address::sender({std::nullopt, "x"}), Address::noSender("x"));
}

TEST(IntegrationExportContentType, EveryTypeHasItsNumberAndLink) {
    using enum IntegrationExportContentType;
    using Link = IntegrationExportUsedLink;
    const std::vector<std::pair<IntegrationExportContentType, std::optional<Link>>> rows = {
        {pdf, std::nullopt},
        {emailBacklink, Link::backlink},
        {backLink, Link::backlink},
        {webLink, Link::weblink},
        {externalLink, Link::externalLink},
        {plainText, std::nullopt},
        {attachment, std::nullopt},
        {mtSummaryWeblink, Link::weblink},
        {mtSummaryBacklink, Link::backlink},
        {emailWeblink, Link::weblink},
    };
    ASSERT_EQ(casesOf<IntegrationExportContentType>().size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rawValue(rows[i].first), static_cast<int>(i));
        EXPECT_EQ(linkUsage(rows[i].first), rows[i].second) << nameOf(rows[i].first);
    }
    EXPECT_EQ(JSONEncoder().encode(emailWeblink).value(), "9");
}

TEST(IntegrationExportContentType, APlainTextUsesNoLinkAndAMeetingSummaryWithBacklinkABacklink) {
    EXPECT_EQ(linkUsage(IntegrationExportContentType::plainText), std::nullopt);
    EXPECT_EQ(linkUsage(IntegrationExportContentType::mtSummaryBacklink),
              IntegrationExportUsedLink::backlink);
}

TEST(IntegrationExportUsedLink, RawValuesStandInOrder) {
    EXPECT_EQ(rawValue(IntegrationExportUsedLink::backlink), 0);
    EXPECT_EQ(rawValue(IntegrationExportUsedLink::weblink), 1);
    EXPECT_EQ(rawValue(IntegrationExportUsedLink::externalLink), 2);
}

TEST(IntegrationExportError, CaseNamesAndRawValuesAreThoseOfAnalytics) {
    const std::vector<std::string_view> names = {
        "canceled",          "internalError",  "createBodyError",  "convertError",    "unsupportedFormat",
        "fileAlreadyExists", "oauthError",     "connectionError",  "createTaskError", "uploadAttachmentError",
        "urlEncodeError",    "createUrlError", "xUrlCallbackError"};
    const auto cases = casesOf<IntegrationExportError>();
    ASSERT_EQ(cases.size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(cases[i].name, names[i]);
        EXPECT_EQ(rawValue(cases[i].value), static_cast<int>(i));
    }
}

TEST(IntegrationLoadError, RawValuesStandInOrder) {
    EXPECT_EQ(rawValue(IntegrationLoadError::internalError), 0);
    EXPECT_EQ(rawValue(IntegrationLoadError::oauthError), 1);
    EXPECT_EQ(rawValue(IntegrationLoadError::connectionError), 2);
}

TEST(IntegrationExportPreview, PreviewsTellTheirKindsApart) {
    EXPECT_EQ(IntegrationExportPreview::pdf("a.pdf"), IntegrationExportPreview::pdf("a.pdf"));
    EXPECT_NE(IntegrationExportPreview::backLink("u"), IntegrationExportPreview::webLink("u"));
    EXPECT_NE(IntegrationExportPreview::email("b"), IntegrationExportPreview::externalLink());
}

} // namespace zelto
