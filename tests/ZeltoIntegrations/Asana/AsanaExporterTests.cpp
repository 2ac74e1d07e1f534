#include <ZeltoIntegrations/IntegrationsManager.h>

#include <Support/AsanaExport.h>
#include <Support/FailingResponses.h>
#include <Support/HostMistakes.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Type = IntegrationExportContentType;
using State = IntegrationAttachmentState;
using LoadError = IntegrationLoadError;

LoadError loadErrorFor(const FailingResponse& failing) {
    if (failing.error == "oauthError") {
        return LoadError::oauthError;
    }
    return failing.error == "connectionError" ? LoadError::connectionError : LoadError::internalError;
}

class AsanaExporterTest : public testing::Test {
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

    std::optional<AsanaSaveToInfo> offeredOf(const std::vector<AsanaWorkspace>& workspaces) {
        one.exporter()->myWorkspaces.set(workspaces);
        return one.offered().saveTo;
    }

    // The requests behind so many; one that the transport sends anew on another connection counts once.
    Texts linesBehind(std::size_t count) const {
        auto lines = service.lines();
        lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(count));
        const auto repeated = std::ranges::unique(lines);
        lines.erase(repeated.begin(), repeated.end());
        return lines;
    }

    void expectNothingStored() {
        EXPECT_EQ(one.exporter()->myUser(), std::nullopt);
        EXPECT_EQ(one.exporter()->myWorkspaces(), std::nullopt);
        EXPECT_EQ(one.exporter()->loadUserEmail(), std::nullopt);
        EXPECT_EQ(one.load(false).value(), std::optional<AsanaFullData>());
    }

    const AsanaUser user{.id = "u1", .name = "Me", .email = "me@example.org"};
    const AsanaWorkspace workspace = asanaWorkspace();
    AsanaExport one;
    AsanaServer service;
};

} // namespace

TEST_F(AsanaExporterTest, ContentTypeIsThePdfForEveryTarget) {
    const IntegrationExportContentTypes expected{Type::pdf, {Type::pdf}};
    EXPECT_EQ(one.exporter()->contentTypes(IntegrationExportTarget::email), expected);
    EXPECT_EQ(one.exporter()->contentTypes(IntegrationExportTarget::meetingNote), expected);
}

TEST_F(AsanaExporterTest, PreviewIsTheNameOfThePdf) {
    one.data->titleText = "Über/Plan";
    EXPECT_EQ(one.preview(Type::pdf), IntegrationExportPreview::pdf("Uber_Plan.pdf"));
    for (const auto& type : casesOf<Type>()) {
        if (type.value != Type::pdf) {
            EXPECT_EQ(one.preview(type.value), std::nullopt) << type.name;
        }
    }
}

TEST_F(AsanaExporterTest, DataComeFromTheServiceWhenForcedAndFromTheCacheElse) {
    EXPECT_EQ(one.load(false).value(), std::optional<AsanaFullData>());
    EXPECT_EQ(service.lines(), Texts{});

    const AsanaFullData all{.user = user, .workspaces = {workspace}};
    EXPECT_EQ(one.load(true).value(), std::optional(all));
    EXPECT_EQ(service.lines(),
              (Texts{"GET /api/1.0/users/me", "GET /api/1.0/workspaces", "GET /api/1.0/workspaces/w1/users",
                     "GET /api/1.0/workspaces/w1/projects?opt_fields=id,name,archived,public&limit=100"}));

    EXPECT_EQ(one.load(false).value(), std::optional(all));
    EXPECT_EQ(service.lines().size(), 4U);
    // It is the account that keeps them.
    const auto stored = one.storage->load(one.account.identifier()).value();
    EXPECT_EQ(stored.getCachedItem<AsanaUser>("myUser"), user);
    EXPECT_EQ(stored.getCachedItem<std::vector<AsanaWorkspace>>("myWorkspaces"), std::vector{workspace});
}

TEST_F(AsanaExporterTest, HalfOfTheDataInTheCacheAreNone) {
    one.exporter()->myUser.set(user);
    EXPECT_EQ(one.load(false).value(), std::optional<AsanaFullData>());
    one.exporter()->myUser.set(std::nullopt);
    one.exporter()->myWorkspaces.set(std::vector{workspace});
    EXPECT_EQ(one.load(false).value(), std::optional<AsanaFullData>());
}

