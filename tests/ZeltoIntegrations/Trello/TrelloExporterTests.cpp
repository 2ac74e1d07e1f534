#include <ZeltoIntegrations/IntegrationsManager.h>

#include <Support/HostMistakes.h>
#include <Support/TrelloExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Type = IntegrationExportContentType;
using State = IntegrationAttachmentState;

class TrelloExporterTest : public testing::Test {
  protected:
    // The state of attachments of these sizes in an offered configuration.
    std::vector<State> statesOf(const std::vector<std::int64_t>& sizes) {
        one.data->attachments.list.clear();
        for (const auto size : sizes) {
            one.data->attachments.list.push_back(
                {static_cast<std::int64_t>(one.data->attachments.list.size()), "a", size, State::selected});
        }
        std::vector<State> states;
        for (const auto& attachment : one.offered().attachments.list) {
            states.push_back(attachment.state);
        }
        return states;
    }

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

TEST_F(TrelloExporterTest, DataComeFromTheServiceWhenForcedAndFromTheCacheElse) {
    EXPECT_EQ(one.load(false).value(), std::optional<TrelloFullData>());
    EXPECT_EQ(service.lines(), Texts{});

    const TrelloFullData all{.user = user, .boards = {board}};
    EXPECT_EQ(one.load(true).value(), std::optional(all));
    ASSERT_EQ(service.lines().size(), 2U);
    EXPECT_TRUE(service.lines()[0].starts_with("GET /1/members/me?"));
    EXPECT_TRUE(service.lines()[1].starts_with("GET /1/members/me/boards?"));

    EXPECT_EQ(one.load(false).value(), std::optional(all));
    EXPECT_EQ(service.lines().size(), 2U);
    // It is the account that keeps them.
    const auto stored = one.storage->load(one.account.identifier()).value();
    EXPECT_EQ(stored.getCachedItem<TrelloUser>("user"), user);
    EXPECT_EQ(stored.getCachedItem<std::vector<TrelloBoard>>("allBoards"), std::vector{board});
}

TEST_F(TrelloExporterTest, ABoardWhoseListsAreAllClosedIsNotLoaded) {
    service.boards = R"([{"id":"b0","closed":false,"pinned":false,"lists":[{"id":"l","closed":true}]}])";
    EXPECT_EQ(one.load(true).value(), (std::optional(TrelloFullData{.user = user, .boards = {}})));
}

TEST_F(TrelloExporterTest, DataWithoutCredentialsAreAnOauthError) {
    one.account.credentials = std::nullopt;
    EXPECT_EQ(one.load(true).error(), IntegrationLoadError::oauthError);
    EXPECT_EQ(service.lines(), Texts{});
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

TEST_F(TrelloExporterTest, EachStatusIsALoadErrorOfItsKind) {
    using enum IntegrationLoadError;
    const std::pair<int, IntegrationLoadError> rows[] = {
        {400, internalError}, {401, oauthError},    {403, internalError}, {404, internalError},
        {429, internalError}, {500, internalError}, {503, internalError}};
    for (const auto& [status, error] : rows) {
        for (const auto* what : {ofUser, ofBoards}) {
            service.respondTo(what, PlayedResponse::json("invalid", status));
            EXPECT_EQ(one.load(true).error(), error) << status << " " << what;
        }
    }
}

TEST_F(TrelloExporterTest, AStorageThatThrowsIsAnInternalErrorAndTheNextLoadingRuns) {
    const ContainedExceptions contained;
    const DroppedCallbacks dropped;
    one.storage->onChange = [] { throw std::runtime_error("the storage threw"); };
    EXPECT_EQ(one.load(true).error(), IntegrationLoadError::internalError);
    one.storage->onChange = [] {};
    EXPECT_TRUE(one.load(true));
}

TEST_F(TrelloExporterTest, ServiceDataAreFetchedByForce) {
    EXPECT_EQ(one.exporter()->loadUserEmail(), std::nullopt);
    EXPECT_TRUE(one.fetch());
    EXPECT_EQ(one.exporter()->loadUserEmail(), "me@example.org");
    service.respondTo(ofUser, PlayedResponse::json("{}", 401));
    EXPECT_EQ(one.fetch().error(), IntegrationLoadError::oauthError);
}

TEST_F(TrelloExporterTest, ConnectingAnAccountNamesItByTheUsersEmailAndKeepsItsBoards) {
    IntegrationsManager manager(
        one.storage, one.interactor, [](const auto&) { return true; }, "");
    ServiceAccountConfiguration fresh(ServiceType::Trello, std::nullopt, true);
    fresh.credentials = ServiceAccountCredentials::forIdentifier("new");
    fresh.credentials->accessToken = "token";
    using Connected = Result<ServiceAccountConfiguration, IntegrationAccountCreationError>;
    Completed<Connected> completed;
    manager.trySaveServiceConfiguration(fresh, completed.callback<IntegrationsManager::AccountCompletion>());
    const auto connected = completed.value();
    ASSERT_TRUE(connected);
    EXPECT_EQ(connected->identifier(), "Trello+me@example.org");
    EXPECT_EQ(connected->getCachedItem<std::vector<TrelloBoard>>("allBoards"), std::vector{board});
    EXPECT_TRUE(one.storage->load("Trello+me@example.org"));
    EXPECT_NE(manager.createServiceExporter<TrelloExporter>(*connected, one.data), nullptr);
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

TEST_F(TrelloExporterTest, ConfigurationOffersTheLastTargetThoughItsBoardHasGone) {
    const TrelloSaveToInfo gone{.board = {.id = "gone"}, .list = {.id = "too"}};
    one.exporter()->lastExportInfo.set(gone);
    one.exporter()->allBoards.set(std::vector{board});
    EXPECT_EQ(one.offered().saveTo, gone);
}

TEST_F(TrelloExporterTest, ConfigurationOffersTheLastTypeAsItStands) {
    one.exporter()->setLastExportContentType(Type::backLink);
    EXPECT_EQ(one.offered().saveAs, Type::backLink);
    one.exporter()->setLastExportContentType(Type::webLink);
    EXPECT_EQ(one.offered().saveAs, Type::webLink);
}

TEST_F(TrelloExporterTest, AttachmentsArePassedBelowTheLimitOfTheAccount) {
    constexpr std::int64_t freeLimit = 10'485'760;
    constexpr std::int64_t premiumLimit = 262'144'000;
    const std::vector<State> forFree = {State::allowed, State::restricted, State::restricted};
    EXPECT_EQ(statesOf({freeLimit - 1, freeLimit, premiumLimit - 1}), forFree);
    one.exporter()->user.set(user);
    EXPECT_EQ(statesOf({freeLimit - 1, freeLimit, premiumLimit - 1}), forFree);
    one.exporter()->user.set(TrelloUser{.email = "e", .isPremium = true});
    EXPECT_EQ(statesOf({premiumLimit - 1, premiumLimit}), (std::vector{State::allowed, State::restricted}));
}

TEST_F(TrelloExporterTest, AHundredAttachmentsPassAndNoTotalIsTooMuch) {
    one.exporter()->user.set(TrelloUser{.email = "e", .isPremium = true});
    std::vector<State> expected(100, State::allowed);
    expected.push_back(State::restricted);
    EXPECT_EQ(statesOf(std::vector<std::int64_t>(101, 200'000'000)), expected);
}

} // namespace zelto
