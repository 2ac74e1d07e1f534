#include <ZeltoIntegrations/Accounts/ServiceFacts.h>

#include <algorithm>
#include <iterator>

namespace zelto {

namespace {

using enum ServiceType;
using enum ServiceAuthFlow;
using enum AccountCheck;

// clang-format off
constexpr ServiceFacts facts[] = {
    {Reminders,        "Reminders",        systemPermission, none,             false},
    {Calendar,         "",                 oauth,            none,             false},
    {OmniFocus,        "OmniFocus",        installedApp,     none,             false},
    {Type2Do,          "2Do",              installedApp,     none,             false},
    {Things,           "Things",           installedApp,     none,             false},
    {TodoIst,          "Todoist",          oauth,            byExporter,       false},
    {Asana,            "Asana",            oauth,            byExporter,       true},
    {OneNote,          "OneNote",          oauth,            byExporter,       true},
    {Evernote,         "Evernote",         oauth,            byExporter,       false},
    {Trello,           "Trello",           oauth,            byExporter,       false},
    {Bear,             "Bear",             installedApp,     none,             false},
    {MeisterTask,      "MeisterTask",      oauth,            byExporter,       false},
    {TickTick,         "TickTick",         oauth,            byExporter,       false},
    {Agenda,           "Agenda",           installedApp,     none,             false},
    {Slack,            "Slack",            oauth,            byExporter,       false},
    {Hubspot,          "Hubspot",          oauth,            byExporter,       true},
    {Notion,           "Notion",           oauth,            byExporter,       true},
    {GoogleDrive,      "GoogleDrive",      oauth,            byExporter,       true},
    {OneDrive,         "OneDrive",         oauth,            none,             false},
    {Box,              "Box",              oauth,            none,             false},
    {Dropbox,          "Dropbox",          oauth,            byExporter,       true},
    {iCloudDrive,      "iCloudDrive",      systemPermission, none,             false},
    {Instapaper,       "Instapaper",       oauth,            none,             false},
    {OneDriveBusiness, "OneDriveBusiness", oauth,            none,             false},
    {iOSShare,         "iOSShare",         systemPermission, none,             false},
    {Albums,           "Albums",           systemPermission, none,             false},
    {Zelto,            "Zelto",            systemPermission, none,             false},
    {iOSSharePDF,      "iOSSharePDF",      systemPermission, none,             false},
    {G2Meeting,        "GoTo",             oauth,            none,             true},
    {ZoomMeeting,      "Zoom",             oauth,            none,             true},
    {MicrosoftTeams,   "Microsoft Teams",  oauth,            byMeetingCreator, true},
};
// clang-format on

} // namespace

const ServiceFacts& factsOf(ServiceType type) {
    return *std::ranges::find(facts, type, &ServiceFacts::type);
}

} // namespace zelto