TEST_F(AsanaExporterTest, DataWithoutCredentialsAreAnOauthError) {
    one.account.credentials = std::nullopt;
    EXPECT_EQ(one.load(true).error(), LoadError::oauthError);
    EXPECT_EQ(one.load(false).value(), std::optional<AsanaFullData>());
    EXPECT_EQ(service.lines(), Texts{});
}

TEST_F(AsanaExporterTest, EachRequestThatFailsEndsTheLoadingAndNothingIsStored) {
    service.workspaces = R"({"data":[{"gid":"w1","name":"Work"},{"gid":"w2"}]})";
    service.projects = R"({"data":[],"next_page":{"offset":"o"}})";
    const Texts lines = {
        "GET /api/1.0/users/me", "GET /api/1.0/workspaces", "GET /api/1.0/workspaces/w1/users",
        "GET /api/1.0/workspaces/w1/projects?opt_fields=id,name,archived,public&limit=100",
        "GET /api/1.0/workspaces/w1/projects?opt_fields=id,name,archived,public&limit=100&offset=o"};
    for (const auto responses : {failingResponses(), unreadableResponses()}) {
        for (const auto& failing : responses) {
            for (auto last = lines.begin(); last != lines.end(); ++last) {
                SCOPED_TRACE(*last + " " + failing.name);
                service.onRequest = [line = *last,
                                     response = failing.response](const ReceivedRequest& request) {
                    const bool isMeant = request.method + " " + request.target == line;
                    return isMeant ? std::optional(response) : std::nullopt;
                };
                const auto before = service.lines().size();
                EXPECT_EQ(one.load(true).error(), loadErrorFor(failing));
                EXPECT_EQ(linesBehind(before), Texts(lines.begin(), last + 1));
                EXPECT_EQ(one.fetch().error(), loadErrorFor(failing));
                expectNothingStored();
            }
        }
    }
}

TEST_F(AsanaExporterTest, AFailedLoadingLeavesWhatWasLoadedBefore) {
    ASSERT_TRUE(one.load(true));
    service.user = R"({"data":{"gid":"other"}})";
    service.refuse("/projects?", 500);
    EXPECT_EQ(one.load(true).error(), LoadError::internalError);
    EXPECT_EQ(one.load(false).value(), std::optional(AsanaFullData{.user = user, .workspaces = {workspace}}));
}

TEST_F(AsanaExporterTest, AStaleTokenIsRefreshedOnceAndStored) {
    one.expireToken();
    ASSERT_TRUE(one.load(true));
    ASSERT_TRUE(one.load(true));
    const auto lines = service.lines();
    ASSERT_EQ(lines.size(), 9U);
    EXPECT_EQ(lines.front(), "POST /-/oauth_token");
    EXPECT_EQ(std::ranges::count(lines, "POST /-/oauth_token"), 1);
    auto stored = *one.account.credentials;
    ServiceCredentialsManager::load(stored);
    EXPECT_EQ(stored.accessToken, "fresh");
    EXPECT_EQ(stored.refreshToken, "refresh-1");
}

TEST_F(AsanaExporterTest, AStorageThatThrowsIsAnInternalErrorAndTheNextLoadingRuns) {
    const ContainedExceptions contained;
    const DroppedCallbacks dropped;
    one.storage->onChange = [] { throw std::runtime_error("the storage threw"); };
    EXPECT_EQ(one.load(true).error(), LoadError::internalError);
    one.storage->onChange = [] {};
    EXPECT_TRUE(one.load(true));
}

TEST_F(AsanaExporterTest, ServiceDataAreFetchedByForce) {
    EXPECT_EQ(one.exporter()->loadUserEmail(), std::nullopt);
    EXPECT_TRUE(one.fetch());
    EXPECT_EQ(one.exporter()->loadUserEmail(), "me@example.org");
    service.user = R"({"data":{"gid":"u1"}})";
    EXPECT_TRUE(one.fetch());
    EXPECT_EQ(one.exporter()->loadUserEmail(), std::nullopt);
}

