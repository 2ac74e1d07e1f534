#include <Support/AsanaExport.h>
#include <Support/FailingResponses.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

namespace zelto {

namespace {

using Texts = std::vector<std::string>;
using Type = IntegrationExportContentType;
using LoadError = IntegrationLoadError;

class AsanaExporterTest : public testing::Test {
  protected:
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

TEST_F(AsanaExporterTest, EachRequestThatFailsEndsTheLoadingAndNothingIsStored) {
    service.workspaces = R"({"data":[{"gid":"w1","name":"Work"},{"gid":"w2"}]})";
    service.projects = R"({"data":[],"next_page":{"offset":"o"}})";
    const Texts lines = {
        "GET /api/1.0/users/me", "GET /api/1.0/workspaces", "GET /api/1.0/workspaces/w1/users",
        "GET /api/1.0/workspaces/w1/projects?opt_fields=id,name,archived,public&limit=100",
        "GET /api/1.0/workspaces/w1/projects?opt_fields=id,name,archived,public&limit=100&offset=o"};
    auto responses = unreadableResponses();
    std::ranges::copy(failingResponses(), std::back_inserter(responses));
    for (const auto& failing : responses) {
        for (auto last = lines.begin(); last != lines.end(); ++last) {
            SCOPED_TRACE(*last + " " + failing.name);
            service.respondToLine(*last, failing.response);
            const auto before = service.lines().size();
            EXPECT_EQ(one.load(true).error(), loadErrorOf(failing));
            EXPECT_EQ(linesBehind(before), Texts(lines.begin(), last + 1));
            expectNothingStored();
        }
    }
}

TEST_F(AsanaExporterTest, AUserWithoutAnEmailReplacesTheOneThatHadOne) {
    ASSERT_TRUE(one.fetch());
    service.user = R"({"data":{"gid":"u1"}})";
    ASSERT_TRUE(one.fetch());
    EXPECT_EQ(one.exporter()->loadUserEmail(), std::nullopt);
}

TEST_F(AsanaExporterTest, AFailedLoadingLeavesWhatWasLoadedBefore) {
    ASSERT_TRUE(one.load(true));
    service.user = R"({"data":{"gid":"other"}})";
    service.refuse("/projects?", 500);
    EXPECT_EQ(one.load(true).error(), LoadError::internalError);
    EXPECT_EQ(one.load(false).value(), std::optional(AsanaFullData{.user = user, .workspaces = {workspace}}));
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

TEST_F(AsanaExporterTest, ConfigurationOffersTheLastTypeAsItStands) {
    one.exporter()->setLastExportContentType(Type::webLink);
    EXPECT_EQ(one.offered().saveAs, Type::webLink);
}

} // namespace zelto
