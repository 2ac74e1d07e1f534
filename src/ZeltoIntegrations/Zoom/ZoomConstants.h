#pragma once

#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <optional>
#include <string>
#include <string_view>

namespace zelto {

// The values of the service's OAuth 2.0 sign-in.
struct ZoomConstants {
    ZoomConstants() = delete;

    static const std::string& clientKey() { return Secrets::zoomClientKey(); }

    static const std::string& clientSecret() { return Secrets::zoomClientSecret(); }

    static std::string redirectURL() { return Secrets::webSite() + "/oauth-redirect/zoom"; }

    static constexpr std::string_view authorizationURL = "https://zoom.us/oauth/authorize";
    static constexpr std::string_view accessTokenURL = "https://zoom.us/oauth/token";
    static constexpr std::string_view responseType = "code";
    static constexpr std::string_view scope = "";
    static constexpr std::optional<std::string_view> urlSchemeHost = std::nullopt;
};

} // namespace zelto
