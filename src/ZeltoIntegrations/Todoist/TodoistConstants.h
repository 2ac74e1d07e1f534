#pragma once

#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace zelto {

// The values of the service's OAuth 2.0 sign-in, and its limits.
struct TodoistConstants {
    TodoistConstants() = delete;

    static const std::string& clientKey() { return Secrets::todoistClientKey(); }

    static const std::string& clientSecret() { return Secrets::todoistClientSecret(); }

    static std::string redirectURL() { return Secrets::webSite() + "/oauth-redirect/todoist"; }

    static constexpr std::string_view authorizationURL = "https://todoist.com/oauth/authorize";
    static constexpr std::string_view accessTokenURL = "https://todoist.com/oauth/access_token";
    static constexpr std::string_view responseType = "code";
    static constexpr std::string_view scope = "data:read_write";

    // What an upload takes, as the service publishes it; in bytes.
    static constexpr std::int64_t fileSizeLimitForFreeAccount = std::int64_t{5} << 20;
    static constexpr std::int64_t fileSizeLimitForPremiumAccount = std::int64_t{100} << 20;

    static constexpr std::int64_t fileSizeLimit(bool isPremium) {
        return isPremium ? fileSizeLimitForPremiumAccount : fileSizeLimitForFreeAccount;
    }
};

} // namespace zelto
