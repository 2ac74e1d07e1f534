#include <Support/TrelloExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Type = IntegrationExportContentType;

class TrelloExporterTest : public testing::Test {
  protected:
    static constexpr auto ofUser = "/1/members/me?";
    static constexpr auto ofBoards = "/1/members/me/boards?";
    const TrelloBoard board{.id = "b1",
                            .name = "Work",
                            .pinned = true,
                            .lists = {{.id = "l1", .idBoard = "b1", .name = "To Do"}}};
    const TrelloUser user{.email = "me@example.org", .fullName = "Me"};
    TrelloExport one;
    TrelloServer service;
};

} // namespace

TEST_F(TrelloExporterTest, ContentTypesAreThePdfAndTheLinkForEveryTarget) {
    const IntegrationExportContentTypes expected{Type::pdf, {Type::pdf, Type::backLink}};
    EXPECT_EQ(one.exporter()->contentTypes(IntegrationExportTarget::email), expected);
    EXPECT_EQ(one.exporter()->contentTypes(IntegrationExportTarget::meetingNote), expected);
}

TEST_F(TrelloExporterTest, PreviewIsTheNameOfThePdfOrTheRawLink) {
    one.data->titleText = "Über/Plan";
    EXPECT_EQ(one.preview(Type::pdf), IntegrationExportPreview::pdf("Uber_Plan.pdf"));
    EXPECT_EQ(one.preview(Type::backLink), IntegrationExportPreview::backLink("[mail](zelto://m)"));
    EXPECT_EQ(one.data->askedLinks(), std::vector{IntegrationLinkType::backlink(IntegrationLinkFormat::raw)});
    one.data->linkText = std::nullopt;
    EXPECT_EQ(one.preview(Type::backLink), std::nullopt);
    for (const auto& type : casesOf<Type>()) {
        if (type.value != Type::pdf && type.value != Type::backLink) {
            EXPECT_EQ(one.preview(type.value), std::nullopt) << type.name;
        }
    }
}

TEST_F(TrelloExporterTest, ABoardWhoseListsAreAllClosedIsNotLoaded) {
    service.boards = R"([{"id":"b0","closed":false,"pinned":false,"lists":[{"id":"l","closed":true}]}])";
    EXPECT_EQ(one.load(true).value(), (std::optional(TrelloFullData{.user = user, .boards = {}})));
}

TEST_F(TrelloExporterTest, BoardsAreLoadedAlsoWhenTheUserIsNot) {
    service.respondTo(ofUser, PlayedResponse::json("{}", 500));
    EXPECT_EQ(one.load(true).error(), IntegrationLoadError::internalError);
    EXPECT_EQ(service.lines().size(), 2U);
    EXPECT_EQ(one.exporter()->allBoards(), std::vector{board});
    EXPECT_EQ(one.exporter()->user(), std::nullopt);
    // Half of it is nothing.
    EXPECT_EQ(one.load(false).value(), std::optional<TrelloFullData>());
}

TEST_F(TrelloExporterTest, TheErrorOfTheBoardsReplacesThatOfTheUser) {
    service.onRequest = [](const ReceivedRequest& request) {
        return request.target.starts_with(ofUser) ? PlayedResponse::json("{}", 500)
                                                  : PlayedResponse::json("{}", 401);
    };
    EXPECT_EQ(one.load(true).error(), IntegrationLoadError::oauthError);
    service.respondTo(ofBoards, PlayedResponse::reset());
    EXPECT_EQ(one.load(true).error(), IntegrationLoadError::connectionError);
    EXPECT_EQ(one.exporter()->user(), user);
}

TEST_F(TrelloExporterTest, ConfigurationOffersTheFirstListOfTheFirstBoard) {
    one.data->titleText = "Subject";
    TrelloExportConfiguration expected{.saveTo = std::nullopt,
                                       .saveAs = Type::pdf,
                                       .userTitle = "Subject",
                                       .attachments = {},
                                       .supportedContentTypes = {Type::pdf, Type::backLink}};
    EXPECT_EQ(one.offered(), expected);
    one.exporter()->allBoards.set(std::vector<TrelloBoard>{});
    EXPECT_EQ(one.offered(), expected);
    one.exporter()->allBoards.set(std::vector{TrelloBoard{.id = "no lists"}, board});
    EXPECT_EQ(one.offered(), expected);
    one.exporter()->allBoards.set(std::vector{board, TrelloBoard{.id = "other"}});
    expected.saveTo = TrelloSaveToInfo{.board = board, .list = board.lists.front()};
    EXPECT_EQ(one.offered(), expected);
}

TEST_F(TrelloExporterTest, ConfigurationOffersTheLastTypeAsItStands) {
    one.exporter()->setLastExportContentType(Type::backLink);
    EXPECT_EQ(one.offered().saveAs, Type::backLink);
    one.exporter()->setLastExportContentType(Type::webLink);
    EXPECT_EQ(one.offered().saveAs, Type::webLink);
}

} // namespace zelto
