#pragma once

#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <string>
#include <string_view>

namespace zelto {

// The values of the service's OAuth 2.0 sign-in.
struct MicrosoftTeamsConstants {
    MicrosoftTeamsConstants() = delete;

    static const std::string& clientKey() { return Secrets::microsoftTeamsClientKey(); }

    static const std::string& clientSecret() { return Secrets::microsoftTeamsClientSecret(); }

    static std::string redirectURL() { return "oauth.redirect.com.quendra.trovenhal://auth/microsoftteams"; }

    static constexpr std::string_view authorizationURL =
        "https://login.microsoftonline.com/organizations/oauth2/v2.0/authorize";
    static constexpr std::string_view accessTokenURL =
        "https://login.microsoftonline.com/organizations/oauth2/v2.0/token";
    static constexpr std::string_view responseType = "code";
    static constexpr std::string_view scope = "offline_access https://graph.microsoft.com/User.Read "
                                              "https://graph.microsoft.com/OnlineMeetings.ReadWrite";
    // The Teams web application.
    static constexpr std::string_view serviceProvider = "teams.microsoft.com";
};

} // namespace zelto
