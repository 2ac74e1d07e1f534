#include <ZeltoHost/SignIn/SignInService.h>

#include <Platform/ASCII.h>

#include <ZeltoIntegrations/Asana/AsanaConstants.h>
#include <ZeltoIntegrations/Dropbox/DropboxConstants.h>
#include <ZeltoIntegrations/Evernote/EvernoteConstants.h>
#include <ZeltoIntegrations/GoTo/GoToConstants.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveConstants.h>
#include <ZeltoIntegrations/Helpers/ExportServiceHelper.h>
#include <ZeltoIntegrations/Hubspot/HubspotConstants.h>
#include <ZeltoIntegrations/MeisterTask/MeisterTaskConstants.h>
#include <ZeltoIntegrations/MicrosoftTeams/MicrosoftTeamsConstants.h>
#include <ZeltoIntegrations/Notion/NotionConstants.h>
#include <ZeltoIntegrations/OneNote/OneNoteConstants.h>
#include <ZeltoIntegrations/Slack/SlackConstants.h>
#include <ZeltoIntegrations/TickTick/TickTickConstants.h>
#include <ZeltoIntegrations/Todoist/TodoistConstants.h>
#include <ZeltoIntegrations/Trello/TrelloConstants.h>
#include <ZeltoIntegrations/Zoom/ZoomConstants.h>

#include <algorithm>

