#include <ZeltoIntegrations/Asana/AsanaAuthoriser.h>

#include <ZeltoIntegrations/Asana/AsanaConstants.h>

#include <utility>

namespace zelto {

namespace {

constexpr AuthorisationRules rules = {.margin = AuthorisationRules::standardMargin,
                                      .refresh = AuthorisationRules::Refresh{
                                          .accessTokenURL = AsanaConstants::accessTokenURL,
                                          .clientID = AsanaConstants::clientKey,
                                          .clientSecret = AsanaConstants::clientSecret,
                                          .client = AuthorisationRules::Client::inForm,
                                          .refreshToken = AuthorisationRules::RefreshToken::kept,
                                      }};

} // namespace

AsanaAuthoriser::AsanaAuthoriser(ServiceAccountCredentials accountCredentials)
    : AccountAuthoriser(std::move(accountCredentials), rules) {}

} // namespace zelto
