#pragma once

#include <Platform/JSON/JSONValue.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zelto::sandbox {

enum class OAuthFlow { code, implicit };

// How the client authenticates at the token endpoint.
enum class ClientAuthentication { form, basic };

// Whether a sign-in gives a refresh token.
enum class FirstRefreshToken { never, always, whenAskedFor };

// What the response to a refresh has as its refresh token.
enum class NextRefreshToken { absent, repeated, rotated };

// What a token is issued for, as far as the response shows it.
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
    // A return address in the client's own scheme, or the path of one on the product's web site.
    std::string_view redirect;
    double lifetime; // seconds of an access token; 0 for one that does not expire
    FirstRefreshToken firstRefresh;
    NextRefreshToken nextRefresh;
    bool needsScope = false;
    // An item of the authorization page's query: the one that asks for a refresh token, or else a required
    // one.
    std::string_view itemName = {};
    std::string_view itemValue = {};
    // Adds what the service's response has beside the standard members.
    void (*describe)(JSONObject& response, const OAuthResponseFacts& facts) = nullptr;
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
