#pragma once

#include <ZeltoIntegrations/AccountAuthoriser.h>

namespace zelto {

class SlackAuthoriser final : public AccountAuthoriser {
  public:
    explicit SlackAuthoriser(ServiceAccountCredentials accountCredentials);
};

} // namespace zelto
