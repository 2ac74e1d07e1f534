#include <ZeltoIntegrations/IntegrationsManager.h>

#include <Support/OneNoteExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using Target = IntegrationExportTarget;

class OneNoteExporterTest : public testing::Test {
  protected:
    std::optional<OneNoteSaveToInfo> offeredOf(const std::vector<OneNoteNotebook>& notebooks) {
        one.exporter()->myNotebooks.set(notebooks);
        return one.offered().saveTo;
    }

    const OneNoteNotebook notebook = oneNoteNotebook();
    OneNoteExport one;
    OneNoteServer service;
};

} // namespace

TEST_F(OneNoteExporterTest, ContentTypesAreThoseOfTheTarget) {
    EXPECT_EQ(one.exporter()->contentTypes(Target::email),
              (IntegrationExportContentTypes{Type::emailBacklink,
                                             {Type::pdf, Type::emailBacklink, Type::externalLink}}));
    EXPECT_EQ(one.exporter()->contentTypes(Target::meetingNote),
              (IntegrationExportContentTypes{Type::mtSummaryBacklink,
                                             {Type::pdf, Type::mtSummaryBacklink, Type::externalLink}}));
}

TEST_F(OneNoteExporterTest, ATypeThatIsNotSupportedIsNotOfferedEvenIfItIsTheDefault) {
    one.exporter()->notSupported = {Type::emailBacklink, Type::externalLink, Type::plainText};
    EXPECT_EQ(one.exporter()->contentTypes(Target::email),
              (IntegrationExportContentTypes{Type::emailBacklink, {Type::pdf}}));
    EXPECT_EQ(one.offered().supportedContentTypes, std::vector{Type::pdf});
    one.exporter()->setLastExportContentType(Type::externalLink);
    EXPECT_EQ(one.offered().saveAs, Type::emailBacklink);
}

TEST_F(OneNoteExporterTest, PreviewsAreTheNameOfThePdfAndTheTextOfTheMessage) {
    one.data->titleText = "Über/Plan";
    EXPECT_EQ(one.preview(Type::pdf), IntegrationExportPreview::pdf("Uber_Plan.pdf"));
    EXPECT_EQ(one.preview(Type::externalLink), IntegrationExportPreview::externalLink());
    EXPECT_EQ(one.preview(Type::emailBacklink), IntegrationExportPreview::email("Body"));
    EXPECT_EQ(one.preview(Type::mtSummaryBacklink), IntegrationExportPreview::email("Summary"));
    EXPECT_EQ(one.preview(Type::webLink), std::nullopt);
    EXPECT_TRUE(one.data->askedLinks().empty());
    one.data->plainText = std::nullopt;
    EXPECT_EQ(one.preview(Type::emailBacklink), std::nullopt);
}

TEST_F(OneNoteExporterTest, ConfigurationOffersTheFirstSectionOfTheFirstNotebook) {
    one.data->titleText = "Subject";
    OneNoteExportConfiguration expected{
        .saveTo = std::nullopt,
        .saveAs = Type::emailBacklink,
        .userNote = std::nullopt,
        .userTitle = "Subject",
        .attachments = {},
        .externalLink = std::nullopt,
        .supportedContentTypes = {Type::pdf, Type::emailBacklink, Type::externalLink}};
    EXPECT_EQ(one.offered(), expected);
    one.exporter()->myNotebooks.set(std::vector{notebook, OneNoteNotebook{.id = "other"}});
    expected.saveTo = OneNoteSaveToInfo{.notebook = notebook, .section = notebook.sections.front()};
    EXPECT_EQ(one.offered(), expected);
    one.data->target = Target::meetingNote;
    EXPECT_EQ(one.offered().saveAs, Type::mtSummaryBacklink);
}

TEST_F(OneNoteExporterTest, AFirstNotebookWithoutSectionsIsNoTarget) {
    EXPECT_EQ(offeredOf({}), std::nullopt);
    EXPECT_EQ(offeredOf({{.id = "empty"}, notebook}), std::nullopt);
    EXPECT_TRUE(offeredOf({notebook, {.id = "empty"}}));
}

TEST_F(OneNoteExporterTest, ConfigurationOffersTheLastTypeIfTheTargetHasIt) {
    one.exporter()->setLastExportContentType(Type::externalLink);
    EXPECT_EQ(one.offered().saveAs, Type::externalLink);
    one.exporter()->setLastExportContentType(Type::mtSummaryBacklink);
    EXPECT_EQ(one.offered().saveAs, Type::emailBacklink);
}

TEST_F(OneNoteExporterTest, NoteTitleAndExternalLinkAreNotOfferedAgain) {
    one.configuration.userNote = "note";
    one.configuration.userTitle = "Other";
    one.configuration.externalLink = "https://example.org/";
    ASSERT_TRUE(one.run());
    EXPECT_EQ(one.offered().userNote, std::nullopt);
    EXPECT_EQ(one.offered().userTitle, "Title");
    EXPECT_EQ(one.offered().externalLink, std::nullopt);
}

TEST_F(OneNoteExporterTest, ANotebookWithoutASectionIsNotLoaded) {
    service.notebooks =
        R"({"value":[{"id":"empty","displayName":"Empty"},{"id":"n1","displayName":"Work"}]})";
    EXPECT_EQ(one.load(true).value().value().notebooks, std::vector{notebook});
}

TEST_F(OneNoteExporterTest, AUserWhoseNameToSignInWithIsNoEmailHasNone) {
    service.user = R"({"id":"u1","mail":null,"userPrincipalName":"someone"})";
    ASSERT_TRUE(one.fetch());
    EXPECT_EQ(one.exporter()->myUser(), OneNoteUser{.id = "u1"});
    EXPECT_EQ(one.exporter()->loadUserEmail(), std::nullopt);
    service.user = R"({"id":"u1","mail":null,"userPrincipalName":"someone@example.org"})";
    ASSERT_TRUE(one.fetch());
    EXPECT_EQ(one.exporter()->loadUserEmail(), "someone@example.org");
}

TEST_F(OneNoteExporterTest, TheValidatorIsThatOfTheManager) {
    service.user = R"({"id":"u1","userPrincipalName":"name"})";
    IntegrationsManager manager(
        one.storage, one.interactor, [](const auto& text) { return text == "name"; }, "");
    const auto exporter = manager.createServiceExporter<OneNoteExporter>(one.account, one.data);
    Completed<Result<void, IntegrationLoadError>> completed;
    exporter->fetchServiceData(completed.callback<Completion<void, IntegrationLoadError>>());
    ASSERT_TRUE(completed.value());
    EXPECT_EQ(exporter->loadUserEmail(), "name");
}

} // namespace zelto
