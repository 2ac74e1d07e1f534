#include <ZeltoIntegrations/Zoom/ZoomAuthoriser.h>

#include <ZeltoIntegrations/Zoom/ZoomConstants.h>

#include <utility>

namespace zelto {

namespace {

constexpr AuthorisationRules rules = {.margin = AuthorisationRules::standardMargin,
                                      .refresh = AuthorisationRules::Refresh{
                                          .accessTokenURL = ZoomConstants::accessTokenURL,
                                          .clientID = ZoomConstants::clientKey,
                                          .clientSecret = ZoomConstants::clientSecret,
                                          .client = AuthorisationRules::Client::inBasicHeader,
                                          .refreshToken = AuthorisationRules::RefreshToken::overwritten,
                                      }};

} // namespace

ZoomAuthoriser::ZoomAuthoriser(ServiceAccountCredentials accountCredentials)
    : AccountAuthoriser(std::move(accountCredentials), rules) {}

} // namespace zelto
