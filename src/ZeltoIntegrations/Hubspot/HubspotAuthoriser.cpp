#include <ZeltoIntegrations/Hubspot/HubspotAuthoriser.h>

#include <ZeltoIntegrations/Hubspot/HubspotConstants.h>

#include <utility>

namespace zelto {

namespace {

constexpr AuthorisationRules::Header headers[] = {{"Content-Type", "application/json"}};

constexpr AuthorisationRules rules = {.headers = headers,
                                      .margin = TimeInterval(0),
                                      .refresh = AuthorisationRules::Refresh{
                                          .accessTokenURL = HubspotConstants::accessTokenURL,
                                          .clientID = HubspotConstants::clientID,
                                          .clientSecret = HubspotConstants::clientSecret,
                                          .client = AuthorisationRules::Client::inForm,
                                          .refreshToken = AuthorisationRules::RefreshToken::kept,
                                      }};

} // namespace

HubspotAuthoriser::HubspotAuthoriser(ServiceAccountCredentials accountCredentials)
    : AccountAuthoriser(std::move(accountCredentials), rules) {}

} // namespace zelto
