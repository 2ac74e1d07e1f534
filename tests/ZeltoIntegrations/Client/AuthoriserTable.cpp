#include "AuthoriserTable.h"

#include <ZeltoIntegrations/Asana/AsanaAuthoriser.h>
#include <ZeltoIntegrations/Dropbox/DropboxAuthoriser.h>
#include <ZeltoIntegrations/GoTo/GoToAuthoriser.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveAuthoriser.h>
#include <ZeltoIntegrations/Hubspot/HubspotAuthoriser.h>
#include <ZeltoIntegrations/Instapaper/InstapaperAuthoriser.h>
#include <ZeltoIntegrations/MeisterTask/MeisterTaskAuthoriser.h>
#include <ZeltoIntegrations/MicrosoftTeams/MicrosoftTeamsAuthoriser.h>
#include <ZeltoIntegrations/Notion/NotionAuthoriser.h>
#include <ZeltoIntegrations/OneNote/OneNoteAuthoriser.h>
#include <ZeltoIntegrations/Slack/SlackAuthoriser.h>
#include <ZeltoIntegrations/TickTick/TickTickAuthoriser.h>
#include <ZeltoIntegrations/Todoist/TodoistAuthoriser.h>
#include <ZeltoIntegrations/Trello/TrelloAuthoriser.h>
#include <ZeltoIntegrations/Zoom/ZoomAuthoriser.h>

namespace zelto {

namespace {

template <class A> std::unique_ptr<AccountAuthoriser> make(ServiceAccountCredentials credentials) {
    return std::make_unique<A>(std::move(credentials));
}

const std::string bearer = "POST https://api.example/items?a=1\nContent-Type: text/plain\n"
                           "Authorization: Bearer token-1\n\nurl=x\n";
const std::string bearerWithJSON = "POST https://api.example/items?a=1\nContent-Type: application/json\n"
                                   "Authorization: Bearer token-1\n\nurl=x\n";
const std::string none = "(none)";
const std::string grant = "grant%5Ftype=refresh%5Ftoken&refresh%5Ftoken=refresh%2D1";

std::string form(const std::string& url, const std::string& body, const std::string& authorization = "") {
    return "POST " + url + "\nContent-Length: " + std::to_string(body.size()) +
           "\nContent-Type: application/x-www-form-urlencoded\n" +
           (authorization.empty() ? "" : "Authorization: " + authorization + "\n") + "\n" + body + "\n";
}

std::string client(const std::string& service) {
    return "client%5Fid=placeholder%2Did%2Dof%2D" + service +
           "&client%5Fsecret=placeholder%2Dsecret%2Dof%2D" + service + "&";
}

// The redirect's and the scope's places in the form are by the alphabet.
std::string microsoftForm(const std::string& service, const std::string& redirect, const std::string& scope) {
    return client(service) +
           "grant%5Ftype=refresh%5Ftoken&redirect%5Furi=oauth%2Eredirect%2Ecom%2Equendra%2Etrovenhal%3A%2F%"
           "2Fauth%"
           "2F" +
           redirect +
           "&refresh%5Ftoken=refresh%2D1&scope=offline%5Faccess%20https%3A%2F%2Fgraph%2Emicrosoft%2Ecom" +
           "%2FUser%2ERead%20https%3A%2F%2Fgraph%2Emicrosoft%2Ecom%2F" + scope;
}

} // namespace

const std::vector<AuthoriserRow>& authoriserTable() {
    using R = RefreshTokenRule;
    static const std::vector<AuthoriserRow> table = {
        {"Zoom", make<ZoomAuthoriser>, bearer, 300,
         form("https://zoom.us/oauth/token", grant,
              "Basic cGxhY2Vob2xkZXItaWQtb2YtWm9vbTpwbGFjZWhvbGRlci1zZWNyZXQtb2YtWm9vbQ=="),
         R::overwritten},
        {"GoTo", make<GoToAuthoriser>, bearer, 300,
         form("https://authentication.logmeininc.com/oauth/token", grant,
              "Basic cGxhY2Vob2xkZXItaWQtb2YtR29UbzpwbGFjZWhvbGRlci1zZWNyZXQtb2YtR29Ubw=="),
         R::overwritten},
        {"Asana", make<AsanaAuthoriser>, bearer, 300,
         form("https://app.asana.com/-/oauth_token", client("Asana") + grant), R::kept},
        {"Hubspot", make<HubspotAuthoriser>, bearerWithJSON, 0,
         form("https://api.hubapi.com/oauth/v1/token", client("Hubspot") + grant), R::kept},
        {"Dropbox", make<DropboxAuthoriser>, bearer, 300,
         form("https://api.dropboxapi.com/oauth2/token", client("Dropbox") + grant), R::replacedIfGiven},
        {"GoogleDrive", make<GoogleDriveAuthoriser>, bearer, 300,
         form("https://www.googleapis.com/oauth2/v4/token", client("GoogleDrive") + grant),
         R::replacedIfGiven},
        {"OneNote", make<OneNoteAuthoriser>, bearer, 300,
         form("https://login.microsoftonline.com/common/oauth2/v2.0/token",
              microsoftForm("OneNote", "onenote", "Notes%2ECreate")),
         R::overwritten},
        {"MicrosoftTeams", make<MicrosoftTeamsAuthoriser>, bearer, 300,
         form("https://login.microsoftonline.com/organizations/oauth2/v2.0/token",
              microsoftForm("MicrosoftTeams", "microsoftteams", "OnlineMeetings%2EReadWrite")),
         R::overwritten},
        {"Notion", make<NotionAuthoriser>,
         "POST https://api.example/items?a=1\nContent-Type: application/json\nAuthorization: Bearer token-1\n"
         "Notion-Version: 2022-06-28\n\nurl=x\n",
         std::nullopt,
         form("https://api.notion.com/v1/oauth/token", grant,
              "Basic cGxhY2Vob2xkZXItaWQtb2YtTm90aW9uOnBsYWNlaG9sZGVyLXNlY3JldC1vZi1Ob3Rpb24="),
         R::overwritten},
        {"Slack", make<SlackAuthoriser>, bearerWithJSON, std::nullopt, none},
        {"MeisterTask", make<MeisterTaskAuthoriser>, bearer, std::nullopt, none},
        {"TickTick", make<TickTickAuthoriser>, bearer, std::nullopt, none},
        {"Todoist", make<TodoistAuthoriser>, bearer, std::nullopt, none},
        {"Trello", make<TrelloAuthoriser>,
         "POST https://api.example/items?a=1&key=placeholder-id-of-Trello&token=token-1\nContent-Type: "
         "text/plain\n\nurl=x\n",
         std::nullopt, none},
        {"Instapaper", make<InstapaperAuthoriser>,
         "POST https://api.example/items?a=1\nContent-Type: text/plain\n\n"
         "url=x&password=p%26ss%3D&username=alice%40example%2Ecom\n",
         std::nullopt, none},
    };
    return table;
}

} // namespace zelto
