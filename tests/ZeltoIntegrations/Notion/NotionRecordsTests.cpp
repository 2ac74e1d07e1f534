#include <ZeltoIntegrations/Notion/NotionExportConfiguration.h>
#include <ZeltoIntegrations/Notion/NotionExporter.h>

#include <Platform/JSON/JSONCoding.h>

#include <gtest/gtest.h>

namespace zelto {

namespace {

using Type = IntegrationExportContentType;
using Names = std::vector<std::string>;
using Visibility = IntegrationWebLinkVisibility;

template <class T> void expectJSON(const T& value, const std::string& text) {
    EXPECT_EQ(JSONEncoder().encode(value).value(), text);
    EXPECT_EQ(JSONDecoder().decode<T>(text).value(), value);
}

const NotionDatabase database{.id = "d", .title = "Mails"};
const NotionUser user{.id = "u", .name = "Ann", .email = "ann@example.org"};

NotionSaveToInfo wholeTask() {
    return NotionSaveToInfo::task({.project = database,
                                   .assignee = user,
                                   .status = NotionStatus{"s", "Open"},
                                   .dueDate = Date::fromReferenceSeconds(60)});
}

} // namespace

TEST(NotionRecords, HaveTheirFieldsAsKeys) {
    expectJSON(database, R"({"id":"d","title":"Mails"})");
    expectJSON(user, R"({"id":"u","name":"Ann","email":"ann@example.org"})");
    expectJSON(NotionUser{.id = "u"}, R"({"id":"u"})");
    expectJSON(NotionStatus{"s", "Open"}, R"({"id":"s","name":"Open"})");
    expectJSON(NotionFullData{.me = {.id = "u"}, .databases = {database}, .users = {}},
               R"({"me":{"id":"u"},"databases":[{"id":"d","title":"Mails"}],"users":[]})");
}

TEST(NotionRecords, ATargetIsAnObjectWithTheNameOfItsCaseAsItsOneKey) {
    expectJSON(NotionSaveToInfo::journal(database), R"({"journal":{"database":{"id":"d","title":"Mails"}}})");
    expectJSON(wholeTask(), R"({"task":{"project":{"id":"d","title":"Mails"},)"
                            R"("assignee":{"id":"u","name":"Ann","email":"ann@example.org"},)"
                            R"("status":{"id":"s","name":"Open"},"dueDate":60}})");
    expectJSON(NotionSaveToInfo::task({.project = database}),
               R"({"task":{"project":{"id":"d","title":"Mails"}}})");
}

TEST(NotionRecords, ATargetWithAnotherNumberOfKeysIsNone) {
    for (const auto* text :
         {"{}",
          R"({"journal":{"database":{"id":"d","title":"t"}},"task":{"project":{"id":"d","title":"t"}}})",
          R"({"journal":{"database":{"id":"d","title":"t"}},"other":1})"}) {
        const auto decoded = JSONDecoder().decode<NotionSaveToInfo>(text);
        ASSERT_FALSE(decoded) << text;
        EXPECT_NE(decoded.error().message().find("Invalid number of keys found, expected one."),
                  std::string::npos)
            << decoded.error().message();
    }
    for (const auto* text : {R"({"other":{}})", R"({"journal":{}})", R"({"task":null})", "[]",
                             R"({"task":{"project":{"id":"d"}}})"}) {
        EXPECT_FALSE(JSONDecoder().decode<NotionSaveToInfo>(text)) << text;
    }
}

TEST(NotionRecords, ThePageLiesInTheDatabaseOfTheJournalOrInTheProjectOfTheTask) {
    EXPECT_EQ(NotionSaveToInfo::journal(database).parent(), database);
    EXPECT_EQ(wholeTask().parent(), database);
}

TEST(NotionRecords, ConfigurationHasItsFieldsInOrder) {
    expectJSON(NotionExportConfiguration{.saveTo = NotionSaveToInfo::journal(database),
                                         .saveAs = Type::webLink,
                                         .userTitle = "t",
                                         .webLinkVisibility = Visibility::team,
                                         .teamId = 18'446'744'073'709'551'615U,
                                         .userNote = "n",
                                         .supportedContentTypes = {Type::backLink, Type::webLink}},
               R"({"saveTo":{"journal":{"database":{"id":"d","title":"Mails"}}},"saveAs":3,"userTitle":"t",)"
               R"("webLinkVisibility":2,"teamId":18446744073709551615,"userNote":"n",)"
               R"("supportedContentTypes":[2,3]})");
    expectJSON(NotionExportConfiguration{},
               R"({"saveAs":9,"webLinkVisibility":0,"supportedContentTypes":[]})");
}

TEST(NotionExportConfiguration, DifferencesAreNamedInTheirOrder) {
    const NotionExportConfiguration offered{.saveTo = wholeTask(), .userTitle = "t"};
    EXPECT_EQ(offered.diff(offered, true), Names{});
    auto changed = offered;
    changed.saveAs = Type::backLink;
    changed.userTitle = "u";
    changed.userNote = "n";
    changed.webLinkVisibility = Visibility::anyone;
    changed.teamId = 1;
    changed.saveTo = NotionSaveToInfo::task({.project = {"e", "Other"}});
    changed.supportedContentTypes = {Type::pdf};
    EXPECT_EQ(offered.diff(changed, true), (Names{"saveAs", "userTitle", "userNote", "webLinkVisibility",
                                                  "teamId", "project", "assignee", "status", "dueDate"}));
}

TEST(NotionExportConfiguration, EachPartOfATargetIsNamedAlone) {
    const NotionExportConfiguration journal{.saveTo = NotionSaveToInfo::journal(database)};
    const NotionExportConfiguration task{.saveTo = wholeTask()};
    const auto changedTask = [&](auto change) {
        auto changed = task;
        change(std::get<NotionSaveToInfo::Task>(changed.saveTo->value));
        return task.diff(changed, true);
    };
    EXPECT_EQ(journal.diff({.saveTo = NotionSaveToInfo::journal({"e", "Mails"})}, true), Names{"database"});
    EXPECT_EQ(changedTask([](auto& each) { each.project.title = "New"; }), Names{"project"});
    EXPECT_EQ(changedTask([](auto& each) { each.assignee = std::nullopt; }), Names{"assignee"});
    EXPECT_EQ(changedTask([](auto& each) { each.status->name = "Done"; }), Names{"status"});
    EXPECT_EQ(changedTask([](auto& each) { each.dueDate = Date(); }), Names{"dueDate"});
}

TEST(NotionExportConfiguration, AnotherCaseOfATargetAndNoneDifferInAllTheirParts) {
    const NotionExportConfiguration journal{.saveTo = NotionSaveToInfo::journal(database)};
    const NotionExportConfiguration task{.saveTo = wholeTask()};
    const NotionExportConfiguration none;
    const Names parts = {"project", "assignee", "status", "dueDate"};
    EXPECT_EQ(journal.diff(task, true), (Names{"database", "project", "assignee", "status", "dueDate"}));
    EXPECT_EQ(task.diff(journal, true), (Names{"database", "project", "assignee", "status", "dueDate"}));
    EXPECT_EQ(none.diff(task, true), parts);
    EXPECT_EQ(task.diff(none, true), parts);
    EXPECT_EQ(none.diff(journal, true), Names{"database"});
    EXPECT_EQ(none.diff(none, true), Names{});
}

} // namespace zelto
