#pragma once

#include <ZeltoIntegrations/Client/AccountAuthoriser.h>

#include <utility>

namespace zelto {

// Signs with the query items "key" and "token", after those that are there.
class TrelloAuthoriser final : public AccountAuthoriser {
  public:
    explicit TrelloAuthoriser(ServiceAccountCredentials accountCredentials)
        : AccountAuthoriser(std::move(accountCredentials)) {}

    bool authorize(URLRequest& request) override;
};

} // namespace zelto
