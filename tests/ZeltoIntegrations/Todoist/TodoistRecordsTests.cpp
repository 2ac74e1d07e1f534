#include <ZeltoIntegrations/Todoist/TodoistConstants.h>
#include <ZeltoIntegrations/Todoist/TodoistExportConfiguration.h>
#include <ZeltoIntegrations/Todoist/TodoistResponses.h>

#include <Support/TodoistExport.h>

#include <Platform/JSON/JSONCoding.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using Words = std::optional<std::string>;

template <class T> void expectJSON(const T& value, const std::string& text) {
    EXPECT_EQ(JSONEncoder().encode(value).value(), text);
    EXPECT_EQ(JSONDecoder().decode<T>(text).value(), value);
}

template <class T> T decoded(const std::string& text) {
    return JSONDecoder().decode<T>(text).value();
}

template <class T> bool isDecoded(const std::string& text) {
    return JSONDecoder().decode<T>(text).has_value();
}

Words errorIn(const std::string& status) {
    return decoded<TodoistCommandStatus>(status).error;
}

std::string textOf(const std::vector<TodoistCommand>& commands) {
    return withoutUUIDs(JSONEncoder().encode(commands).value());
}

const TodoistProject project{.id = "p", .name = "Work"};

} // namespace

TEST(TodoistRecords, KeysAreThoseOfTheServiceAndAbsentOnesAreLeftOut) {
    expectJSON(TodoistUser{.email = "e", .isPremium = true, .premiumUntil = "2027"},
               R"({"email":"e","is_premium":true,"premium_until":"2027"})");
    expectJSON(TodoistUser{.email = "e"}, R"({"email":"e","is_premium":false})");
    expectJSON(
        TodoistFullData{.user = {.email = "e"}, .projects = {project, {.id = "q"}}},
        R"({"user":{"email":"e","is_premium":false},"projects":[{"id":"p","name":"Work"},{"id":"q"}]})");
    expectJSON(TodoistFetchResponse{.user = {.email = "e"}, .projects = {project}},
               R"({"user":{"email":"e","is_premium":false},"projects":[{"id":"p","name":"Work"}]})");
    expectJSON(TodoistSaveToInfo{.project = project}, R"({"project":{"id":"p","name":"Work"}})");
}

TEST(TodoistRecords, ConfigurationHasItsFieldsInOrder) {
    expectJSON(
        TodoistExportConfiguration{.saveTo = TodoistSaveToInfo{project},
                                   .saveAs = Type::webLink,
                                   .dueDate = Date::fromReferenceSeconds(60),
                                   .attachments = {{{7, "n", 3, IntegrationAttachmentState::selected}}},
                                   .userTitle = "t",
                                   .webLinkVisibility = IntegrationWebLinkVisibility::team,
                                   .teamId = 18'446'744'073'709'551'615U,
                                   .supportedContentTypes = {Type::backLink, Type::webLink}},
        R"({"saveTo":{"project":{"id":"p","name":"Work"}},"saveAs":3,"dueDate":60,)"
        R"("attachments":{"list":[{"id":7,"name":"n","size":3,"state":2}]},"userTitle":"t",)"
        R"("webLinkVisibility":2,"teamId":18446744073709551615,"supportedContentTypes":[2,3]})");
    expectJSON(TodoistExportConfiguration{},
               R"({"saveAs":9,"attachments":{"list":[]},"webLinkVisibility":0,"supportedContentTypes":[]})");
}

TEST(TodoistCommands, ATaskIsACommandAndItsTextIsAnother) {
    EXPECT_EQ(textOf(commandsFor({.title = "t", .projectID = "p", .text = "x"})),
              R"([{"type":"item_add","temp_id":"A","uuid":"B","args":{"content":"t","project_id":"p"}},)"
              R"({"type":"note_add","temp_id":"C","uuid":"D","args":{"temp_id":"A","content":"x"}}])");
}

