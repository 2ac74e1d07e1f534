#pragma once

#include <ZeltoIntegrations/AccountAuthoriser.h>

#include <utility>

namespace zelto {

class TickTickAuthoriser : public AccountAuthoriser {
  public:
    explicit TickTickAuthoriser(ServiceAccountCredentials accountCredentials)
        : AccountAuthoriser(std::move(accountCredentials)) {}
};

} // namespace zelto
