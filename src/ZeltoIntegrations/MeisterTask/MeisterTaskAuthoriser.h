#pragma once

#include <ZeltoIntegrations/Client/AccountAuthoriser.h>

#include <utility>

namespace zelto {

class MeisterTaskAuthoriser : public AccountAuthoriser {
  public:
    explicit MeisterTaskAuthoriser(ServiceAccountCredentials accountCredentials)
        : AccountAuthoriser(std::move(accountCredentials)) {}
};

} // namespace zelto