TEST(TodoistCommands, TwoFilesAreFourCommandsOfOneTask) {
    const auto info = JSONValue::parse(R"({"b":1.50,"a":123456789012345678901234567890,"a2":[1e2]})").value();
    const auto commands = commandsFor({.title = "t",
                                       .projectID = "p",
                                       .text = "",
                                       .dueDate = "2026-11-21T09:30:00",
                                       .files = {{"one", info}, {"two", JSONObject()}}});
    EXPECT_EQ(
        textOf(commands),
        R"([{"type":"item_add","temp_id":"A","uuid":"B",)"
        R"("args":{"content":"t","project_id":"p","due":{"date":"2026-11-21T09:30:00"}}},)"
        R"({"type":"note_add","temp_id":"C","uuid":"D","args":{"temp_id":"A","content":""}},)"
        R"({"type":"note_add","temp_id":"E","uuid":"F","args":{"temp_id":"A","content":"",)"
        R"("file_attachment":{"b":1.50,"a":123456789012345678901234567890,"a2":[1e2]}}},)"
        R"({"type":"note_add","temp_id":"G","uuid":"H","args":{"temp_id":"A","content":"","file_attachment":{}}}])");
    std::vector<std::string> names;
    for (const auto& command : commands) {
        names.push_back(command.name);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"t", "t", "one", "two"}));
}

TEST(TodoistCommands, IdentifiersAreFreshEachTime) {
    const TodoistTask task{.title = "t", .projectID = "p", .text = "x"};
    const auto first = commandsFor(task);
    const auto second = commandsFor(task);
    EXPECT_NE(first[0].temp_id, second[0].temp_id);
    EXPECT_NE(first[0].uuid, second[0].uuid);
}

TEST(TodoistResponses, AStatusIsOkOrTheServicesWords) {
    EXPECT_EQ(errorIn(R"("ok")"), std::nullopt);
    EXPECT_EQ(errorIn(R"({"error":"Project not found","error_tag":"NOT_FOUND","error_code":21})"),
              Words("Project not found"));
    EXPECT_EQ(errorIn(R"({"error_tag":"NOT_FOUND","error_code":21})"), Words("NOT_FOUND"));
    EXPECT_EQ(errorIn(R"({"error":7,"error_tag":"NOT_FOUND"})"), Words("NOT_FOUND"));
    EXPECT_EQ(errorIn(R"("OK")"), Words("OK"));
}

TEST(TodoistResponses, AnyOtherStatusIsAnErrorWithoutWords) {
    for (const auto* status :
         {"null", "true", "0", "1e400", "[]", R"(["ok"])", "{}", R"({"ok":"ok"})", R"({"error":null})",
          R"({"error":{"error":"deep"}})", R"({"error_code":99999999999999999999999,"error_tag":[1]})"}) {
        EXPECT_EQ(errorIn(status), Words("")) << status;
    }
}

TEST(TodoistResponses, StatusesKeepTheirJSON) {
    expectJSON(
        TodoistUploadResponse{.sync_status = {{"1", {}}, {"2", {"no"}}, {"3", {""}}},
                              .temp_id_mapping = {{"a", "1"}}},
        R"({"sync_status":{"1":"ok","2":{"error":"no"},"3":{"error":""}},"temp_id_mapping":{"a":"1"}})");
}

TEST(TodoistResponses, ACommandHasItsStatusAndItsIdentifier) {
    const TodoistCommand task{.temp_id = "t1", .uuid = "u1"};
    const TodoistCommand note{.temp_id = "t2", .uuid = "u2"};
    const TodoistUploadResponse ok{.sync_status = {{"u1", {}}, {"u2", {}}}, .temp_id_mapping = {{"t1", "9"}}};
    EXPECT_EQ(ok.errorOf(note), std::nullopt);
    EXPECT_EQ(ok.errorOfTask(task), std::nullopt);
    EXPECT_EQ(ok.identifierOf(task), "9");
    EXPECT_EQ(ok.identifierOf(note), std::nullopt);

    const TodoistUploadResponse noNote{.sync_status = {{"u1", {}}, {"u2", {"n"}}}};
    EXPECT_EQ(noNote.errorOfTask(task), std::nullopt);
    EXPECT_EQ(noNote.errorOf(task), std::nullopt);
    EXPECT_EQ(noNote.errorOf(note), "n");

    const TodoistUploadResponse noTask{.sync_status = {{"u1", {"t"}}, {"u0", {"n"}}}};
    EXPECT_EQ(noTask.errorOfTask(task), "t");

    const TodoistUploadResponse withoutTask{.sync_status = {{"u2", {"n"}}}};
    EXPECT_EQ(withoutTask.errorOf(task), "");
    EXPECT_EQ(withoutTask.errorOfTask(task), "n");

    EXPECT_EQ(TodoistUploadResponse().errorOf(note), "");
    EXPECT_EQ(TodoistUploadResponse().errorOfTask(task), "");
}

