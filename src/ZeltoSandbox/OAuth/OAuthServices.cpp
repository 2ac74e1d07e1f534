#include <ZeltoSandbox/OAuth/OAuthServices.h>

#include <ZeltoSandbox/Notion/NotionJSON.h>

#include <Platform/URL.h>

#include <algorithm>

namespace zelto::sandbox {

namespace {

using enum ClientAuthentication;

void describeAsana(JSONObject& response, const OAuthResponseFacts&) {
    response.set("data", JSONObject{{"id", "1200000000000001"},
                                    {"gid", "1200000000000001"},
                                    {"name", "Robin Sandbox"},
                                    {"email", "robin@sandbox.example"}});
}

void describeDropbox(JSONObject& response, const OAuthResponseFacts&) {
    response.set("uid", "100001");
    response.set("account_id", "dbid:AAH4f99T0taONIb-OurWxbNQ6ywGRopQngc");
}

void describeMicrosoft(JSONObject& response, const OAuthResponseFacts&) {
    response.set("ext_expires_in", 3599);
}

void describeNotion(JSONObject& response, const OAuthResponseFacts&) {
    response.set("bot_id", "b3414d65-1224-5ffe-a9f1-1b4d6ed2f1a4");
    response.set("workspace_id", "5d1c6ac7-8d44-4ad4-9d73-6c0a1bd7ab11");
    response.set("workspace_name", "Sandbox");
    response.set("workspace_icon", nullptr);
    response.set("duplicated_template_id", nullptr);
    response.set("owner", JSONObject{{"type", "user"}, {"user", notionOwnerJSON()}});
}

void describeSlack(JSONObject& response, const OAuthResponseFacts& facts) {
    JSONObject whole{{"ok", true}, {"app_id", "A0SANDBOX01"}};
    JSONObject user{{"id", "U0SANDBOX01"}};
    if (!facts.userAccessToken.empty()) {
        user.set("scope", facts.userScope);
        user.set("access_token", facts.userAccessToken);
        user.set("token_type", "user");
    }
    whole.set("authed_user", std::move(user));
    whole.set("team", JSONObject{{"id", "T0SANDBOX01"}, {"name", "Sandbox"}});
    whole.set("enterprise", nullptr);
    whole.set("is_enterprise_install", false);
    for (const auto& [key, value] : response) {
        whole.set(key, value);
    }
    response = std::move(whole);
}

void describeZoom(JSONObject& response, const OAuthResponseFacts&) {
    response.set("api_url", "https://api.zoom.us");
}

constexpr auto code = OAuthFlow::code;
constexpr auto implicit = OAuthFlow::implicit;
constexpr auto never = FirstRefreshToken::never;
constexpr auto always = FirstRefreshToken::always;
constexpr auto whenAskedFor = FirstRefreshToken::whenAskedFor;
constexpr auto absent = NextRefreshToken::absent;
constexpr auto repeated = NextRefreshToken::repeated;
constexpr auto rotated = NextRefreshToken::rotated;

constexpr std::string_view microsoft = "login.microsoftonline.com";
constexpr double halfYear = 15'551'999;

const OAuthService rows[] = {
    {"Asana",
     "app.asana.com",
     "/-/oauth_authorize",
     "app.asana.com",
     "/-/oauth_token",
     code,
     form,
     "/oauth-redirect/asana",
     3600,
     always,
     absent,
     false,
     {},
     {},
     describeAsana},
    {"Dropbox", "www.dropbox.com", "/oauth2/authorize", "api.dropboxapi.com", "/oauth2/token", code, form,
     "/oauth-redirect/dropbox", 14400, whenAskedFor, absent, false, "token_access_type", "offline",
     describeDropbox},
    {"GoogleDrive", "accounts.google.com", "/o/oauth2/v2/auth", "www.googleapis.com", "/oauth2/v4/token",
     code, form, "/oauth-redirect/googleDrive", 3599, whenAskedFor, absent, true, "access_type", "offline"},
    {"GoTo", "authentication.logmeininc.com", "/oauth/authorize", "authentication.logmeininc.com",
     "/oauth/token", code, basic, "/", 3600, always, rotated},
    {"Hubspot", "app-eu1.hubspot.com", "/oauth/authorize", "api.hubapi.com", "/oauth/v1/token", code, form,
     "/oauth-redirect/hubspot", 1800, always, repeated, true},
    {"MeisterTask", "www.mindmeister.com", "/oauth2/authorize", "www.mindmeister.com", "/oauth2/token",
     implicit, form, "oauth.redirect.com.quendra.trovenhal://auth/meistertask", 0, never, absent},
    {"MicrosoftTeams", microsoft, "/organizations/oauth2/v2.0/authorize", microsoft,
     "/organizations/oauth2/v2.0/token", code, form,
     "oauth.redirect.com.quendra.trovenhal://auth/microsoftteams", 3599, whenAskedFor, rotated, true, "scope",
     "offline_access", describeMicrosoft},
    {"Notion", "api.notion.com", "/v1/oauth/authorize", "api.notion.com", "/v1/oauth/token", code, basic,
     "/oauth-redirect/notion", 0, always, rotated, false, "owner", "user", describeNotion},
    {"OneNote", microsoft, "/common/oauth2/v2.0/authorize", microsoft, "/common/oauth2/v2.0/token", code,
     form, "oauth.redirect.com.quendra.trovenhal://auth/onenote", 3599, whenAskedFor, rotated, true, "scope",
     "offline_access", describeMicrosoft},
    {"Slack",
     "slack.com",
     "/oauth/v2/authorize",
     "slack.com",
     "/api/oauth.v2.access",
     code,
     form,
     "/oauth-redirect/slack",
     0,
     never,
     absent,
     true,
     {},
     {},
     describeSlack},
    {"TickTick", "ticktick.com", "/oauth/authorize", "ticktick.com", "/oauth/token", code, basic,
     "/oauth-redirect/ticktick", halfYear, never, absent, true},
    {"Todoist", "todoist.com", "/oauth/authorize", "todoist.com", "/oauth/access_token", code, form,
     "/oauth-redirect/todoist", 0, never, absent, true},
    {"Zoom",
     "zoom.us",
     "/oauth/authorize",
     "zoom.us",
     "/oauth/token",
     code,
     basic,
     "/oauth-redirect/zoom",
     3599,
     always,
     rotated,
     false,
     {},
     {},
     describeZoom},
};

constexpr OAuth1Service oauth1Rows[] = {
    {"Trello", "trello.com", "/1/OAuthGetRequestToken", "/1/OAuthAuthorizeToken", "/1/OAuthGetAccessToken",
     "oauth.redirect.com.quendra.trovenhal://auth/trello"},
    {"Evernote", "www.evernote.com", "/oauth", "/OAuth.action", "/oauth",
     "oauth.redirect.com.quendra.trovenhal://auth/evernote"},
};

} // namespace

std::span<const OAuthService> oauthServices() {
    return rows;
}

std::span<const OAuth1Service> oauth1Services() {
    return oauth1Rows;
}

const OAuthService* findOAuthService(std::string_view name) {
    const auto found = std::ranges::find(rows, name, &OAuthService::name);
    return found == std::end(rows) ? nullptr : found;
}

bool isRedirectAllowed(std::string_view address, std::string_view own) {
    if (!own.starts_with('/') && address == own) {
        return true;
    }
    const auto url = URL::parse(address);
    if (!url || url->fragment() || url->userInfo()) {
        return false;
    }
    const auto host = url->host();
    if (url->scheme() == "http") {
        return host == "127.0.0.1" || host == "::1" || host == "localhost";
    }
    return own.starts_with('/') && url->scheme() == "https" && url->percentEncodedPath() == own;
}

} // namespace zelto::sandbox
