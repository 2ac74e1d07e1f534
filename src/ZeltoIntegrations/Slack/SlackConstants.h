#pragma once

#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <string>
#include <string_view>

namespace zelto {

// The values of the service's OAuth 2.0 sign-in.
struct SlackConstants {
    SlackConstants() = delete;

    static const std::string& clientID() { return Secrets::slackClientID(); }

    static const std::string& clientSecret() { return Secrets::slackClientSecret(); }

    static std::string redirectURL() { return Secrets::webSite() + "/oauth-redirect/slack"; }

    static constexpr std::string_view authorizationURL = "https://slack.com/oauth/v2/authorize";
    static constexpr std::string_view accessTokenURL = "https://slack.com/api/oauth.v2.access";
    static constexpr std::string_view responseType = "code";
    static constexpr std::string_view scope =
        "chat:write,channels:read,groups:read,im:read,mpim:read,mpim:write,users:read";
    // The host of the return URL in the application's own scheme.
    static constexpr std::string_view urlHost = "slack";
};

} // namespace zelto
