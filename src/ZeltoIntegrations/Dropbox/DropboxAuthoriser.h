#pragma once

#include <ZeltoIntegrations/AccountAuthoriser.h>

namespace zelto {

class DropboxAuthoriser : public AccountAuthoriser {
  public:
    explicit DropboxAuthoriser(ServiceAccountCredentials accountCredentials);
};

} // namespace zelto
