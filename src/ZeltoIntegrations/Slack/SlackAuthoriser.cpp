#include <ZeltoIntegrations/Slack/SlackAuthoriser.h>

#include <utility>

namespace zelto {

namespace {

constexpr AuthorisationRules::Header headers[] = {{"Content-Type", "application/json"}};

constexpr AuthorisationRules rules = {
    .headers = headers,
};

} // namespace

SlackAuthoriser::SlackAuthoriser(ServiceAccountCredentials accountCredentials)
    : AccountAuthoriser(std::move(accountCredentials), rules) {}

} // namespace zelto
