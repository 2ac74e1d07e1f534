#pragma once

#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <map>
#include <string>
#include <string_view>

namespace zelto {

// The values of the service's OAuth 2.0 sign-in.
struct NotionConstants {
    NotionConstants() = delete;

    static const std::string& clientKey() { return Secrets::notionClientKey(); }

    static const std::string& clientSecret() { return Secrets::notionClientSecret(); }

    static std::string redirectURL() { return Secrets::webSite() + "/oauth-redirect/notion"; }

    // Further query items of the authorization page.
    static const std::map<std::string, std::string>& authorizationURLParams();

    static constexpr std::string_view authorizationURL = "https://api.notion.com/v1/oauth/authorize";
    static constexpr std::string_view accessTokenURL = "https://api.notion.com/v1/oauth/token";
    static constexpr std::string_view responseType = "code";
};

} // namespace zelto
