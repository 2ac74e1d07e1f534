#pragma once

#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

namespace zelto {

// The values of the service's OAuth 2.0 sign-in, and its limits.
struct GoogleDriveConstants {
    GoogleDriveConstants() = delete;

    static const std::string& clientID() { return Secrets::googleDriveClientID(); }

    static const std::string& clientSecret() { return Secrets::googleDriveClientSecret(); }

    static std::string redirectURL() { return Secrets::webSite() + "/oauth-redirect/googleDrive"; }

    // Further query items of the authorization page.
    static const std::map<std::string, std::string>& authorizationURLParameters();

    static constexpr std::string_view authorizationURL = "https://accounts.google.com/o/oauth2/v2/auth";
    static constexpr std::string_view accessTokenURL = "https://www.googleapis.com/oauth2/v4/token";
    static constexpr std::string_view responseType = "code";
    static constexpr std::string_view scope =
        "https://www.googleapis.com/auth/drive.file https://www.googleapis.com/auth/drive.readonly "
        "https://www.googleapis.com/auth/userinfo.profile https://www.googleapis.com/auth/userinfo.email";

    // An attachment of this size is too large.
    static constexpr std::int64_t attachmentSizeLimit = std::int64_t{20} << 20;
};

} // namespace zelto
