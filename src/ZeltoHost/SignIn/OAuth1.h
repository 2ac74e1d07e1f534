#pragma once

#include <ZeltoHost/SignIn/FormItems.h>

#include <Platform/HTTP/URLRequest.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

// The credentials that a request of OAuth 1.0a (RFC 5849) is signed with.
struct OAuth1Credentials {
    std::string consumerKey;
    std::string consumerSecret;
    std::string token = {}; // empty before there is one
    std::string tokenSecret = {};
};

// The values that make each signature unique.
struct OAuth1Moment {
    std::string nonce;
    std::string timestamp; // seconds since 1970

    static OAuth1Moment now();
};

// Sets the request's Authorization header, signed with HMAC-SHA1 over method, URL, the `oauth_` parameters
// and the form items of the body. `extra` are further parameters of the protocol (oauth_callback,
// oauth_verifier).
void signOAuth1(URLRequest& request, const OAuth1Credentials& credentials,
                const std::vector<URLQueryItem>& extra, const FormItems& bodyItems = {},
                const OAuth1Moment& moment = OAuth1Moment::now());

// The text that is signed (section 3.4.1.1).
std::string oauth1BaseString(const URLRequest& request, const std::vector<URLQueryItem>& protocolParameters,
                             const FormItems& bodyItems);

// A token in the response of a request-token or access-token endpoint, a form.
struct OAuth1Token {
    std::string token;
    std::string secret;
    bool callbackIsConfirmed = false; // of a request token, if the service implements OAuth 1.0a
};

std::optional<OAuth1Token> readOAuth1Token(std::string_view form);

} // namespace zelto
