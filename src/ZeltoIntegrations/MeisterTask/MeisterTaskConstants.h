#pragma once

#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <string>
#include <string_view>

namespace zelto {

// The values of the service's OAuth 2.0 sign-in.
struct MeisterTaskConstants {
    MeisterTaskConstants() = delete;

    static const std::string& clientKey() { return Secrets::meisterTaskClientKey(); }

    static const std::string& clientSecret() { return Secrets::meisterTaskClientSecret(); }

    static std::string redirectURL() { return "oauth.redirect.com.quendra.trovenhal://auth/meistertask"; }

    static constexpr std::string_view authorizationURL = "https://www.mindmeister.com/oauth2/authorize";
    static constexpr std::string_view accessTokenURL = "https://www.mindmeister.com/oauth2/token";
    static constexpr std::string_view responseType = "token";
    static constexpr std::string_view scope = "userinfo.email userinfo.profile meistertask";
};

} // namespace zelto
