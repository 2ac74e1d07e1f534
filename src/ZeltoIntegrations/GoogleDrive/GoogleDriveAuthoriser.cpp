#include <ZeltoIntegrations/GoogleDrive/GoogleDriveAuthoriser.h>

#include <ZeltoIntegrations/GoogleDrive/GoogleDriveConstants.h>

#include <utility>

namespace zelto {

namespace {

constexpr AuthorisationRules rules = {.margin = AuthorisationRules::standardMargin,
                                      .refresh = AuthorisationRules::Refresh{
                                          .accessTokenURL = GoogleDriveConstants::accessTokenURL,
                                          .clientID = GoogleDriveConstants::clientID,
                                          .clientSecret = GoogleDriveConstants::clientSecret,
                                          .client = AuthorisationRules::Client::inForm,
                                          .refreshToken = AuthorisationRules::RefreshToken::replacedIfGiven,
                                      }};

} // namespace

GoogleDriveAuthoriser::GoogleDriveAuthoriser(ServiceAccountCredentials accountCredentials)
    : AccountAuthoriser(std::move(accountCredentials), rules) {}

} // namespace zelto
