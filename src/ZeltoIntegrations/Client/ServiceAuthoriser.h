#pragma once

#include <Platform/HTTP/URLRequest.h>
#include <ZeltoIntegrations/Client/OAuthToken.h>
#include <ZeltoIntegrations/Client/ServiceClientError.h>

#include <cstdint>
#include <optional>
#include <string>

namespace zelto {

// Holds the credentials of one account for one client. Any thread: new requests may be signed while a
// refresh's outcome comes in.
class ServiceAuthoriser {
  public:
    virtual ~ServiceAuthoriser() = default;

    // Puts a credential on the request. False, and the request as it was, when there is none that can be
    // sent.
    virtual bool authorize(URLRequest& request) = 0;

    // The token as it is sent, for a request that names it elsewhere too; no value when there is none, or
    // when another credential is sent.
    virtual std::optional<std::string> accessToken() const { return std::nullopt; }

    // The present token must not be sent any more.
    virtual bool shouldRefreshToken() = 0;

    // Gets a new token; no value if the service or the account has no refresh.
    virtual std::optional<URLRequest> createRefreshTokenRequest() = 0;

    // Takes the outcome of that request in, and stores the credentials. Gives what it means for the requests
    // that wait: a failure is none if somebody else has stored newer tokens meanwhile.
    virtual ServiceResult<void> updateToken(const ServiceResult<OAuthToken>& result) = 0;

    // What the account's refreshes are kept apart by, among all clients that it has. Empty: they are not.
    virtual std::string refreshKey() const { return {}; }

    // Takes the tokens that somebody else has stored since this one last looked. False if there are none.
    virtual bool takeNewerTokens() { return false; }

    // Another number after each change of the tokens.
    virtual std::uint64_t tokenGeneration() const { return 0; }
};

} // namespace zelto
