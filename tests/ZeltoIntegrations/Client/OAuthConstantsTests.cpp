#include <ZeltoIntegrations/Asana/AsanaConstants.h>
#include <ZeltoIntegrations/Dropbox/DropboxConstants.h>
#include <ZeltoIntegrations/Evernote/EvernoteConstants.h>
#include <ZeltoIntegrations/GoTo/GoToConstants.h>
#include <ZeltoIntegrations/GoogleDrive/GoogleDriveConstants.h>
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

#include <gtest/gtest.h>

#include <map>

namespace zelto {

namespace {

using Parameters = std::map<std::string, std::string>;

const std::string web = "https://www.zelto.example";
const std::string scheme = "oauth.redirect.com.quendra.trovenhal://auth/";

} // namespace

TEST(OAuthConstants, OfAsana) {
    using C = AsanaConstants;
    EXPECT_EQ(C::clientKey(), "placeholder-id-of-Asana");
    EXPECT_EQ(C::clientSecret(), "placeholder-secret-of-Asana");
    EXPECT_EQ(C::authorizationURL, "https://app.asana.com/-/oauth_authorize");
    EXPECT_EQ(C::accessTokenURL, "https://app.asana.com/-/oauth_token");
    EXPECT_EQ(C::redirectURL(), web + "/oauth-redirect/asana");
    EXPECT_EQ(C::responseType, "code");
    EXPECT_EQ(C::scope, "projects:read users:read workspaces:read attachments:write tasks:write");
}

TEST(OAuthConstants, OfDropbox) {
    using C = DropboxConstants;
    EXPECT_EQ(C::clientID(), "placeholder-id-of-Dropbox");
    EXPECT_EQ(C::clientSecret(), "placeholder-secret-of-Dropbox");
    EXPECT_EQ(C::authorizationURL, "https://www.dropbox.com/oauth2/authorize");
    EXPECT_EQ(C::accessTokenURL, "https://api.dropboxapi.com/oauth2/token");
    EXPECT_EQ(C::redirectURL(), web + "/oauth-redirect/dropbox");
    EXPECT_EQ(C::responseType, "code");
    auto parameters = C::authorizationURLParameters();
    EXPECT_EQ(parameters, C::authorizationURLParameters());
    EXPECT_EQ(parameters["state"].size(), 36u);
    parameters.erase("state");
    EXPECT_EQ(parameters, (Parameters{{"token_access_type", "offline"}, {"prompt", "login"}}));
}

TEST(OAuthConstants, OfEvernote) {
    using C = EvernoteConstants;
    EXPECT_EQ(C::consumerKey(), "placeholder-id-of-Evernote");
    EXPECT_EQ(C::consumerSecret(), "placeholder-secret-of-Evernote");
    EXPECT_EQ(C::authorizationURL, "https://www.evernote.com/OAuth.action");
    EXPECT_EQ(C::accessTokenURL, "https://www.evernote.com/oauth");
    EXPECT_EQ(C::requestTokenURL, "https://www.evernote.com/oauth");
    EXPECT_EQ(C::redirectURL(), scheme + "evernote");
}

TEST(OAuthConstants, OfGoogleDrive) {
    using C = GoogleDriveConstants;
    EXPECT_EQ(C::clientID(), "placeholder-id-of-GoogleDrive");
    EXPECT_EQ(C::clientSecret(), "placeholder-secret-of-GoogleDrive");
    EXPECT_EQ(C::authorizationURL, "https://accounts.google.com/o/oauth2/v2/auth");
    EXPECT_EQ(C::accessTokenURL, "https://www.googleapis.com/oauth2/v4/token");
    EXPECT_EQ(C::redirectURL(), web + "/oauth-redirect/googleDrive");
    EXPECT_EQ(C::responseType, "code");
    EXPECT_EQ(C::scope, "https://www.googleapis.com/auth/drive.file "
                        "https://www.googleapis.com/auth/drive.readonly "
                        "https://www.googleapis.com/auth/userinfo.profile "
                        "https://www.googleapis.com/auth/userinfo.email");
    EXPECT_EQ(C::authorizationURLParameters(),
              (Parameters{{"prompt", "consent"}, {"access_type", "offline"}}));
}

TEST(OAuthConstants, OfGoTo) {
    using C = GoToConstants;
    EXPECT_EQ(C::clientKey(), "placeholder-id-of-GoTo");
    EXPECT_EQ(C::clientSecret(), "placeholder-secret-of-GoTo");
    EXPECT_EQ(C::authorizationURL, "https://authentication.logmeininc.com/oauth/authorize");
    EXPECT_EQ(C::accessTokenURL, "https://authentication.logmeininc.com/oauth/token");
    EXPECT_EQ(C::redirectURL(), web + "/");
    EXPECT_EQ(C::responseType, "code");
}

TEST(OAuthConstants, OfHubspot) {
    using C = HubspotConstants;
    EXPECT_EQ(C::clientID(), "placeholder-id-of-Hubspot");
    EXPECT_EQ(C::clientSecret(), "placeholder-secret-of-Hubspot");
    EXPECT_EQ(C::authorizationURL, "https://app-eu1.hubspot.com/oauth/authorize");
    EXPECT_EQ(C::accessTokenURL, "https://api.hubapi.com/oauth/v1/token");
    EXPECT_EQ(C::redirectURL(), web + "/oauth-redirect/hubspot");
    EXPECT_EQ(C::responseType, "code");
    EXPECT_EQ(C::scope, "oauth crm.objects.contacts.read crm.objects.contacts.write");
    EXPECT_EQ(C::urlHost, "HubSpot");
}

TEST(OAuthConstants, OfMeisterTask) {
    using C = MeisterTaskConstants;
    EXPECT_EQ(C::clientKey(), "placeholder-id-of-MeisterTask");
    EXPECT_EQ(C::clientSecret(), "placeholder-secret-of-MeisterTask");
    EXPECT_EQ(C::authorizationURL, "https://www.mindmeister.com/oauth2/authorize");
    EXPECT_EQ(C::accessTokenURL, "https://www.mindmeister.com/oauth2/token");
    EXPECT_EQ(C::redirectURL(), scheme + "meistertask");
    EXPECT_EQ(C::responseType, "token");
    EXPECT_EQ(C::scope, "userinfo.email userinfo.profile meistertask");
}

TEST(OAuthConstants, OfMicrosoftTeams) {
    using C = MicrosoftTeamsConstants;
    EXPECT_EQ(C::clientKey(), "placeholder-id-of-MicrosoftTeams");
    EXPECT_EQ(C::clientSecret(), "placeholder-secret-of-MicrosoftTeams");
    EXPECT_EQ(C::authorizationURL, "https://login.microsoftonline.com/organizations/oauth2/v2.0/authorize");
    EXPECT_EQ(C::accessTokenURL, "https://login.microsoftonline.com/organizations/oauth2/v2.0/token");
    EXPECT_EQ(C::redirectURL(), scheme + "microsoftteams");
    EXPECT_EQ(C::responseType, "code");
    EXPECT_EQ(C::scope, "offline_access https://graph.microsoft.com/User.Read "
                        "https://graph.microsoft.com/OnlineMeetings.ReadWrite");
    EXPECT_EQ(C::serviceProvider, "teams.microsoft.com");
}

TEST(OAuthConstants, OfNotion) {
    using C = NotionConstants;
    EXPECT_EQ(C::clientKey(), "placeholder-id-of-Notion");
    EXPECT_EQ(C::clientSecret(), "placeholder-secret-of-Notion");
    EXPECT_EQ(C::authorizationURL, "https://api.notion.com/v1/oauth/authorize");
    EXPECT_EQ(C::accessTokenURL, "https://api.notion.com/v1/oauth/token");
    EXPECT_EQ(C::redirectURL(), web + "/oauth-redirect/notion");
    EXPECT_EQ(C::responseType, "code");
    EXPECT_EQ(C::authorizationURLParams(), (Parameters{{"owner", "user"}}));
}

TEST(OAuthConstants, OfOneNote) {
    using C = OneNoteConstants;
    EXPECT_EQ(C::clientKey(), "placeholder-id-of-OneNote");
    EXPECT_EQ(C::clientSecret(), "placeholder-secret-of-OneNote");
    EXPECT_EQ(C::authorizationURL, "https://login.microsoftonline.com/common/oauth2/v2.0/authorize");
    EXPECT_EQ(C::accessTokenURL, "https://login.microsoftonline.com/common/oauth2/v2.0/token");
    EXPECT_EQ(C::redirectURL(), scheme + "onenote");
    EXPECT_EQ(C::responseType, "code");
    EXPECT_EQ(
        C::scope,
        "offline_access https://graph.microsoft.com/User.Read https://graph.microsoft.com/Notes.Create");
    EXPECT_EQ(C::userInfoURL, "https://graph.microsoft.com/v1.0/me");
}

TEST(OAuthConstants, OfSlack) {
    using C = SlackConstants;
    EXPECT_EQ(C::clientID(), "placeholder-id-of-Slack");
    EXPECT_EQ(C::clientSecret(), "placeholder-secret-of-Slack");
    EXPECT_EQ(C::authorizationURL, "https://slack.com/oauth/v2/authorize");
    EXPECT_EQ(C::accessTokenURL, "https://slack.com/api/oauth.v2.access");
    EXPECT_EQ(C::redirectURL(), web + "/oauth-redirect/slack");
    EXPECT_EQ(C::responseType, "code");
    EXPECT_EQ(C::scope, "chat:write,channels:read,groups:read,im:read,mpim:read,mpim:write,users:read");
    EXPECT_EQ(C::urlHost, "slack");
}

TEST(OAuthConstants, OfTickTick) {
    using C = TickTickConstants;
    EXPECT_EQ(C::clientKey(), "placeholder-id-of-TickTick");
    EXPECT_EQ(C::clientSecret(), "placeholder-secret-of-TickTick");
    EXPECT_EQ(C::authorizationURL, "https://ticktick.com/oauth/authorize");
    EXPECT_EQ(C::accessTokenURL, "https://ticktick.com/oauth/token");
    EXPECT_EQ(C::redirectURL(), web + "/oauth-redirect/ticktick");
    EXPECT_EQ(C::responseType, "code");
    EXPECT_EQ(C::scope, "tasks:write");
}

TEST(OAuthConstants, OfTodoist) {
    using C = TodoistConstants;
    EXPECT_EQ(C::clientKey(), "placeholder-id-of-Todoist");
    EXPECT_EQ(C::clientSecret(), "placeholder-secret-of-Todoist");
    EXPECT_EQ(C::authorizationURL, "https://todoist.com/oauth/authorize");
    EXPECT_EQ(C::accessTokenURL, "https://todoist.com/oauth/access_token");
    EXPECT_EQ(C::redirectURL(), web + "/oauth-redirect/todoist");
    EXPECT_EQ(C::responseType, "code");
    EXPECT_EQ(C::scope, "data:read_write");
}

TEST(OAuthConstants, OfTrello) {
    using C = TrelloConstants;
    EXPECT_EQ(C::clientKey(), "placeholder-id-of-Trello");
    EXPECT_EQ(C::clientSecret(), "placeholder-secret-of-Trello");
    EXPECT_EQ(
        C::authorizeTokenURL,
        "https://trello.com/1/OAuthAuthorizeToken?name=Zelto&expiration=never&scope=read,write,account");
    EXPECT_EQ(C::accessTokenURL, "https://trello.com/1/OAuthGetAccessToken");
    EXPECT_EQ(C::requestTokenURL, "https://trello.com/1/OAuthGetRequestToken");
    EXPECT_EQ(C::redirectURL(), scheme + "trello");
}

TEST(OAuthConstants, OfZoom) {
    using C = ZoomConstants;
    EXPECT_EQ(C::clientKey(), "placeholder-id-of-Zoom");
    EXPECT_EQ(C::clientSecret(), "placeholder-secret-of-Zoom");
    EXPECT_EQ(C::authorizationURL, "https://zoom.us/oauth/authorize");
    EXPECT_EQ(C::accessTokenURL, "https://zoom.us/oauth/token");
    EXPECT_EQ(C::redirectURL(), web + "/oauth-redirect/zoom");
    EXPECT_EQ(C::responseType, "code");
    EXPECT_EQ(C::scope, "");
    EXPECT_FALSE(C::urlSchemeHost);
}

} // namespace zelto
