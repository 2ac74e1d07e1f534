#pragma once

#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace zelto {

// The values of the service's OAuth 2.0 sign-in, and its limits.
struct AsanaConstants {
    AsanaConstants() = delete;

    static const std::string& clientKey() { return Secrets::asanaClientKey(); }

    static const std::string& clientSecret() { return Secrets::asanaClientSecret(); }

    static std::string redirectURL() { return Secrets::webSite() + "/oauth-redirect/asana"; }

    static constexpr std::string_view authorizationURL = "https://app.asana.com/-/oauth_authorize";
    static constexpr std::string_view accessTokenURL = "https://app.asana.com/-/oauth_token";
    static constexpr std::string_view responseType = "code";
    static constexpr std::string_view scope =
        "projects:read users:read workspaces:read attachments:write tasks:write";

    // Bytes of one attachment, as the service publishes it.
    static constexpr std::int64_t attachmentSizeLimit = std::int64_t{100} << 20;
};

} // namespace zelto
