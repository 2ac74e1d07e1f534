#pragma once

#include <ZeltoIntegrations/Client/AccountAuthoriser.h>

#include <utility>

namespace zelto {

class TodoistAuthoriser : public AccountAuthoriser {
  public:
    explicit TodoistAuthoriser(ServiceAccountCredentials accountCredentials)
        : AccountAuthoriser(std::move(accountCredentials)) {}
};

} // namespace zelto
