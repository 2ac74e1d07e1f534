#pragma once

#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zelto {

// The values of the service's OAuth 1.0a sign-in.
struct TrelloConstants {
    TrelloConstants() = delete;

    static const std::string& clientKey() { return Secrets::trelloClientKey(); }

    static const std::string& clientSecret() { return Secrets::trelloClientSecret(); }

    static std::string redirectURL() { return "oauth.redirect.com.quendra.trovenhal://auth/trello"; }

    static constexpr std::string_view authorizeTokenURL =
        "https://trello.com/1/OAuthAuthorizeToken?name=Zelto&expiration=never&scope=read,write,account";
    static constexpr std::string_view accessTokenURL = "https://trello.com/1/OAuthGetAccessToken";
    static constexpr std::string_view requestTokenURL = "https://trello.com/1/OAuthGetRequestToken";

    // What a card takes, as the service publishes it; the length in characters, sizes in bytes.
    static constexpr std::size_t symbolsLimit = 16'000;
    static constexpr std::int64_t attachmentsCountLimit = 100;
    static constexpr std::int64_t attachmentSizeLimitForFreeAccount = std::int64_t{10} << 20;
    static constexpr std::int64_t attachmentSizeLimitForPremiumAccount = std::int64_t{250} << 20;

    static constexpr std::int64_t attachmentSizeLimit(bool isPremium) {
        return isPremium ? attachmentSizeLimitForPremiumAccount : attachmentSizeLimitForFreeAccount;
    }
};

} // namespace zelto
