#pragma once

#include <ZeltoHost/SignIn/SignInService.h>

#include <Platform/HTTP/URLRequest.h>

#include <string>

namespace zelto {

// What ties the parts of one sign-in of OAuth 2 together. Fresh for each.
struct SignInSecrets {
    std::string state;
    std::string verifier; // of PKCE (RFC 7636); 256 bits

    static SignInSecrets fresh();
};

// The page that the user sees. Nothing if the service's address takes no query.
std::optional<URL> authorizationPage(const SignInService& service, const URL& redirect,
                                     const SignInSecrets& secrets);

// What gives the token for the code.
URLRequest tokenRequest(const SignInService& service, const std::string& code, const URL& redirect,
                        const SignInSecrets& secrets);

} // namespace zelto
