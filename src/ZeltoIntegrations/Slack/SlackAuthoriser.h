#pragma once

#include <ZeltoIntegrations/Client/AccountAuthoriser.h>

namespace zelto {

class SlackAuthoriser final : public AccountAuthoriser {
  public:
    explicit SlackAuthoriser(ServiceAccountCredentials accountCredentials);
};

} // namespace zelto
