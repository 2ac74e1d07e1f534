#pragma once

#include <ZeltoIntegrations/Client/AccountAuthoriser.h>

namespace zelto {

class HubspotAuthoriser final : public AccountAuthoriser {
  public:
    explicit HubspotAuthoriser(ServiceAccountCredentials accountCredentials);
};

} // namespace zelto
