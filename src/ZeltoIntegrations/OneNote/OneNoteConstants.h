#pragma once

#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace zelto {

// The values of the service's OAuth 2.0 sign-in, and its limits.
struct OneNoteConstants {
    OneNoteConstants() = delete;

    static const std::string& clientKey() { return Secrets::oneNoteClientKey(); }

    static const std::string& clientSecret() { return Secrets::oneNoteClientSecret(); }

    static std::string redirectURL() { return "oauth.redirect.com.quendra.trovenhal://auth/onenote"; }

    static constexpr std::string_view authorizationURL =
        "https://login.microsoftonline.com/common/oauth2/v2.0/authorize";
    static constexpr std::string_view accessTokenURL =
        "https://login.microsoftonline.com/common/oauth2/v2.0/token";
    static constexpr std::string_view responseType = "code";
    static constexpr std::string_view scope =
        "offline_access https://graph.microsoft.com/User.Read https://graph.microsoft.com/Notes.Create";
    static constexpr std::string_view userInfoURL = "https://graph.microsoft.com/v1.0/me";

    // A file of this size is too large.
    static constexpr std::int64_t attachmentSizeLimit = 104'857'600;
};

} // namespace zelto
