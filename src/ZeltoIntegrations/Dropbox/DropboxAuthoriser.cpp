#include <ZeltoIntegrations/Dropbox/DropboxAuthoriser.h>

#include <ZeltoIntegrations/Dropbox/DropboxConstants.h>

#include <utility>

namespace zelto {

namespace {

constexpr AuthorisationRules rules = {.margin = AuthorisationRules::standardMargin,
                                      .neverStaleWithoutRefreshToken = true,
                                      .refresh = AuthorisationRules::Refresh{
                                          .accessTokenURL = DropboxConstants::accessTokenURL,
                                          .clientID = DropboxConstants::clientID,
                                          .clientSecret = DropboxConstants::clientSecret,
                                          .client = AuthorisationRules::Client::inForm,
                                          .refreshToken = AuthorisationRules::RefreshToken::replacedIfGiven,
                                      }};

} // namespace

DropboxAuthoriser::DropboxAuthoriser(ServiceAccountCredentials accountCredentials)
    : AccountAuthoriser(std::move(accountCredentials), rules) {}

} // namespace zelto