TEST_F(AsanaExporterTest, ConnectingAnAccountNamesItByTheUsersEmailAndKeepsItsWorkspaces) {
    IntegrationsManager manager(
        one.storage, one.interactor, [](const auto&) { return true; }, "");
    ServiceAccountConfiguration fresh(ServiceType::Asana, std::nullopt, true);
    fresh.credentials = ServiceAccountCredentials::forIdentifier("new");
    fresh.credentials->accessToken = "token";
    fresh.credentials->expirationDate = Date::distantFuture();
    using Connected = Result<ServiceAccountConfiguration, IntegrationAccountCreationError>;
    Completed<Connected> completed;
    manager.trySaveServiceConfiguration(fresh, completed.callback<IntegrationsManager::AccountCompletion>());
    const auto connected = completed.value();
    ASSERT_TRUE(connected);
    EXPECT_EQ(connected->identifier(), "Asana+me@example.org");
    EXPECT_EQ(connected->getCachedItem<std::vector<AsanaWorkspace>>("myWorkspaces"), std::vector{workspace});
    EXPECT_TRUE(one.storage->load("Asana+me@example.org"));
    EXPECT_NE(manager.createServiceExporter<AsanaExporter>(*connected, one.data), nullptr);
}

TEST_F(AsanaExporterTest, ConfigurationOffersTheFirstProjectAndUserOfTheFirstWorkspace) {
    one.data->titleText = "Subject";
    AsanaExportConfiguration expected{.saveTo = std::nullopt,
                                      .saveAs = Type::pdf,
                                      .userTitle = "Subject",
                                      .userNote = std::nullopt,
                                      .attachments = {},
                                      .supportedContentTypes = {Type::pdf}};
    EXPECT_EQ(one.offered(), expected);
    one.exporter()->myWorkspaces.set(std::vector{workspace, AsanaWorkspace{.id = "other"}});
    expected.saveTo = AsanaSaveToInfo{
        .workspace = workspace, .project = workspace.projects.front(), .user = workspace.users.front()};
    EXPECT_EQ(one.offered(), expected);
}

TEST_F(AsanaExporterTest, AFirstWorkspaceWithoutProjectsOrUsersIsNoTarget) {
    auto withoutUsers = workspace;
    withoutUsers.users.clear();
    auto withoutProjects = workspace;
    withoutProjects.projects.clear();
    EXPECT_EQ(offeredOf({}), std::nullopt);
    EXPECT_EQ(offeredOf({withoutUsers}), std::nullopt);
    EXPECT_EQ(offeredOf({withoutProjects}), std::nullopt);
    EXPECT_EQ(offeredOf({withoutUsers, workspace}), std::nullopt);
    EXPECT_TRUE(offeredOf({workspace, withoutUsers}));
}

TEST_F(AsanaExporterTest, AnArchivedProjectIsOfferedOnlyWhereThereIsNoOther) {
    service.projects = R"({"data":[{"gid":"a","archived":true,"public":false},)"
                       R"({"gid":"b","archived":false,"public":false}]})";
    ASSERT_TRUE(one.load(true));
    EXPECT_EQ(one.offered().saveTo.value().project.id, "b");
    service.projects = R"({"data":[{"gid":"a","archived":true,"public":false}]})";
    ASSERT_TRUE(one.load(true));
    EXPECT_EQ(one.offered().saveTo.value().project, (AsanaProject{.id = "a", .isArchived = true}));
}

TEST_F(AsanaExporterTest, ConfigurationOffersTheLastTargetThoughItHasGone) {
    const AsanaSaveToInfo gone{.workspace = {.id = "gone"}, .project = {.id = "too"}, .user = {.id = "u"}};
    one.exporter()->lastExportInfo.set(gone);
    one.exporter()->myWorkspaces.set(std::vector{workspace});
    EXPECT_EQ(one.offered().saveTo, gone);
}

TEST_F(AsanaExporterTest, ConfigurationOffersTheLastTypeAsItStands) {
    one.exporter()->setLastExportContentType(Type::webLink);
    EXPECT_EQ(one.offered().saveAs, Type::webLink);
}

TEST_F(AsanaExporterTest, AttachmentsArePassedBelowTheLimitInAnyNumber) {
    constexpr std::int64_t limit = 104'857'600;
    EXPECT_EQ(statesOf({limit - 1, limit, limit + 1}),
              (std::vector{State::allowed, State::restricted, State::restricted}));
    EXPECT_EQ(statesOf(std::vector<std::int64_t>(1000, limit - 1)), std::vector<State>(1000, State::allowed));
}

} // namespace zelto
