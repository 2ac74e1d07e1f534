#pragma once

#include <ZeltoIntegrations/AccountAuthoriser.h>

namespace zelto {

class HubspotAuthoriser final : public AccountAuthoriser {
  public:
    explicit HubspotAuthoriser(ServiceAccountCredentials accountCredentials);
};

} // namespace zelto
