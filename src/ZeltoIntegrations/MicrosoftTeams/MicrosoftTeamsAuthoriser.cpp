#include <ZeltoIntegrations/MicrosoftTeams/MicrosoftTeamsAuthoriser.h>

#include <ZeltoIntegrations/MicrosoftTeams/MicrosoftTeamsConstants.h>

#include <utility>

namespace zelto {

namespace {

constexpr AuthorisationRules rules = {.margin = AuthorisationRules::standardMargin,
                                      .refresh = AuthorisationRules::Refresh{
                                          .accessTokenURL = MicrosoftTeamsConstants::accessTokenURL,
                                          .clientID = MicrosoftTeamsConstants::clientKey,
                                          .clientSecret = MicrosoftTeamsConstants::clientSecret,
                                          .client = AuthorisationRules::Client::inFormWithRedirectAndScope,
                                          .refreshToken = AuthorisationRules::RefreshToken::overwritten,
                                          .redirectURL = MicrosoftTeamsConstants::redirectURL,
                                          .scope = MicrosoftTeamsConstants::scope,
                                      }};

} // namespace

MicrosoftTeamsAuthoriser::MicrosoftTeamsAuthoriser(ServiceAccountCredentials accountCredentials)
    : AccountAuthoriser(std::move(accountCredentials), rules) {}

} // namespace zelto
