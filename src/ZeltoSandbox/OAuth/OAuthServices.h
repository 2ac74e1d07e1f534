#pragma once

#include <Platform/JSON/JSONValue.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zelto::sandbox {

enum class OAuthFlow { code, implicit };

// How the client says at the token endpoint who it is.
enum class ClientAuthentication { form, basic };

// Whether and how a sign-in yields a refresh token.
enum class FirstRefreshToken { never, always, whenAskedFor };

// What the answer to a refresh says of the refresh token.
enum class NextRefreshToken { absent, repeated, rotated };

// What a token is given for, as far as an answer tells of it.
struct OAuthResponseFacts {
    std::string clientID;
    std::string scope;
    std::string userScope;       // Slack's
    std::string userAccessToken; // Slack's
};

// How one service does OAuth 2.0.
struct OAuthService {
    std::string_view name;
    std::string_view authorizeHost;
    std::string_view authorizePath;
    std::string_view tokenHost;
    std::string_view tokenPath;
    OAuthFlow flow;
    ClientAuthentication authentication;
    // A return address in the client's own scheme, as it stands, or the path of one on the product's web
    // site.
    std::string_view redirect;
    double lifetime; // seconds of an access token; 0 for one that does not expire
    FirstRefreshToken firstRefresh;
    NextRefreshToken nextRefresh;
    bool needsScope = false;
    // An item of the authorization page's query: what asks for a refresh token, or else one that has to be
    // there.
    std::string_view itemName = {};
    std::string_view itemValue = {};
    // Adds what the service's answer has beside the standard members.
    void (*describe)(JSONObject& answer, const OAuthResponseFacts& facts) = nullptr;
};

std::span<const OAuthService> oauthServices();

const OAuthService* findOAuthService(std::string_view name);

// How one service does OAuth 1.0a.
struct OAuth1Service {
    std::string_view name;
    std::string_view host;
    std::string_view requestPath;
    std::string_view authorizePath;
    std::string_view accessPath;
    std::string_view redirect;
};

std::span<const OAuth1Service> oauth1Services();

// Whether a client may be sent back to the address: a loopback one by http (RFC 8252), or the service's own.
bool isRedirectAllowed(std::string_view address, std::string_view own);

} // namespace zelto::sandbox
