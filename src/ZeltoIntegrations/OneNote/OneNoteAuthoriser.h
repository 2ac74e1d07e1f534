#pragma once

#include <ZeltoIntegrations/Client/AccountAuthoriser.h>

namespace zelto {

class OneNoteAuthoriser : public AccountAuthoriser {
  public:
    explicit OneNoteAuthoriser(ServiceAccountCredentials accountCredentials);
};

} // namespace zelto
