#include <ZeltoIntegrations/Asana/AsanaConstants.h>
#include <ZeltoIntegrations/Asana/AsanaExportConfiguration.h>
#include <ZeltoIntegrations/Asana/AsanaResponses.h>

#include <Platform/JSON/JSONCoding.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using State = IntegrationAttachmentState;

template <class T> void expectJSON(const T& value, const std::string& text) {
    EXPECT_EQ(JSONEncoder().encode(value).value(), text);
    EXPECT_EQ(JSONDecoder().decode<T>(text).value(), value);
}

template <class T> T decoded(const std::string& text) {
    return JSONDecoder().decode<T>(text).value();
}

template <class T> bool decodes(const std::string& text) {
    return JSONDecoder().decode<T>(text).has_value();
}

const AsanaProject project{.id = "p1", .name = "Plan", .isPublic = true};
const std::string projectJSON = R"({"id":"p1","name":"Plan","isPublic":true,"isArchived":false})";
const AsanaUser user{.id = "u1", .name = "Me", .email = "e"};
const std::string userJSON = R"({"id":"u1","name":"Me","email":"e"})";
const AsanaWorkspace workspace{.id = "w1", .name = "Work", .projects = {project}, .users = {user}};
const std::string workspaceJSON =
    R"({"id":"w1","name":"Work","projects":[)" + projectJSON + R"(],"users":[)" + userJSON + "]}";
const AsanaSaveToInfo saveTo{.workspace = workspace, .project = project, .user = user};
const std::string saveToJSON =
    R"({"workspace":)" + workspaceJSON + R"(,"project":)" + projectJSON + R"(,"user":)" + userJSON + "}";

} // namespace

TEST(AsanaRecords, KeysAreTheFieldNamesAndAbsentOnesAreLeftOut) {
    expectJSON(project, projectJSON);
    expectJSON(AsanaProject{.id = "p", .isArchived = true},
               R"({"id":"p","isPublic":false,"isArchived":true})");
    expectJSON(user, userJSON);
    expectJSON(AsanaUser{.id = "u"}, R"({"id":"u"})");
    expectJSON(workspace, workspaceJSON);
    expectJSON(AsanaWorkspace{.id = "w"}, R"({"id":"w","projects":[],"users":[]})");
    expectJSON(AsanaFullData{.user = user, .workspaces = {workspace}},
               R"({"user":)" + userJSON + R"(,"workspaces":[)" + workspaceJSON + "]}");
    expectJSON(saveTo, saveToJSON);
}

TEST(AsanaRecords, ATaskIsReadAsTheServiceWritesIt) {
    expectJSON(AsanaTask{.ID = "t1", .name = "n"}, R"({"gid":"t1","name":"n"})");
    expectJSON(AsanaTask{.ID = "t1"}, R"({"gid":"t1"})");
    EXPECT_EQ(decoded<AsanaTaskResponse>(
                  R"({"data":{"gid":"t1","resource_type":"task","name":"n","notes":"","tags":[]}})"),
              (AsanaTaskResponse{{.ID = "t1", .name = "n"}}));
}

TEST(AsanaRecords, ConfigurationHasItsFieldsInOrder) {
    expectJSON(AsanaExportConfiguration{.saveTo = saveTo,
                                        .userTitle = "t",
                                        .userNote = "n",
                                        .attachments = {{{7, "a", 3, State::selected}}},
                                        .supportedContentTypes = {IntegrationExportContentType::pdf}},
               R"({"saveTo":)" + saveToJSON +
                   R"(,"saveAs":0,"userTitle":"t","userNote":"n",)"
                   R"("attachments":{"list":[{"id":7,"name":"a","size":3,"state":2}]},)"
                   R"("supportedContentTypes":[0]})");
    expectJSON(AsanaExportConfiguration{},
               R"({"saveAs":0,"attachments":{"list":[]},"supportedContentTypes":[]})");
}

TEST(AsanaResponses, AreMappedToTheRecordsOfTheHost) {
    EXPECT_EQ(toAsanaProjects(decoded<AsanaProjectsResponse>(
                                  R"({"data":[{"gid":"1","name":"a","public":true,"archived":false,"id":9},)"
                                  R"({"gid":"2","name":null,"public":false,"archived":true}]})")
                                  .data),
              (std::vector<AsanaProject>{{.id = "1", .name = "a", .isPublic = true},
                                         {.id = "2", .isArchived = true}}));
    EXPECT_EQ(toAsanaUser(decoded<AsanaSingleUserResponse>(
                              R"({"data":{"gid":"1","name":"a","email":"e","photo":null}})")
                              .data),
              (AsanaUser{.id = "1", .name = "a", .email = "e"}));
    EXPECT_EQ(toAsanaUsers(decoded<AsanaUsersResponse>(R"({"data":[{"gid":"2"},{"gid":"1","name":"a"}]})")),
              (std::vector<AsanaUser>{{.id = "2"}, {.id = "1", .name = "a"}}));
    EXPECT_EQ(toAsanaWorkspaces(
                  decoded<AsanaWorkspacesResponse>(R"({"data":[{"gid":"2","name":"b"},{"gid":"1"}]})")),
              (std::vector<AsanaWorkspace>{{.id = "2", .name = "b"}, {.id = "1"}}));
}

