#pragma once

#include <ZeltoIntegrations/AccountAuthoriser.h>

namespace zelto {

class ZoomAuthoriser : public AccountAuthoriser {
  public:
    explicit ZoomAuthoriser(ServiceAccountCredentials accountCredentials);
};

} // namespace zelto
