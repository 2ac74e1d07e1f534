#pragma once

#include <ZeltoHost/SignIn/FormItems.h>

#include <Platform/HTTP/URLRequest.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

// What a request of OAuth 1.0a (RFC 5849) is signed with.
struct OAuth1Credentials {
    std::string consumerKey;
    std::string consumerSecret;
    std::string token = {}; // empty: none yet
    std::string tokenSecret = {};
};

// What makes a signature one of its own.
struct OAuth1Moment {
    std::string nonce;
    std::string timestamp; // seconds since 1970

    static OAuth1Moment now();
};

// Sets the request's Authorization header, signed with HMAC-SHA1 over method, URL, the `oauth_` parameters
// and the form items that the body holds. `extra` are further parameters of the protocol (oauth_callback,
// oauth_verifier).
void signOAuth1(URLRequest& request, const OAuth1Credentials& credentials,
                const std::vector<URLQueryItem>& extra, const FormItems& bodyItems = {},
                const OAuth1Moment& moment = OAuth1Moment::now());

// The text that is signed (section 3.4.1.1).
std::string oauth1BaseString(const URLRequest& request, const std::vector<URLQueryItem>& protocolParameters,
                             const FormItems& bodyItems);

// A token as request-token and access-token endpoints answer it: a form.
struct OAuth1Token {
    std::string token;
    std::string secret;
    bool callbackIsConfirmed = false; // of a request token, where the service keeps to OAuth 1.0a
};

std::optional<OAuth1Token> readOAuth1Token(std::string_view form);

} // namespace zelto