namespace zelto {

namespace {

using Text = const std::string& (*)();
using Items = const std::map<std::string, std::string>& (*)();

struct ServiceRow {
    ServiceType type;
    SignInFlow flow = SignInFlow::authorizationCode;
    Text clientID;
    Text clientSecret;
    std::string_view authorizationURL;
    std::string_view tokenURL;
    std::string_view requestTokenURL = {};
    std::string_view scope = {};
    std::string_view scopeName = "scope";
    Items extraItems = nullptr;
    ClientAuthentication client = ClientAuthentication::form;
    bool takesPKCE = false; // if the service's documentation says so
    std::string_view tokenObject = {};
};

constexpr ServiceRow rows[] = {
    {.type = ServiceType::TodoIst,
     .clientID = TodoistConstants::clientKey,
     .clientSecret = TodoistConstants::clientSecret,
     .authorizationURL = TodoistConstants::authorizationURL,
     .tokenURL = TodoistConstants::accessTokenURL,
     .scope = TodoistConstants::scope},
    {.type = ServiceType::Asana,
     .clientID = AsanaConstants::clientKey,
     .clientSecret = AsanaConstants::clientSecret,
     .authorizationURL = AsanaConstants::authorizationURL,
     .tokenURL = AsanaConstants::accessTokenURL,
     .scope = AsanaConstants::scope,
     .takesPKCE = true},
    {.type = ServiceType::OneNote,
     .clientID = OneNoteConstants::clientKey,
     .clientSecret = OneNoteConstants::clientSecret,
     .authorizationURL = OneNoteConstants::authorizationURL,
     .tokenURL = OneNoteConstants::accessTokenURL,
     .scope = OneNoteConstants::scope,
     .takesPKCE = true},
    {.type = ServiceType::Evernote,
     .flow = SignInFlow::oauth1,
     .clientID = EvernoteConstants::consumerKey,
     .clientSecret = EvernoteConstants::consumerSecret,
     .authorizationURL = EvernoteConstants::authorizationURL,
     .tokenURL = EvernoteConstants::accessTokenURL,
     .requestTokenURL = EvernoteConstants::requestTokenURL},
    {.type = ServiceType::Trello,
     .flow = SignInFlow::oauth1,
     .clientID = TrelloConstants::clientKey,
     .clientSecret = TrelloConstants::clientSecret,
     .authorizationURL = TrelloConstants::authorizeTokenURL,
     .tokenURL = TrelloConstants::accessTokenURL,
     .requestTokenURL = TrelloConstants::requestTokenURL},
    {.type = ServiceType::MeisterTask,
     .flow = SignInFlow::implicit,
     .clientID = MeisterTaskConstants::clientKey,
     .clientSecret = MeisterTaskConstants::clientSecret,
     .authorizationURL = MeisterTaskConstants::authorizationURL,
     .tokenURL = MeisterTaskConstants::accessTokenURL,
     .scope = MeisterTaskConstants::scope},
    {.type = ServiceType::TickTick,
     .clientID = TickTickConstants::clientKey,
     .clientSecret = TickTickConstants::clientSecret,
     .authorizationURL = TickTickConstants::authorizationURL,
     .tokenURL = TickTickConstants::accessTokenURL,
     .scope = TickTickConstants::scope,
     .client = ClientAuthentication::basic},
    {.type = ServiceType::Slack,
     .clientID = SlackConstants::clientID,
     .clientSecret = SlackConstants::clientSecret,
     .authorizationURL = SlackConstants::authorizationURL,
     .tokenURL = SlackConstants::accessTokenURL,
     .scope = SlackConstants::scope,
     .scopeName = "user_scope",
     .takesPKCE = true,
     .tokenObject = "authed_user"},
    {.type = ServiceType::Hubspot,
     .clientID = HubspotConstants::clientID,
     .clientSecret = HubspotConstants::clientSecret,
     .authorizationURL = HubspotConstants::authorizationURL,
     .tokenURL = HubspotConstants::accessTokenURL,
     .scope = HubspotConstants::scope},
    {.type = ServiceType::Notion,
     .clientID = NotionConstants::clientKey,
     .clientSecret = NotionConstants::clientSecret,
     .authorizationURL = NotionConstants::authorizationURL,
     .tokenURL = NotionConstants::accessTokenURL,
     .extraItems = NotionConstants::authorizationURLParams,
     .client = ClientAuthentication::basic},
    {.type = ServiceType::GoogleDrive,
     .clientID = GoogleDriveConstants::clientID,
     .clientSecret = GoogleDriveConstants::clientSecret,
     .authorizationURL = GoogleDriveConstants::authorizationURL,
     .tokenURL = GoogleDriveConstants::accessTokenURL,
     .scope = GoogleDriveConstants::scope,
     .extraItems = GoogleDriveConstants::authorizationURLParameters,
     .takesPKCE = true},
    {.type = ServiceType::Dropbox,
     .clientID = DropboxConstants::clientID,
     .clientSecret = DropboxConstants::clientSecret,
     .authorizationURL = DropboxConstants::authorizationURL,
     .tokenURL = DropboxConstants::accessTokenURL,
     .extraItems = DropboxConstants::authorizationURLParameters,
     .takesPKCE = true},
    {.type = ServiceType::G2Meeting,
     .clientID = GoToConstants::clientKey,
     .clientSecret = GoToConstants::clientSecret,
     .authorizationURL = GoToConstants::authorizationURL,
     .tokenURL = GoToConstants::accessTokenURL,
     .client = ClientAuthentication::basic,
     .takesPKCE = true},
    {.type = ServiceType::ZoomMeeting,
     .clientID = ZoomConstants::clientKey,
     .clientSecret = ZoomConstants::clientSecret,
     .authorizationURL = ZoomConstants::authorizationURL,
     .tokenURL = ZoomConstants::accessTokenURL,
     .scope = ZoomConstants::scope,
     .client = ClientAuthentication::basic,
     .takesPKCE = true},
    {.type = ServiceType::MicrosoftTeams,
     .clientID = MicrosoftTeamsConstants::clientKey,
     .clientSecret = MicrosoftTeamsConstants::clientSecret,
     .authorizationURL = MicrosoftTeamsConstants::authorizationURL,
     .tokenURL = MicrosoftTeamsConstants::accessTokenURL,
     .scope = MicrosoftTeamsConstants::scope,
     .takesPKCE = true},
};

std::optional<SignInService> serviceOf(const ServiceRow& row) {
    const auto page = URL::parse(row.authorizationURL);
    const auto token = URL::parse(row.tokenURL);
    if (!page || !token) {
        return std::nullopt;
    }
    SignInService service{.type = row.type,
                          .name =
                              ExportServiceHelper::getServiceProductNameFor(row.type).value_or(std::string()),
                          .flow = row.flow,
                          .clientID = row.clientID(),
                          .clientSecret = row.clientSecret(),
                          .authorizationURL = *page,
                          .tokenURL = *token,
                          .requestTokenURL = URL::parse(row.requestTokenURL),
                          .scope = std::string(row.scope),
                          .scopeName = std::string(row.scopeName),
                          .extraItems = {},
                          .clientAuthentication = row.client,
                          .takesPKCE = row.takesPKCE,
                          .tokenObject = std::string(row.tokenObject)};
    if (row.extraItems) {
        for (const auto& [name, value] : row.extraItems()) {
            service.extraItems.push_back({name, value});
        }
    }
    return service;
}

} // namespace

std::string SignInService::redirectPath() const {
    return "/sign-in/" + toASCIILower(nameOf(type));
}

std::optional<SignInService> signInServiceFor(ServiceType type) {
    const auto row = std::ranges::find(rows, type, &ServiceRow::type);
    return row == std::end(rows) ? std::nullopt : serviceOf(*row);
}

} // namespace zelto