TEST(TodoistResponses, WhatIsRequiredMustBeThereAndOfItsType) {
    EXPECT_TRUE(isDecoded<TodoistFetchResponse>(
        R"({"user":{"email":"e","is_premium":true,"id":1e400},"projects":[],"more":[{}]})"));
    for (const auto* text : {
             "{}",
             "[]",
             R"({"projects":[]})",
             R"({"user":{"email":"e","is_premium":true}})",
             R"({"user":null,"projects":[]})",
             R"({"user":{"is_premium":true},"projects":[]})",
             R"({"user":{"email":"e"},"projects":[]})",
             R"({"user":{"email":"e","is_premium":1},"projects":[]})",
             R"({"user":{"email":"e","is_premium":true,"premium_until":5},"projects":[]})",
             R"({"user":{"email":"e","is_premium":true},"projects":{}})",
             R"({"user":{"email":"e","is_premium":true},"projects":[{"name":"no id"}]})",
             R"({"user":{"email":"e","is_premium":true},"projects":[{"id":18446744073709551616}]})",
         }) {
        EXPECT_FALSE(isDecoded<TodoistFetchResponse>(text)) << text;
    }
    EXPECT_TRUE(isDecoded<TodoistUploadResponse>(R"({"sync_status":{},"temp_id_mapping":{},"more":1e400})"));
    for (const auto* text : {
             "{}",
             "null",
             R"({"sync_status":{}})",
             R"({"temp_id_mapping":{}})",
             R"({"sync_status":null,"temp_id_mapping":{}})",
             R"({"sync_status":["ok"],"temp_id_mapping":{}})",
             R"({"sync_status":"ok","temp_id_mapping":{}})",
             R"({"sync_status":{},"temp_id_mapping":[]})",
             R"({"sync_status":{},"temp_id_mapping":{"t":1}})",
             R"({"sync_status":{},"temp_id_mapping":{"t":null}})",
         }) {
        EXPECT_FALSE(isDecoded<TodoistUploadResponse>(text)) << text;
    }
}

TEST(TodoistConstants, LimitsAreThoseOfTheService) {
    EXPECT_EQ(TodoistConstants::fileSizeLimitForFreeAccount, 5'242'880);
    EXPECT_EQ(TodoistConstants::fileSizeLimitForPremiumAccount, 104'857'600);
}

TEST(TodoistExportConfiguration, DifferencesAreNamed) {
    using Names = std::vector<std::string>;
    const TodoistExportConfiguration offered{
        .saveTo = TodoistSaveToInfo{project},
        .attachments = {{{1, "a", 1, IntegrationAttachmentState::allowed},
                         {2, "b", 1, IntegrationAttachmentState::restricted}}},
        .userTitle = "t"};
    EXPECT_EQ(offered.diff(offered, false), Names{});
    EXPECT_EQ(offered.diff(offered, true), Names{"attachments"});

    auto user = offered;
    user.attachments.list.front().state = IntegrationAttachmentState::selected;
    EXPECT_EQ(offered.diff(user, true), Names{});
    EXPECT_EQ(offered.diff(user, false), Names{"attachments"});

    user.saveAs = Type::backLink;
    EXPECT_EQ(offered.diff(user, true), Names{"saveAs"});
    user.dueDate = Date();
    user.userTitle = "u";
    user.webLinkVisibility = IntegrationWebLinkVisibility::anyone;
    user.teamId = 1;
    user.saveTo->project.id = "q";
    user.supportedContentTypes = {Type::pdf};
    const Names all = {"saveAs", "dueDate", "userTitle", "webLinkVisibility", "teamId", "project"};
    EXPECT_EQ(offered.diff(user, true), all);
    user.saveTo = std::nullopt;
    EXPECT_EQ(offered.diff(user, true), all);
}

} // namespace zelto
