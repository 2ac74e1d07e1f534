#include <ZeltoIntegrations/Accounts/ServiceFacts.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <iterator>
#include <set>
#include <string_view>

namespace zelto {

namespace {

using enum ServiceType;
using enum ServiceAuthFlow;
using enum AccountCheck;

// Whether an account's tokens are replaced while it is used, and so whether who uses it locks it.
constexpr bool refreshes = true;
constexpr bool never = false;

// clang-format off
constexpr ServiceFacts expected[] = {
    {Reminders,        "Reminders",        systemPermission, none,             never},
    {Calendar,         "",                 oauth,            none,             never},
    {OmniFocus,        "OmniFocus",        installedApp,     none,             never},
    {Type2Do,          "2Do",              installedApp,     none,             never},
    {Things,           "Things",           installedApp,     none,             never},
    {TodoIst,          "Todoist",          oauth,            byExporter,       never},
    {Asana,            "Asana",            oauth,            byExporter,       refreshes},
    {OneNote,          "OneNote",          oauth,            byExporter,       refreshes},
    {Evernote,         "Evernote",         oauth,            byExporter,       never},
    {Trello,           "Trello",           oauth,            byExporter,       never},
    {Bear,             "Bear",             installedApp,     none,             never},
    {MeisterTask,      "MeisterTask",      oauth,            byExporter,       never},
    {TickTick,         "TickTick",         oauth,            byExporter,       never},
    {Agenda,           "Agenda",           installedApp,     none,             never},
    {Slack,            "Slack",            oauth,            byExporter,       never},
    {Hubspot,          "Hubspot",          oauth,            byExporter,       refreshes},
    {Notion,           "Notion",           oauth,            byExporter,       refreshes},
    {GoogleDrive,      "GoogleDrive",      oauth,            byExporter,       refreshes},
    {OneDrive,         "OneDrive",         oauth,            none,             never},
    {Box,              "Box",              oauth,            none,             never},
    {Dropbox,          "Dropbox",          oauth,            byExporter,       refreshes},
    {iCloudDrive,      "iCloudDrive",      systemPermission, none,             never},
    {Instapaper,       "Instapaper",       oauth,            none,             never},
    {OneDriveBusiness, "OneDriveBusiness", oauth,            none,             never},
    {iOSShare,         "iOSShare",         systemPermission, none,             never},
    {Albums,           "Albums",           systemPermission, none,             never},
    {Zelto,            "Zelto",            systemPermission, none,             never},
    {iOSSharePDF,      "iOSSharePDF",      systemPermission, none,             never},
    {G2Meeting,        "GoTo",             oauth,            none,             refreshes},
    {ZoomMeeting,      "Zoom",             oauth,            none,             refreshes},
    {MicrosoftTeams,   "Microsoft Teams",  oauth,            byMeetingCreator, refreshes},
};
// clang-format on

} // namespace

TEST(ServiceFacts, HaveOneRowForEachServiceInDeclaredOrder) {
    const auto cases = casesOf<ServiceType>();
    ASSERT_EQ(std::size(expected), cases.size());
    for (std::size_t i = 0; i < cases.size(); ++i) {
        EXPECT_EQ(expected[i].type, cases[i].value) << cases[i].name;
        EXPECT_EQ(factsOf(cases[i].value).type, cases[i].value) << cases[i].name;
    }
}

TEST(ServiceFacts, AreThoseOfEachService) {
    for (const auto& row : expected) {
        const auto& facts = factsOf(row.type);
        EXPECT_EQ(facts.productName, row.productName);
        EXPECT_EQ(facts.authFlow, row.authFlow) << row.productName;
        EXPECT_EQ(facts.accountCheck, row.accountCheck) << row.productName;
        EXPECT_EQ(facts.refreshesTokens, row.refreshesTokens) << row.productName;
    }
}

TEST(ServiceFacts, NoTwoServicesShareAName) {
    std::set<std::string_view> names;
    for (const auto& each : casesOf<ServiceType>()) {
        EXPECT_TRUE(names.insert(factsOf(each.value).productName).second) << each.name;
    }
}

} // namespace zelto
