#include <ZeltoIntegrations/GoTo/GoToAuthoriser.h>

#include <ZeltoIntegrations/GoTo/GoToConstants.h>

#include <utility>

namespace zelto {

namespace {

constexpr AuthorisationRules rules = {.margin = AuthorisationRules::standardMargin,
                                      .refresh = AuthorisationRules::Refresh{
                                          .accessTokenURL = GoToConstants::accessTokenURL,
                                          .clientID = GoToConstants::clientKey,
                                          .clientSecret = GoToConstants::clientSecret,
                                          .client = AuthorisationRules::Client::inBasicHeader,
                                          .refreshToken = AuthorisationRules::RefreshToken::overwritten,
                                      }};

} // namespace

GoToAuthoriser::GoToAuthoriser(ServiceAccountCredentials accountCredentials)
    : AccountAuthoriser(std::move(accountCredentials), rules) {}

} // namespace zelto
