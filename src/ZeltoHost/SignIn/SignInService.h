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
    implicit,          // section 4.2: the token comes at once, behind "#"
    oauth1,            // RFC 5849, signed with HMAC-SHA1
};

// How the client shows itself at the token endpoint.
enum class ClientAuthentication { basic, form };

// What the sign-in of one service is like.
struct SignInService {
    ServiceType type;
    std::string name; // for people
    SignInFlow flow = SignInFlow::authorizationCode;

    std::string clientID; // the consumer's key for OAuth 1
    std::string clientSecret;

    // The page for the user; a query that it has stays.
    URL authorizationURL;
    URL tokenURL;
    std::optional<URL> requestTokenURL; // OAuth 1 alone
    std::string scope;                  // empty: none is sent
    std::string scopeName = "scope";
    std::vector<URLQueryItem> extraItems; // of the authorization page

    ClientAuthentication clientAuthentication = ClientAuthentication::form;
    bool takesPKCE = false;
    // The token answer's object that holds the user's token, where it is not the answer itself.
    std::string tokenObject;

    // "/sign-in/trello": another one for each service, so that no service's answer passes for another's.
    std::string redirectPath() const;
};

// Nothing for a service that has no sign-in in a browser, or none that this system knows.
std::optional<SignInService> signInServiceFor(ServiceType type);

} // namespace zelto
