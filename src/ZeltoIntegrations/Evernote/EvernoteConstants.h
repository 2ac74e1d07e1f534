#pragma once

#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace zelto {

// The values of the service's OAuth 1.0a sign-in, and its limits.
struct EvernoteConstants {
    EvernoteConstants() = delete;

    static const std::string& consumerKey() { return Secrets::evernoteConsumerKey(); }

    static const std::string& consumerSecret() { return Secrets::evernoteConsumerSecret(); }

    static std::string redirectURL() { return "oauth.redirect.com.quendra.trovenhal://auth/evernote"; }

    static constexpr std::string_view authorizationURL = "https://www.evernote.com/OAuth.action";
    static constexpr std::string_view accessTokenURL = "https://www.evernote.com/oauth";
    static constexpr std::string_view requestTokenURL = "https://www.evernote.com/oauth";

    // Of all attachments of one note together, in bytes.
    static constexpr std::int64_t totalAttachmentsSizeLimitOfFreeUser = 20'971'520;
    static constexpr std::int64_t totalAttachmentsSizeLimitOfPremiumUser = 209'715'200;
};

} // namespace zelto
