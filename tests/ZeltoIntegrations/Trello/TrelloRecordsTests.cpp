#include <ZeltoIntegrations/Trello/TrelloConstants.h>
#include <ZeltoIntegrations/Trello/TrelloExportConfiguration.h>
#include <ZeltoIntegrations/Trello/TrelloResponses.h>

#include <Platform/JSON/JSONCoding.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

template <class T> void expectJSON(const T& value, const std::string& text) {
    EXPECT_EQ(JSONEncoder().encode(value).value(), text);
    EXPECT_EQ(JSONDecoder().decode<T>(text).value(), value);
}

template <class T> T decoded(const std::string& text) {
    return JSONDecoder().decode<T>(text).value();
}

TrelloUser userOf(const std::string& response) {
    return toTrelloUser(decoded<GetUserResponse>(response));
}

const TrelloList list{.id = "l1", .idBoard = "b1", .name = "To Do"};
const auto listJSON = R"({"id":"l1","idBoard":"b1","name":"To Do","closed":false})";
const TrelloBoard board{.id = "b1", .name = "Work", .pinned = true, .lists = {list}};
const auto boardJSON =
    R"({"id":"b1","name":"Work","closed":false,"pinned":true,"lists":[)" + std::string(listJSON) + "]}";

} // namespace

TEST(TrelloRecords, KeysAreTheFieldNamesAndAbsentOnesAreLeftOut) {
    expectJSON(TrelloUser{.email = "e", .fullName = "f", .avatarUrl = "a", .isPremium = true},
               R"({"email":"e","fullName":"f","avatarUrl":"a","isPremium":true})");
    expectJSON(TrelloUser{.email = "e"}, R"({"email":"e","isPremium":false})");
    expectJSON(list, listJSON);
    expectJSON(TrelloList{.id = "l"}, R"({"id":"l","closed":false})");
    expectJSON(board, boardJSON);
    expectJSON(TrelloBoard{.id = "b"}, R"({"id":"b","closed":false,"pinned":false,"lists":[]})");
    expectJSON(TrelloFullData{.user = {.email = "e"}, .boards = {board}},
               R"({"user":{"email":"e","isPremium":false},"boards":[)" + boardJSON + "]}");
    expectJSON(TrelloSaveToInfo{.board = board, .list = list},
               R"({"board":)" + boardJSON + R"(,"list":)" + listJSON + "}");
}

TEST(TrelloRecords, ConfigurationHasItsFieldsInOrder) {
    expectJSON(
        TrelloExportConfiguration{.saveTo = TrelloSaveToInfo{.board = board, .list = list},
                                  .saveAs = IntegrationExportContentType::backLink,
                                  .userTitle = "t",
                                  .attachments = {{{7, "n", 3, IntegrationAttachmentState::selected}}},
                                  .supportedContentTypes = {IntegrationExportContentType::pdf,
                                                            IntegrationExportContentType::backLink}},
        R"({"saveTo":{"board":)" + boardJSON + R"(,"list":)" + listJSON +
            R"(},"saveAs":2,"userTitle":"t","attachments":{"list":[{"id":7,"name":"n","size":3,"state":2}]},)"
            R"("supportedContentTypes":[0,2]})");
    expectJSON(TrelloExportConfiguration{},
               R"({"saveAs":0,"attachments":{"list":[]},"supportedContentTypes":[]})");
}

TEST(TrelloRecords, DescriptionsAreForLogs) {
    EXPECT_EQ(list.description(), R"(< TrelloList - ID:"l1" N:"To Do" IDBoard:"b1" Closed:false >)");
    EXPECT_EQ(board.description(), R"(< TrelloBoard - ID:"b1" N:"Work" Closed:false Pinned:true Lists:[)" +
                                       list.description() + "] >");
    EXPECT_EQ((TrelloBoard{.id = "b", .closed = true}).description(),
              R"(< TrelloBoard - ID:"b" N:"" Closed:true Pinned:false Lists:[] >)");
}

TEST(TrelloRecords, RemovingClosedListsKeepsTheOrderOfTheOthers) {
    TrelloBoard mixed{
        .id = "b",
        .lists = {{.id = "3"}, {.id = "1", .closed = true}, {.id = "2"}, {.id = "0", .closed = true}}};
    mixed.removeClosedLists();
    EXPECT_EQ(mixed.lists, (std::vector<TrelloList>{{.id = "3"}, {.id = "2"}}));
}

TEST(TrelloResponses, AListWithoutAnIdIsNone) {
    const auto boards = toTrelloBoards(decoded<std::vector<TrelloBoardResponse>>(
        R"([{"id":"b1","name":"Work","closed":false,"pinned":true,"more":1,"lists":[)"
        R"({"name":"no id","closed":false},{"id":null,"closed":false},)" +
        std::string(listJSON) + "]}]"));
    EXPECT_EQ(boards, std::vector{board});
}

