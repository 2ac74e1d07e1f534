#pragma once

#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace zelto {

// The values of the service's OAuth 2.0 sign-in, and its limits.
struct DropboxConstants {
    DropboxConstants() = delete;

    static const std::string& clientID() { return Secrets::dropboxClientID(); }

    static const std::string& clientSecret() { return Secrets::dropboxClientSecret(); }

    static std::string redirectURL() { return Secrets::webSite() + "/oauth-redirect/dropbox"; }

    // Further query items of the authorization page. The "state" is made once, at random.
    static const std::map<std::string, std::string>& authorizationURLParameters();

    static constexpr std::string_view authorizationURL = "https://www.dropbox.com/oauth2/authorize";
    static constexpr std::string_view accessTokenURL = "https://api.dropboxapi.com/oauth2/token";
    static constexpr std::string_view responseType = "code";

    // An attachment of this size is too large.
    static constexpr std::int64_t attachmentSizeLimit = std::int64_t{20} << 20;
};

} // namespace zelto