TEST(AsanaResponses, TheNextPageIsAnOffsetNullOrAbsent) {
    const auto next = [](const std::string& field) {
        return decoded<AsanaProjectsResponse>(R"({"data":[])" + field + "}").next_page;
    };
    EXPECT_EQ(next(R"(,"next_page":{"offset":"o","path":"/p","uri":"https://u"})"), AsanaNextPage{"o"});
    EXPECT_EQ(next(R"(,"next_page":{"offset":null})"), AsanaNextPage{});
    EXPECT_EQ(next(R"(,"next_page":{})"), AsanaNextPage{});
    EXPECT_EQ(next(R"(,"next_page":null)"), std::nullopt);
    EXPECT_EQ(next(""), std::nullopt);
}

TEST(AsanaResponses, WhatIsRequiredMustBeThere) {
    EXPECT_FALSE(decodes<AsanaProjectsResponse>(R"({"next_page":null})"));
    EXPECT_FALSE(decodes<AsanaProjectResponse>(R"({"public":true,"archived":false})"));
    EXPECT_FALSE(decodes<AsanaProjectResponse>(R"({"gid":"1","archived":false})"));
    EXPECT_FALSE(decodes<AsanaProjectResponse>(R"({"gid":"1","public":true})"));
    EXPECT_FALSE(decodes<AsanaProjectResponse>(R"({"gid":1,"public":true,"archived":false})"));
    EXPECT_FALSE(decodes<AsanaTaskResponse>("{}"));
    EXPECT_FALSE(decodes<AsanaTaskResponse>(R"({"data":{"name":"n"}})"));
    EXPECT_FALSE(decodes<AsanaSingleUserResponse>("{}"));
    EXPECT_FALSE(decodes<AsanaSingleUserResponse>(R"({"data":{"name":"n","email":"e"}})"));
    EXPECT_FALSE(decodes<AsanaUsersResponse>("{}"));
    EXPECT_FALSE(decodes<AsanaUsersResponse>(R"({"data":[{"name":"n"}]})"));
    EXPECT_FALSE(decodes<AsanaWorkspacesResponse>("{}"));
    EXPECT_FALSE(decodes<AsanaWorkspacesResponse>(R"({"data":[{"name":"n"}]})"));
}

TEST(AsanaResponses, ArchivedProjectsComeBehindTheOthersInTheOrderOfBoth) {
    EXPECT_EQ(
        archivedLast(
            {{.id = "4", .isArchived = true}, {.id = "3"}, {.id = "2", .isArchived = true}, {.id = "1"}}),
        (std::vector<AsanaProject>{
            {.id = "3"}, {.id = "1"}, {.id = "4", .isArchived = true}, {.id = "2", .isArchived = true}}));
    EXPECT_EQ(archivedLast({}), std::vector<AsanaProject>{});
}

TEST(AsanaConstants, TheLimitIsThatOfTheService) {
    EXPECT_EQ(AsanaConstants::attachmentSizeLimit, 104'857'600);
}

TEST(AsanaExportConfiguration, DifferencesAreNamedInTheirOrder) {
    using Names = std::vector<std::string>;
    const AsanaExportConfiguration offered{
        .saveTo = saveTo,
        .userTitle = "t",
        .attachments = {{{1, "a", 1, State::allowed}, {2, "b", 1, State::restricted}}}};
    EXPECT_EQ(offered.diff(offered, false), Names{});
    EXPECT_EQ(offered.diff(offered, true), Names{"attachments"});

    auto edited = offered;
    edited.attachments.list.front().state = State::selected;
    EXPECT_EQ(offered.diff(edited, true), Names{});
    EXPECT_EQ(offered.diff(edited, false), Names{"attachments"});

    edited.saveAs = IntegrationExportContentType::backLink;
    edited.userTitle = "u";
    edited.userNote = "n";
    edited.saveTo->user.id = "u2";
    EXPECT_EQ(offered.diff(edited, true), (Names{"saveAs", "userTitle", "userNote", "user"}));
    edited.saveTo->project.id = "p2";
    edited.saveTo->workspace.id = "w2";
    EXPECT_EQ(offered.diff(edited, false),
              (Names{"saveAs", "userTitle", "userNote", "attachments", "workspace", "project", "user"}));
    edited.saveTo = std::nullopt;
    EXPECT_EQ(offered.diff(edited, true),
              (Names{"saveAs", "userTitle", "userNote", "workspace", "project", "user"}));
}

} // namespace zelto
