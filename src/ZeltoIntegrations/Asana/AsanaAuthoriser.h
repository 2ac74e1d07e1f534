#pragma once

#include <ZeltoIntegrations/Client/AccountAuthoriser.h>

namespace zelto {

class AsanaAuthoriser : public AccountAuthoriser {
  public:
    explicit AsanaAuthoriser(ServiceAccountCredentials accountCredentials);
};

} // namespace zelto
