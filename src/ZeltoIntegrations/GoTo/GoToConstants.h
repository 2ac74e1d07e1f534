#pragma once

#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <string>
#include <string_view>

namespace zelto {

// The values of the service's OAuth 2.0 sign-in.
struct GoToConstants {
    GoToConstants() = delete;

    static const std::string& clientKey() { return Secrets::goToClientKey(); }

    static const std::string& clientSecret() { return Secrets::goToClientSecret(); }

    static std::string redirectURL() { return Secrets::webSite() + "/"; }

    static constexpr std::string_view authorizationURL =
        "https://authentication.logmeininc.com/oauth/authorize";
    static constexpr std::string_view accessTokenURL = "https://authentication.logmeininc.com/oauth/token";
    static constexpr std::string_view responseType = "code";
};

} // namespace zelto
