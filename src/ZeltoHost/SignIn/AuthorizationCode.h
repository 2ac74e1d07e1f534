#pragma once

#include <ZeltoHost/SignIn/SignInService.h>

#include <Platform/HTTP/URLRequest.h>

#include <string>

namespace zelto {

// The random values that connect the steps of one OAuth 2 sign-in. Fresh for each.
struct SignInSecrets {
    std::string state;
    std::string verifier; // of PKCE (RFC 7636); 256 bits

    static SignInSecrets fresh();
};

// The page that the user sees. `nullopt` if the service's address cannot have a query.
std::optional<URL> authorizationPage(const SignInService& service, const URL& redirect,
                                     const SignInSecrets& secrets);

// The request that exchanges the code for the token.
URLRequest tokenRequest(const SignInService& service, const std::string& code, const URL& redirect,
                        const SignInSecrets& secrets);

} // namespace zelto