TEST(TrelloResponses, ABoardWithoutAnOpenListIsNotActive) {
    const std::vector<TrelloBoard> boards = {
        {.id = "2", .lists = {{.id = "x", .closed = true}, {.id = "y"}}},
        {.id = "closed", .closed = true, .lists = {{.id = "z"}}},
        {.id = "empty"},
        {.id = "all closed", .lists = {{.id = "w", .closed = true}}},
        {.id = "1", .lists = {{.id = "v"}}},
    };
    EXPECT_EQ(activeBoards(boards), (std::vector<TrelloBoard>{{.id = "2", .lists = {{.id = "y"}}},
                                                              {.id = "1", .lists = {{.id = "v"}}}}));
}

TEST(TrelloResponses, OnlyAResponseWithAllThreeFieldsIsThatOfAFreeAccount) {
    EXPECT_EQ(userOf(R"({"email":"e","fullName":"f","avatarUrl":"a","idPremOrgsAdmin":[],"products":[]})"),
              (TrelloUser{.email = "e", .fullName = "f", .avatarUrl = "a", .isPremium = false}));
    EXPECT_FALSE(userOf(R"({"email":"e","idEnterprise":null,"idPremOrgsAdmin":[],"products":[]})").isPremium);
    EXPECT_TRUE(userOf(R"({"email":"e","idPremOrgsAdmin":[]})").isPremium);
    EXPECT_TRUE(userOf(R"({"email":"e","products":[]})").isPremium);
    EXPECT_TRUE(userOf(R"({"email":"e","idPremOrgsAdmin":null,"products":null})").isPremium);
    EXPECT_TRUE(userOf(R"({"email":"e","idEnterprise":"x","idPremOrgsAdmin":[],"products":[]})").isPremium);
    EXPECT_TRUE(userOf(R"({"email":"e","idPremOrgsAdmin":["o"],"products":[]})").isPremium);
    EXPECT_TRUE(userOf(R"({"email":"e","idPremOrgsAdmin":[],"products":[37]})").isPremium);
}

TEST(TrelloResponses, WhatIsRequiredMustBeThere) {
    EXPECT_FALSE(JSONDecoder().decode<GetUserResponse>(R"({"fullName":"f"})"));
    EXPECT_FALSE(JSONDecoder().decode<AddCardResponse>("{}"));
    EXPECT_FALSE(JSONDecoder().decode<AttachmentResponse>("{}"));
    EXPECT_FALSE(JSONDecoder().decode<TrelloListResponse>(R"({"id":"l"})"));
    EXPECT_FALSE(JSONDecoder().decode<TrelloBoardResponse>(R"({"id":"b","closed":false,"lists":[]})"));
}

TEST(TrelloConstants, LimitsAreThoseOfTheService) {
    EXPECT_EQ(TrelloConstants::symbolsLimit, 16'000U);
    EXPECT_EQ(TrelloConstants::attachmentsCountLimit, 100);
    EXPECT_EQ(TrelloConstants::attachmentSizeLimitForFreeAccount, 10'485'760);
    EXPECT_EQ(TrelloConstants::attachmentSizeLimitForPremiumAccount, 262'144'000);
}

TEST(TrelloExportConfiguration, DifferencesAreNamed) {
    using Names = std::vector<std::string>;
    const TrelloExportConfiguration offered{
        .saveTo = TrelloSaveToInfo{.board = board, .list = list},
        .userTitle = "t",
        .attachments = {{{1, "a", 1, IntegrationAttachmentState::allowed},
                         {2, "b", 1, IntegrationAttachmentState::restricted}}}};
    EXPECT_EQ(offered.diff(offered, false), Names{});
    EXPECT_EQ(offered.diff(offered, true), Names{"attachments"});

    auto user = offered;
    user.attachments.list.front().state = IntegrationAttachmentState::selected;
    EXPECT_EQ(offered.diff(user, true), Names{});
    EXPECT_EQ(offered.diff(user, false), Names{"attachments"});

    user.saveAs = IntegrationExportContentType::backLink;
    user.userTitle = "u";
    user.saveTo->list.id = "l2";
    EXPECT_EQ(offered.diff(user, true), (Names{"saveAs", "userTitle", "list"}));
    user.saveTo->board.id = "b2";
    EXPECT_EQ(offered.diff(user, true), (Names{"saveAs", "userTitle", "board", "list"}));
    user.saveTo = std::nullopt;
    EXPECT_EQ(offered.diff(user, true), (Names{"saveAs", "userTitle", "board", "list"}));
}

} // namespace zelto
