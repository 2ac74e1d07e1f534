#pragma once

#include <ZeltoIntegrations/Client/AccountAuthoriser.h>

namespace zelto {

class DropboxAuthoriser : public AccountAuthoriser {
  public:
    explicit DropboxAuthoriser(ServiceAccountCredentials accountCredentials);
};

} // namespace zelto
