#pragma once

#include <ZeltoIntegrations/Client/AccountAuthoriser.h>

#include <utility>

namespace zelto {

class TickTickAuthoriser : public AccountAuthoriser {
  public:
    explicit TickTickAuthoriser(ServiceAccountCredentials accountCredentials)
        : AccountAuthoriser(std::move(accountCredentials)) {}
};

} // namespace zelto
