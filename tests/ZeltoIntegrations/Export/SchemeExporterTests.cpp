#include <Support/SchemeExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using Texts = std::vector<std::string>;

// What holds for all five.
template <class Exporter> class SchemeExporterTest : public testing::Test {
  protected:
    SchemeExport<Exporter> one;
};

using Exporters =
    testing::Types<AgendaExporter, BearExporter, OmniFocusExporter, ThingsExporter, TwoDoExporter>;
TYPED_TEST_SUITE(SchemeExporterTest, Exporters);

} // namespace

TYPED_TEST(SchemeExporterTest, ContentTypesFollowTheTarget) {
    const auto exporter = this->one.exporter();
    EXPECT_EQ(exporter->contentTypes(IntegrationExportTarget::email),
              (IntegrationExportContentTypes{Type::emailBacklink, {Type::emailBacklink, Type::backLink}}));
    EXPECT_EQ(
        exporter->contentTypes(IntegrationExportTarget::meetingNote),
        (IntegrationExportContentTypes{Type::mtSummaryBacklink, {Type::mtSummaryBacklink, Type::backLink}}));
}

TYPED_TEST(SchemeExporterTest, ConfigurationOffersTheTitleTheTypesAndNothingElse) {
    const auto offered = this->one.offered();
    typename SchemeExport<TypeParam>::Configuration expected;
    expected.saveAs = Type::emailBacklink;
    expected.userTitle = "Title";
    expected.supportedContentTypes = {Type::emailBacklink, Type::backLink};
    EXPECT_EQ(offered, expected);
}

TYPED_TEST(SchemeExporterTest, ConfigurationPrefersTheLastUsedTypeIfItIsStillSupported) {
    this->one.exporter()->setLastExportContentType(Type::backLink);
    EXPECT_EQ(this->one.offered().saveAs, Type::backLink);
    this->one.exporter()->setLastExportContentType(Type::mtSummaryBacklink);
    EXPECT_EQ(this->one.offered().saveAs, Type::emailBacklink);
}

TYPED_TEST(SchemeExporterTest, ExportStoresItsTypeForTheNextOne) {
    this->one.configuration.saveAs = Type::backLink;
    ASSERT_TRUE(this->one.run());
    EXPECT_EQ(this->one.offered().saveAs, Type::backLink);
}

TYPED_TEST(SchemeExporterTest, ATitleWithAnAmpersandSurvivesEscaped) {
    this->one.configuration.userTitle = "a&b";
    ASSERT_TRUE(this->one.run());
    const auto url = this->one.openedURL();
    // Agenda's note is a URL within the URL.
    const auto escaped = std::is_same_v<TypeParam, AgendaExporter> ? "a%2526b" : "a%26b";
    EXPECT_NE(url.find(escaped), std::string::npos) << url;
    EXPECT_EQ(url.find("a&b"), std::string::npos);
}

TYPED_TEST(SchemeExporterTest, OnlyTheContentTypeDecidesTheTextMaker) {
    // A mail's types are exported for a meeting note as well, and the other way round.
    this->one.data->target = IntegrationExportTarget::meetingNote;
    for (const auto type : {Type::emailBacklink, Type::backLink, Type::mtSummaryBacklink}) {
        this->one.configuration.saveAs = type;
        EXPECT_TRUE(this->one.run()) << nameOf(type);
    }
    this->one.data->target = IntegrationExportTarget::email;
    this->one.configuration.saveAs = Type::mtSummaryBacklink;
    ASSERT_TRUE(this->one.run());
    EXPECT_NE(this->one.openedURL().find("Summary"), std::string::npos);
}

TYPED_TEST(SchemeExporterTest, TextsAreAskedForWithTheRawBacklink) {
    for (const auto type : {Type::emailBacklink, Type::backLink, Type::mtSummaryBacklink}) {
        this->one.configuration.saveAs = type;
        ASSERT_TRUE(this->one.run());
    }
    for (const auto& asked : this->one.data->askedLinks()) {
        EXPECT_EQ(asked, IntegrationLinkType::backlink(IntegrationLinkFormat::raw));
    }
    EXPECT_FALSE(this->one.data->askedLinks().empty());
}

