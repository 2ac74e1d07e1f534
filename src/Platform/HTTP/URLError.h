#pragma once

#include <Platform/Enum.h>

#include <string>

namespace zelto {

// Why a task ended without a complete response. A response with an error status is not an error.
enum class URLErrorCode : int {
    cancelled,
    invalidRequest,   // a scheme, host, method or header field that is not allowed
    cannotFindHost,   // the name has no address
    cannotConnect,    // no server at the address, or refused by the proxy
    secureConnection, // the server's certificate or protocol version is not accepted
    connectionLost,   // ended during the exchange, or before the response to a request that is not repeated
    timedOut,         // nothing moved for the request's time-out
    bodyUnreadable,   // a file of the request's body is gone or has become shorter
    badResponse,      // not HTTP, an invalid encoding, or a wrong length
    responseTooLarge, // beyond a limit of the session's configuration
};
ZELTO_ENUM(URLErrorCode);

struct URLError {
    URLErrorCode code;
    std::string message; // one sentence, for logs and people; without URL queries and header values

    bool operator==(const URLError&) const = default;
};

} // namespace zelto
