#pragma once

#include <Platform/HTTP/URLRequest.h>
#include <ZeltoIntegrations/Client/OAuthToken.h>
#include <ZeltoIntegrations/Client/ServiceClientError.h>

#include <optional>

namespace zelto {

// Holds the credentials of one account for one client. Any thread: new requests may be signed while a
// refresh's outcome comes in.
class ServiceAuthoriser {
  public:
    virtual ~ServiceAuthoriser() = default;

    // Puts a credential on the request. False, and the request as it was, when there is none that can be
    // sent.
    virtual bool authorize(URLRequest& request) = 0;

    // The present token must not be sent any more.
    virtual bool shouldRefreshToken() = 0;

    // Gets a new token; nothing if the service or the account has no refresh.
    virtual std::optional<URLRequest> createRefreshTokenRequest() = 0;

    // Takes the outcome of that request in, and stores the credentials.
    virtual void updateToken(const ServiceResult<OAuthToken>& result) = 0;
};

} // namespace zelto
