#pragma once

#include <ZeltoIntegrations/Accounts/ServiceType.h>

#include <Platform/URL.h>
#include <Platform/URLComponents.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

enum class SignInFlow {
    authorizationCode, // RFC 6749, section 4.1
    implicit,          // section 4.2: the token comes at once, after "#"
    oauth1,            // RFC 5849, signed with HMAC-SHA1
};

// How the client authenticates at the token endpoint.
enum class ClientAuthentication { basic, form };

// How a service's sign-in works.
struct SignInService {
    ServiceType type;
    std::string name; // for people
    SignInFlow flow = SignInFlow::authorizationCode;

    std::string clientID; // the consumer key for OAuth 1
    std::string clientSecret;

    // The page for the user; an existing query is kept.
    URL authorizationURL;
    URL tokenURL;
    std::optional<URL> requestTokenURL; // OAuth 1 only
    std::string scope;                  // empty: none is sent
    std::string scopeName = "scope";
    std::vector<URLQueryItem> extraItems; // of the authorization page

    ClientAuthentication clientAuthentication = ClientAuthentication::form;
    bool takesPKCE = false;
    // The object in the token response that contains the user's token, unless it is the response itself.
    std::string tokenObject;

    // "/sign-in/trello": a different one for each service, so that the response of one is not taken for that
    // of another.
    std::string redirectPath() const;
};

// `nullopt` for a service that has no sign-in in a browser, or none that is supported.
std::optional<SignInService> signInServiceFor(ServiceType type);

} // namespace zelto
