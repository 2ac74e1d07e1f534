#pragma once

#include <ZeltoIntegrations/Client/AccountAuthoriser.h>

namespace zelto {

class ZoomAuthoriser : public AccountAuthoriser {
  public:
    explicit ZoomAuthoriser(ServiceAccountCredentials accountCredentials);
};

} // namespace zelto
