#pragma once

#include <ZeltoIntegrations/Client/AccountAuthoriser.h>

#include <utility>

namespace zelto {

// Signs with the form fields "username" and "password", after those that are there.
class InstapaperAuthoriser final : public AccountAuthoriser {
  public:
    explicit InstapaperAuthoriser(ServiceAccountCredentials accountCredentials)
        : AccountAuthoriser(std::move(accountCredentials)) {}

    bool authorize(URLRequest& request) override;
};

} // namespace zelto
