#pragma once

#include <ZeltoIntegrations/AccountAuthoriser.h>

namespace zelto {

class AsanaAuthoriser : public AccountAuthoriser {
  public:
    explicit AsanaAuthoriser(ServiceAccountCredentials accountCredentials);
};

} // namespace zelto
