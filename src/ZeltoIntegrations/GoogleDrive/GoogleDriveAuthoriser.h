#pragma once

#include <ZeltoIntegrations/Client/AccountAuthoriser.h>

namespace zelto {

class GoogleDriveAuthoriser : public AccountAuthoriser {
  public:
    explicit GoogleDriveAuthoriser(ServiceAccountCredentials accountCredentials);
};

} // namespace zelto
