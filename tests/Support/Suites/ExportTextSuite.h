#pragma once

#include <ZeltoIntegrations/Content/IntegrationExportContentType.h>
#include <ZeltoIntegrations/Content/IntegrationLink.h>

#include <Support/ExportScenario.h>
#include <Support/NetworkExport.h>
#include <Support/TestHTTPServer.h>
#include <Support/WithoutLengths.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// An export of the message's text with a link to it, or of the link alone, by facts that have
//
//     using Export; using Server;
//     static constexpr auto name;                  // in the names of the tests
//     static IntegrationLinkType linkOfText();     // of a text that has not the web link
//     static constexpr IntegrationLinkFormat linkFormat;
//     static constexpr int unitCount;              // of an export's progress
//     // The one request of an export of that text with a link, or of a link alone; without its length.
//     static std::string request(const std::optional<std::string>& text);
//     static ExportReport report(); // of that export
//     static auto storedTarget();  // as the configuration has it in `saveTo`; the service does not list it
//     static void withoutTargets(…Exporter& exporter); // whose account has no targets then
//     // What is offered in `saveTo` once the account's targets are known.
//     static std::optional<…> offeredTarget();
template <class Facts> class ExportText : public testing::Test {
  protected:
    using Type = IntegrationExportContentType;
    using Link = IntegrationLinkType;
    using Preview = IntegrationExportPreview;
    using Visibility = IntegrationWebLinkVisibility;
    using Configuration = typename Facts::Export::Configuration;
    using Exporter = typename Facts::Export::Exporter;
    using Target = decltype(Facts::storedTarget());

    // A type with its text, the links that its export and its preview ask the host for, and the preview.
    struct Row {
        Type type;
        std::optional<std::string> text;
        Link link;
        Link linkOfPreview;
        Preview preview;
    };

    // With a team for the web links.
    static std::vector<Row> rows() {
        constexpr auto raw = IntegrationLinkFormat::raw;
        const auto ofText = Facts::linkOfText();
        const auto webLink = Link::webLink(Facts::linkFormat, Visibility::team, 7);
        return {
            {Type::emailBacklink, "Body", ofText, ofText, Preview::email("Body")},
            {Type::emailWeblink, "Body", webLink, webLink, Preview::email("Body")},
            {Type::mtSummaryBacklink, "Summary", ofText, ofText, Preview::email("Summary")},
            {Type::mtSummaryWeblink, "Summary", webLink, webLink, Preview::email("Summary")},
            {Type::backLink, std::nullopt, Link::backlink(Facts::linkFormat), Link::backlink(raw),
             Preview::backLink("zelto://m")},
            {Type::webLink, std::nullopt, webLink, Link::webLink(raw, Visibility::team, 7),
             Preview::webLink("zelto://m")},
        };
    }

    static IntegrationExportContentTypes typesOf(IntegrationExportTarget target) {
        switch (target) {
        case IntegrationExportTarget::email:
            return {Type::emailWeblink,
                    {Type::emailBacklink, Type::emailWeblink, Type::backLink, Type::webLink}};
        case IntegrationExportTarget::meetingNote:
            return {Type::mtSummaryWeblink,
                    {Type::mtSummaryBacklink, Type::mtSummaryWeblink, Type::backLink, Type::webLink}};
        }
        return {};
    }

    void chooseTeam() {
        one.configuration.webLinkVisibility = Visibility::team;
        one.configuration.teamId = 7;
    }

    // The account has these settings of the last export.
    void storeTeam() {
        chooseTeam();
        one.exporter()->webLinks.storeFrom(one.configuration);
    }

    void expectTeamIsStored() {
        const auto next = one.offered();
        EXPECT_EQ(next.webLinkVisibility, Visibility::team);
        EXPECT_EQ(next.teamId, 7U);
        const auto stored = one.storage->load(one.account.identifier()).value();
        EXPECT_EQ(stored.template getCachedItem<Visibility>("lastWebLinkVisibility"), Visibility::team);
        EXPECT_EQ(stored.template getCachedItem<std::uint64_t>("lastTeamId"), 7U);
        EXPECT_EQ(stored.template getCachedItem<Target>("lastExportInfo"), one.configuration.saveTo);
    }

    typename Facts::Export one;
    typename Facts::Server service; // behind what its requests write to
};

TYPED_TEST_SUITE_P(ExportText);

TYPED_TEST_P(ExportText, HasTheTypesOfItsTarget) {
    for (const auto target : {IntegrationExportTarget::email, IntegrationExportTarget::meetingNote}) {
        EXPECT_EQ(this->one.exporter()->contentTypes(target), this->typesOf(target));
    }
}

TYPED_TEST_P(ExportText, IsPreviewedWithItsLinkAndALinkAloneAsItsAddress) {
    this->storeTeam();
    this->one.data->rawLinkText = "zelto://m";
    for (const auto& row : this->rows()) {
        EXPECT_EQ(this->one.preview(row.type), row.preview) << nameOf(row.type);
        EXPECT_EQ(this->one.data->askedLinks().back(), row.linkOfPreview) << nameOf(row.type);
    }
    EXPECT_EQ(this->one.data->askedLinks().size(), this->rows().size());
}

