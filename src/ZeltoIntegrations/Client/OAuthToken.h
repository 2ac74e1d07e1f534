#pragma once

#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>

namespace zelto {

// The response of a token endpoint (RFC 6749, section 5.1).
struct OAuthToken {
    std::string accessToken;                 // "access_token"
    std::optional<std::string> refreshToken; // "refresh_token"
    double expiresIn = 0;                    // "expires_in", in seconds; 0 when the response does not say

    bool operator==(const OAuthToken&) const = default;
};

ZELTO_JSON_CODED(OAuthToken);

// The error response of a token endpoint (RFC 6749, section 5.2).
struct OAuthErrorBody {
    std::string error;

    bool operator==(const OAuthErrorBody&) const = default;
};

ZELTO_JSON_CODED(OAuthErrorBody);

// The result of a call whose response does not matter: any JSON object, or no body at all with status 204.
struct Empty {
    bool operator==(const Empty&) const = default;
};

ZELTO_JSON_CODED(Empty);

} // namespace zelto
