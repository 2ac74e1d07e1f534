#pragma once

#include <ZeltoIntegrations/Accounts/Secrets.h>

#include <string>
#include <string_view>

namespace zelto {

// The values of the service's OAuth 2.0 sign-in.
struct HubspotConstants {
    HubspotConstants() = delete;

    static const std::string& clientID() { return Secrets::hubspotClientID(); }

    static const std::string& clientSecret() { return Secrets::hubspotClientSecret(); }

    static std::string redirectURL() { return Secrets::webSite() + "/oauth-redirect/hubspot"; }

    static constexpr std::string_view authorizationURL = "https://app-eu1.hubspot.com/oauth/authorize";
    static constexpr std::string_view accessTokenURL = "https://api.hubapi.com/oauth/v1/token";
    static constexpr std::string_view responseType = "code";
    static constexpr std::string_view scope = "oauth crm.objects.contacts.read crm.objects.contacts.write";
    // The host of the return URL in the application's own scheme.
    static constexpr std::string_view urlHost = "HubSpot";
};

} // namespace zelto
