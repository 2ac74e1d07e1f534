#include <ZeltoIntegrations/IntegrationsManager.h>

#include <Support/HostMistakes.h>
#include <Support/TodoistExport.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Type = IntegrationExportContentType;
using State = IntegrationAttachmentState;
using Visibility = IntegrationWebLinkVisibility;

class TodoistExporterTest : public testing::Test {
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

TEST_F(TodoistExporterTest, DataComeFromTheServiceWhenForcedAndFromTheCacheElse) {
    EXPECT_EQ(one.load(false).value(), std::optional<TodoistFullData>());
    EXPECT_EQ(service.lines(), Texts{});

    const TodoistFullData all{.user = user, .projects = projects};
    EXPECT_EQ(one.load(true).value(), std::optional(all));
    EXPECT_EQ(service.lines(), Texts{"POST /api/v1/sync"});

    EXPECT_EQ(one.load(false).value(), std::optional(all));
    EXPECT_EQ(service.lines().size(), 1U);
    // It is the account that keeps them.
    const auto stored = one.storage->load(one.account.identifier()).value();
    EXPECT_EQ(stored.getCachedItem<TodoistUser>("myUser"), user);
    EXPECT_EQ(stored.getCachedItem<std::vector<TodoistProject>>("myProjects"), projects);
}

TEST_F(TodoistExporterTest, DataWithoutCredentialsAreAnOauthError) {
    one.account.credentials = std::nullopt;
    EXPECT_EQ(one.load(true).error(), IntegrationLoadError::oauthError);
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(TodoistExporterTest, EachFailureIsALoadErrorOfItsKindAndLeavesWhatWasLoaded) {
    using enum IntegrationLoadError;
    ASSERT_TRUE(one.load(true));
    const std::pair<PlayedResponse, IntegrationLoadError> rows[] = {
        {PlayedResponse::json("no", 400), internalError}, {PlayedResponse::json("no", 401), oauthError},
        {PlayedResponse::json("no", 403), internalError}, {PlayedResponse::json("no", 404), internalError},
        {PlayedResponse::json("no", 429), internalError}, {PlayedResponse::json("no", 500), internalError},
        {PlayedResponse::json("{}"), internalError},      {PlayedResponse::json("<html>"), internalError},
        {PlayedResponse::reset(), connectionError}};
    for (const auto& [response, error] : rows) {
        service.respondTo("/sync", response);
        EXPECT_EQ(one.load(true).error(), error) << response.status << response.body;
        EXPECT_EQ(one.load(false).value(),
                  (std::optional(TodoistFullData{.user = user, .projects = projects})));
    }
}

TEST_F(TodoistExporterTest, AStorageThatThrowsIsAnInternalErrorAndTheNextLoadingRuns) {
    const ContainedExceptions contained;
    const DroppedCallbacks dropped;
    one.storage->onChange = [] { throw std::runtime_error("the storage threw"); };
    EXPECT_EQ(one.load(true).error(), IntegrationLoadError::internalError);
    one.storage->onChange = [] {};
    EXPECT_TRUE(one.load(true));
}

TEST_F(TodoistExporterTest, ServiceDataAreFetchedByForce) {
    EXPECT_EQ(one.exporter()->loadUserEmail(), std::nullopt);
    EXPECT_TRUE(one.fetch());
    EXPECT_EQ(one.exporter()->loadUserEmail(), "me@example.org");
    service.refuse("/sync", 401);
    EXPECT_EQ(one.fetch().error(), IntegrationLoadError::oauthError);
}

TEST_F(TodoistExporterTest, ConnectingAnAccountNamesItByTheUsersEmailAndKeepsItsProjects) {
    IntegrationsManager manager(
        one.storage, one.interactor, [](const auto&) { return true; }, "");
    ServiceAccountConfiguration fresh(ServiceType::TodoIst, std::nullopt, true);
    fresh.credentials = ServiceAccountCredentials::forIdentifier("new");
    fresh.credentials->accessToken = "token";
    using Connected = Result<ServiceAccountConfiguration, IntegrationAccountCreationError>;
    Completed<Connected> completed;
    manager.trySaveServiceConfiguration(fresh, completed.callback<IntegrationsManager::AccountCompletion>());
    const auto connected = completed.value();
    ASSERT_TRUE(connected);
    EXPECT_EQ(connected->identifier(), "Todoist+me@example.org");
    EXPECT_EQ(connected->getCachedItem<std::vector<TodoistProject>>("myProjects"), projects);
    EXPECT_NE(manager.createServiceExporter<TodoistExporter>(*connected, one.data), nullptr);
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

TEST_F(TodoistExporterTest, AttachmentsArePassedBelowTheLimitOfTheAccount) {
    constexpr std::int64_t freeLimit = 5'242'880;
    constexpr std::int64_t premiumLimit = 104'857'600;
    const auto sizes = {freeLimit - 1, freeLimit, freeLimit + 1, premiumLimit - 1};
    const std::vector<State> forFree = {State::allowed, State::restricted, State::restricted,
                                        State::restricted};
    EXPECT_EQ(statesOf(sizes), forFree);
    one.exporter()->myUser.set(user);
    EXPECT_EQ(statesOf(sizes), forFree);
    one.exporter()->myUser.set(TodoistUser{.email = "e", .isPremium = true});
    EXPECT_EQ(statesOf({premiumLimit - 1, premiumLimit, premiumLimit + 1}),
              (std::vector{State::allowed, State::restricted, State::restricted}));
}

TEST_F(TodoistExporterTest, NoNumberAndNoTotalOfAttachmentsIsTooMuch) {
    EXPECT_EQ(statesOf(std::vector<std::int64_t>(300, 5'000'000)), std::vector<State>(300, State::allowed));
}

} // namespace zelto