TYPED_TEST(SchemeExporterTest, ATypeThatIsNotSupportedEndsAtOnceWithUnsupportedFormat) {
    for (const auto type : {Type::pdf, Type::webLink, Type::externalLink, Type::plainText, Type::attachment,
                            Type::mtSummaryWeblink, Type::emailWeblink}) {
        this->one.configuration.saveAs = type;
        EXPECT_EQ(this->one.run().error(), IntegrationExportError::unsupportedFormat) << nameOf(type);
        EXPECT_EQ(this->one.progress->totalUnitCount(), 0);
    }
    EXPECT_TRUE(this->one.interactor->openedURLs().empty());
    EXPECT_EQ(this->one.interactor->exportEvents().size(), 7u);
}

TYPED_TEST(SchemeExporterTest, WhatIsNotUTF8GivesUrlEncodeError) {
    this->one.configuration.userTitle = "\xff";
    EXPECT_EQ(this->one.run().error(), IntegrationExportError::urlEncodeError);
    EXPECT_TRUE(this->one.interactor->openedURLs().empty());
}

TYPED_TEST(SchemeExporterTest, AMessageWithoutATextGivesCreateBodyError) {
    this->one.data->plainText = std::nullopt;
    EXPECT_EQ(this->one.run().error(), IntegrationExportError::createBodyError);
    this->one.data->linkText = std::nullopt;
    this->one.configuration.saveAs = Type::backLink;
    EXPECT_EQ(this->one.run().error(), IntegrationExportError::createBodyError);
    EXPECT_TRUE(this->one.interactor->openedURLs().empty());
}

TYPED_TEST(SchemeExporterTest, APlatformThatDoesNotOpenGivesXUrlCallbackError) {
    this->one.interactor->openURL = [](const URL&, Callback<bool> done) { done(false); };
    EXPECT_EQ(this->one.run().error(), IntegrationExportError::xUrlCallbackError);
    EXPECT_EQ(this->one.interactor->exportEvents().at(0).exportError, "xUrlCallbackError");
}

TYPED_TEST(SchemeExporterTest, AnExportCancelledBeforeThePlatformCallsBackIsCanceled) {
    this->one.interactor->openURL = [this](const URL&, Callback<bool> done) {
        this->one.cancel();
        done(true);
    };
    EXPECT_EQ(this->one.run().error(), IntegrationExportError::canceled);
}

TYPED_TEST(SchemeExporterTest, AnExportCancelledWhileItsTextIsMadeOpensNothing) {
    this->one.data->onAsked = [this](const std::string&) { this->one.cancel(); };
    EXPECT_EQ(this->one.run().error(), IntegrationExportError::canceled);
    EXPECT_TRUE(this->one.interactor->openedURLs().empty());
}

TYPED_TEST(SchemeExporterTest, ProgressAdvancesByThirds) {
    std::vector<float> fractions;
    this->one.onStarted = [&](ExportProgress& progress) {
        progress.setProgressHandler([&](float fraction) { fractions.push_back(fraction); });
    };
    ASSERT_TRUE(this->one.run());
    EXPECT_EQ(fractions, (std::vector<float>{1.0f / 3, 2.0f / 3, 1.0f}));
}

TYPED_TEST(SchemeExporterTest, ChangedFieldsAreToldToAnalytics) {
    this->one.configuration = this->one.offered();
    ASSERT_TRUE(this->one.run());
    EXPECT_EQ(this->one.interactor->exportEvents().at(0).modifiedFields, Texts{});
    this->one.configuration.userTitle = "Mine";
    ASSERT_TRUE(this->one.run());
    EXPECT_EQ(this->one.interactor->exportEvents().at(1).modifiedFields, Texts{"userTitle"});
}

TYPED_TEST(SchemeExporterTest, PreviewsComeFromTheTextMakersOfTheExport) {
    EXPECT_EQ(this->one.preview(Type::emailBacklink), IntegrationExportPreview::email("Body"));
    EXPECT_EQ(this->one.preview(Type::backLink), IntegrationExportPreview::backLink("mid:1@example.org"));
    EXPECT_EQ(this->one.preview(Type::mtSummaryBacklink), IntegrationExportPreview::email("Summary"));
    EXPECT_EQ(this->one.preview(Type::pdf), std::nullopt);
    this->one.data->plainText = std::nullopt;
    EXPECT_EQ(this->one.preview(Type::emailBacklink), std::nullopt);
}

TYPED_TEST(SchemeExporterTest, WithoutAUserTitleTheMailsTitleIsTaken) {
    this->one.configuration.userTitle = std::nullopt;
    this->one.data->titleText = "Subject";
    ASSERT_TRUE(this->one.run());
    EXPECT_NE(this->one.openedURL().find("Subject"), std::string::npos);
}

} // namespace zelto