TYPED_TEST_P(ExportText, OfAnotherTypeHasNoPreview) {
    const auto rows = this->rows();
    for (const auto& type : casesOf<IntegrationExportContentType>()) {
        if (std::ranges::none_of(rows, [&](const auto& row) { return row.type == type.value; })) {
            EXPECT_EQ(this->one.preview(type.value), std::nullopt) << type.name;
        }
    }
    EXPECT_TRUE(this->one.data->askedLinks().empty());
}

TYPED_TEST_P(ExportText, ThatTheHostDoesNotHaveHasNoPreview) {
    this->one.data->plainText = std::nullopt;
    this->one.data->summary = std::nullopt;
    this->one.data->linkText = std::nullopt;
    for (const auto& row : this->rows()) {
        EXPECT_EQ(this->one.preview(row.type), std::nullopt) << nameOf(row.type);
    }
}

TYPED_TEST_P(ExportText, IsOfferedWithTheMessagesTitleTheUsualTypeAndTheUsualTarget) {
    this->one.data->titleText = "Subject";
    auto types = this->typesOf(IntegrationExportTarget::email);
    typename TestFixture::Configuration expected;
    expected.saveTo = std::nullopt;
    expected.saveAs = types.default_;
    expected.userTitle = "Subject";
    expected.webLinkVisibility = IntegrationWebLinkVisibility::onlyMe;
    expected.teamId = std::nullopt;
    expected.supportedContentTypes = types.supported;
    EXPECT_EQ(this->one.offered(), expected);
    TypeParam::withoutTargets(*this->one.exporter());
    EXPECT_EQ(this->one.offered(), expected);
    ASSERT_TRUE(this->one.fetch());
    expected.saveTo = TypeParam::offeredTarget();
    EXPECT_EQ(this->one.offered(), expected);

    this->one.data->target = IntegrationExportTarget::meetingNote;
    types = this->typesOf(IntegrationExportTarget::meetingNote);
    expected.saveAs = types.default_;
    expected.supportedContentTypes = types.supported;
    EXPECT_EQ(this->one.offered(), expected);
}

TYPED_TEST_P(ExportText, IsOfferedAsItWasChosenLast) {
    using Type = IntegrationExportContentType;
    ASSERT_TRUE(this->one.fetch());
    this->one.exporter()->lastExportInfo.set(TypeParam::storedTarget());
    this->one.exporter()->setLastExportContentType(Type::backLink);
    this->storeTeam();
    const auto offered = this->one.offered();
    EXPECT_EQ(offered.saveTo, TypeParam::storedTarget());
    EXPECT_EQ(offered.saveAs, Type::backLink);
    EXPECT_EQ(offered.webLinkVisibility, IntegrationWebLinkVisibility::team);
    EXPECT_EQ(offered.teamId, 7U);
}

TYPED_TEST_P(ExportText, IsOfferedByTheUsualTypeWhereItsTargetDoesNotHaveTheLast) {
    using Type = IntegrationExportContentType;
    this->one.exporter()->setLastExportContentType(Type::emailBacklink);
    this->one.data->target = IntegrationExportTarget::meetingNote;
    EXPECT_EQ(this->one.offered().saveAs, Type::mtSummaryWeblink);
}

TYPED_TEST_P(ExportText, OfEachTypeGoesOutWithItsLink) {
    this->chooseTeam();
    const auto rows = this->rows();
    for (const auto& row : rows) {
        SCOPED_TRACE(nameOf(row.type));
        this->one.configuration.saveAs = row.type;
        ASSERT_TRUE(this->one.run());
        EXPECT_EQ(this->one.data->askedLinks().back(), row.link);
        EXPECT_EQ(this->one.progress->totalUnitCount(), TypeParam::unitCount);
        EXPECT_EQ(this->one.progress->completedUnitCount(), TypeParam::unitCount);
        EXPECT_EQ(withoutLengths(this->service.texts()).back(), TypeParam::request(row.text));
        EXPECT_EQ(this->one.exporter()->exportReport(), TypeParam::report());
    }
    EXPECT_EQ(this->service.lines().size(), rows.size());
}

TYPED_TEST_P(ExportText, StoresWhereItWentAndWhoMayOpenItsLink) {
    this->chooseTeam();
    ASSERT_TRUE(this->one.run());
    this->expectTeamIsStored();
}

TYPED_TEST_P(ExportText, StoresWhereItWentAndWhoMayOpenItsLinkAlsoAfterAFailure) {
    this->chooseTeam();
    this->one.configuration.saveAs = IntegrationExportContentType::backLink;
    this->service.onRequest = [](const auto&) { return PlayedResponse::json("no", 404); };
    ASSERT_FALSE(this->one.run());
    this->expectTeamIsStored();
}

REGISTER_TYPED_TEST_SUITE_P(ExportText, HasTheTypesOfItsTarget,
                            IsPreviewedWithItsLinkAndALinkAloneAsItsAddress, OfAnotherTypeHasNoPreview,
                            ThatTheHostDoesNotHaveHasNoPreview,
                            IsOfferedWithTheMessagesTitleTheUsualTypeAndTheUsualTarget,
                            IsOfferedAsItWasChosenLast,
                            IsOfferedByTheUsualTypeWhereItsTargetDoesNotHaveTheLast,
                            OfEachTypeGoesOutWithItsLink, StoresWhereItWentAndWhoMayOpenItsLink,
                            StoresWhereItWentAndWhoMayOpenItsLinkAlsoAfterAFailure);

} // namespace zelto
