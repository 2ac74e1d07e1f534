#include <ZeltoIntegrations/Notion/NotionAuthoriser.h>

#include <ZeltoIntegrations/Notion/NotionConstants.h>

#include <utility>

namespace zelto {

namespace {

constexpr AuthorisationRules::Header headers[] = {{"Notion-Version", "2022-06-28"},
                                                  {"Content-Type", "application/json"}};

constexpr AuthorisationRules rules = {.headers = headers,
                                      .refresh = AuthorisationRules::Refresh{
                                          .accessTokenURL = NotionConstants::accessTokenURL,
                                          .clientID = NotionConstants::clientKey,
                                          .clientSecret = NotionConstants::clientSecret,
                                          .client = AuthorisationRules::Client::inBasicHeader,
                                          .refreshToken = AuthorisationRules::RefreshToken::overwritten,
                                          .setsExpiration = false,
                                      }};

} // namespace

NotionAuthoriser::NotionAuthoriser(ServiceAccountCredentials accountCredentials)
    : AccountAuthoriser(std::move(accountCredentials), rules) {}

} // namespace zelto
