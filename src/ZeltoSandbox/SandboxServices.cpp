#include <ZeltoSandbox/SandboxService.h>

#include <ZeltoSandbox/Asana/AsanaSandbox.h>
#include <ZeltoSandbox/Dropbox/DropboxSandbox.h>
#include <ZeltoSandbox/GoTo/GoToSandbox.h>
#include <ZeltoSandbox/GoogleDrive/GoogleDriveSandbox.h>
#include <ZeltoSandbox/Hubspot/HubspotSandbox.h>
#include <ZeltoSandbox/MicrosoftTeams/MicrosoftTeamsSandbox.h>
#include <ZeltoSandbox/Notion/NotionSandbox.h>
#include <ZeltoSandbox/OneNote/OneNoteSandbox.h>
#include <ZeltoSandbox/PlainService.h>
#include <ZeltoSandbox/Slack/SlackSandbox.h>
#include <ZeltoSandbox/Todoist/TodoistSandbox.h>
#include <ZeltoSandbox/Trello/TrelloSandbox.h>
#include <ZeltoSandbox/Zoom/ZoomSandbox.h>

#include <Platform/NeverDestroyed.h>

namespace zelto::sandbox {

namespace {

// A service without a class of its own has PlainService.
const auto& rows = neverDestroyed(std::vector<SandboxServiceRow>{
    {"Trello", {"api.trello.com"}, TrelloSandbox::make},
    {"Asana", {"app.asana.com"}, AsanaSandbox::make},
    {"Todoist", {"api.todoist.com"}, TodoistSandbox::make},
    {"TickTick", {"api.ticktick.com"}, PlainService::make},
    {"MeisterTask", {"www.meistertask.com"}, PlainService::make},
    {"Notion", {"api.notion.com"}, NotionSandbox::make},
    {"OneNote", {"graph.microsoft.com"}, OneNoteSandbox::make},
    {"MicrosoftTeams",
     {"graph.microsoft.com", "teams.microsoft.com"},
     MicrosoftTeamsSandbox::make,
     {"/v1.0/me/onlineMeetings", "/v1.0/me/licenseDetails", "/v1.0//me/licenseDetails"}},
    {"Dropbox", {"api.dropboxapi.com", "content.dropboxapi.com"}, DropboxSandbox::make},
    {"GoogleDrive", {"www.googleapis.com"}, GoogleDriveSandbox::make},
    {"Slack", {"slack.com"}, SlackSandbox::make},
    {"Zoom", {"api.zoom.us", "zoom.us"}, ZoomSandbox::make},
    {"GoTo", {"api.getgo.com", "global.gotomeeting.com"}, GoToSandbox::make},
    {"Hubspot", {"api.hubapi.com"}, HubspotSandbox::make},
    {"Instapaper", {"www.instapaper.com"}, PlainService::make},
});

} // namespace

std::span<const SandboxServiceRow> sandboxServices() {
    return rows;
}

} // namespace zelto::sandbox
