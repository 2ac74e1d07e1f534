#pragma once

#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <string>
#include <string_view>

namespace zelto {

// The values of the service's OAuth 2.0 sign-in.
struct TickTickConstants {
    TickTickConstants() = delete;

    static const std::string& clientKey() { return Secrets::tickTickClientKey(); }

    static const std::string& clientSecret() { return Secrets::tickTickClientSecret(); }

    static std::string redirectURL() { return Secrets::webSite() + "/oauth-redirect/ticktick"; }

    static constexpr std::string_view authorizationURL = "https://ticktick.com/oauth/authorize";
    static constexpr std::string_view accessTokenURL = "https://ticktick.com/oauth/token";
    static constexpr std::string_view responseType = "code";
    static constexpr std::string_view scope = "tasks:write";
};

} // namespace zelto
