#include <ZeltoIntegrations/OneNote/OneNoteAuthoriser.h>

#include <ZeltoIntegrations/OneNote/OneNoteConstants.h>

#include <utility>

namespace zelto {

namespace {

constexpr AuthorisationRules rules = {.margin = AuthorisationRules::standardMargin,
                                      .refresh = AuthorisationRules::Refresh{
                                          .accessTokenURL = OneNoteConstants::accessTokenURL,
                                          .clientID = OneNoteConstants::clientKey,
                                          .clientSecret = OneNoteConstants::clientSecret,
                                          .client = AuthorisationRules::Client::inFormWithRedirectAndScope,
                                          .refreshToken = AuthorisationRules::RefreshToken::overwritten,
                                          .redirectURL = OneNoteConstants::redirectURL,
                                          .scope = OneNoteConstants::scope,
                                      }};

} // namespace

OneNoteAuthoriser::OneNoteAuthoriser(ServiceAccountCredentials accountCredentials)
    : AccountAuthoriser(std::move(accountCredentials), rules) {}

} // namespace zelto
