#pragma once

#include <ZeltoIntegrations/Client/AccountAuthoriser.h>

namespace zelto {

class GoToAuthoriser : public AccountAuthoriser {
  public:
    explicit GoToAuthoriser(ServiceAccountCredentials accountCredentials);
};

} // namespace zelto
