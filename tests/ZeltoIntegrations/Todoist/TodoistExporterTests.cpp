#include <Support/TodoistExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Type = IntegrationExportContentType;
using Visibility = IntegrationWebLinkVisibility;

class TodoistExporterTest : public testing::Test {
  protected:
    const std::vector<TodoistProject> projects{{"p1", "Inbox"}, {"p2", "Work"}};
    const TodoistUser user{.email = "me@example.org"};
    TodoistExport one;
    TodoistServer service;
};

} // namespace

TEST_F(TodoistExporterTest, ContentTypesAreThoseOfTheTarget) {
    EXPECT_EQ(
        one.exporter()->contentTypes(IntegrationExportTarget::email),
        (IntegrationExportContentTypes{
            Type::emailWeblink, {Type::emailBacklink, Type::emailWeblink, Type::backLink, Type::webLink}}));
    EXPECT_EQ(one.exporter()->contentTypes(IntegrationExportTarget::meetingNote),
              (IntegrationExportContentTypes{
                  Type::mtSummaryWeblink,
                  {Type::mtSummaryBacklink, Type::mtSummaryWeblink, Type::backLink, Type::webLink}}));
}

TEST_F(TodoistExporterTest, PreviewIsTheTextOrTheRawLink) {
    const auto link = IntegrationLinkFormat::markdown;
    one.exporter()->webLinks.storeFrom(
        TodoistExportConfiguration{.webLinkVisibility = Visibility::team, .teamId = 7});
    EXPECT_EQ(one.preview(Type::emailBacklink), IntegrationExportPreview::email("Body"));
    EXPECT_EQ(one.preview(Type::emailWeblink), IntegrationExportPreview::email("Body"));
    EXPECT_EQ(one.preview(Type::mtSummaryBacklink), IntegrationExportPreview::email("Summary"));
    EXPECT_EQ(one.preview(Type::mtSummaryWeblink), IntegrationExportPreview::email("Summary"));
    EXPECT_EQ(one.preview(Type::backLink), IntegrationExportPreview::backLink("[mail](zelto://m)"));
    EXPECT_EQ(one.preview(Type::webLink), IntegrationExportPreview::webLink("[mail](zelto://m)"));
    EXPECT_EQ(one.data->askedLinks(),
              (std::vector{IntegrationLinkType::altBacklink(link),
                           IntegrationLinkType::webLink(link, Visibility::team, 7),
                           IntegrationLinkType::altBacklink(link),
                           IntegrationLinkType::webLink(link, Visibility::team, 7),
                           IntegrationLinkType::backlink(IntegrationLinkFormat::raw),
                           IntegrationLinkType::webLink(IntegrationLinkFormat::raw, Visibility::team, 7)}));
    for (const auto type : {Type::pdf, Type::externalLink, Type::plainText, Type::attachment}) {
        EXPECT_EQ(one.preview(type), std::nullopt);
    }
    one.data->plainText = std::nullopt;
    EXPECT_EQ(one.preview(Type::emailWeblink), std::nullopt);
}

TEST_F(TodoistExporterTest, ConfigurationOffersTheFirstProject) {
    one.data->titleText = "Subject";
    TodoistExportConfiguration expected{
        .saveTo = std::nullopt,
        .saveAs = Type::emailWeblink,
        .dueDate = std::nullopt,
        .userTitle = "Subject",
        .webLinkVisibility = Visibility::onlyMe,
        .teamId = std::nullopt,
        .supportedContentTypes = {Type::emailBacklink, Type::emailWeblink, Type::backLink, Type::webLink}};
    EXPECT_EQ(one.offered(), expected);
    one.exporter()->myProjects.set(std::vector<TodoistProject>{});
    EXPECT_EQ(one.offered(), expected);
    one.exporter()->myProjects.set(projects);
    expected.saveTo = TodoistSaveToInfo{projects.front()};
    EXPECT_EQ(one.offered(), expected);

    one.data->target = IntegrationExportTarget::meetingNote;
    expected.saveAs = Type::mtSummaryWeblink;
    expected.supportedContentTypes = {Type::mtSummaryBacklink, Type::mtSummaryWeblink, Type::backLink,
                                      Type::webLink};
    EXPECT_EQ(one.offered(), expected);
}

TEST_F(TodoistExporterTest, ConfigurationOffersWhatWasChosenLast) {
    const TodoistSaveToInfo gone{{.id = "gone"}};
    one.exporter()->lastExportInfo.set(gone);
    one.exporter()->myProjects.set(projects);
    one.exporter()->setLastExportContentType(Type::backLink);
    one.exporter()->webLinks.storeFrom(
        TodoistExportConfiguration{.webLinkVisibility = Visibility::team, .teamId = 7});
    const auto offered = one.offered();
    EXPECT_EQ(offered.saveTo, gone);
    EXPECT_EQ(offered.saveAs, Type::backLink);
    EXPECT_EQ(offered.webLinkVisibility, Visibility::team);
    EXPECT_EQ(offered.teamId, 7U);
}

TEST_F(TodoistExporterTest, ATypeThatTheTargetDoesNotHaveIsNotOfferedAgain) {
    one.exporter()->setLastExportContentType(Type::emailBacklink);
    one.data->target = IntegrationExportTarget::meetingNote;
    EXPECT_EQ(one.offered().saveAs, Type::mtSummaryWeblink);
}

} // namespace zelto
