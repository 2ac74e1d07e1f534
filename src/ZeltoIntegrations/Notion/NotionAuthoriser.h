#pragma once

#include <ZeltoIntegrations/Client/AccountAuthoriser.h>

namespace zelto {

class NotionAuthoriser final : public AccountAuthoriser {
  public:
    explicit NotionAuthoriser(ServiceAccountCredentials accountCredentials);
};

} // namespace zelto
