#pragma once

#include <ZeltoIntegrations/Client/AccountAuthoriser.h>

namespace zelto {

class MicrosoftTeamsAuthoriser final : public AccountAuthoriser {
  public:
    explicit MicrosoftTeamsAuthoriser(ServiceAccountCredentials accountCredentials);
};

} // namespace zelto
