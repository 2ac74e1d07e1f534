#pragma once

#include <Platform/Enum.h>

#include <string>

namespace zelto {

// How a task ended without a whole answer. An answer with whatever status is no error.
enum class URLErrorCode : int {
    cancelled,
    invalidRequest,   // a scheme, host, method or header field that is not sent
    cannotFindHost,   // the name has no address
    cannotConnect,    // nobody answers at the address, or the proxy refuses
    secureConnection, // the server's certificate or protocol version is not accepted
    connectionLost,   // the connection ended within the exchange, or before an answer to what is not repeated
    timedOut,         // nothing moved for the request's time-out
    bodyUnreadable,   // a file of the request's body has gone or shrunk
    badAnswer,        // no HTTP, a broken encoding, a wrong length
    responseTooLarge, // past a limit of the session's configuration
};
ZELTO_ENUM(URLErrorCode);

struct URLError {
    URLErrorCode code;
    std::string message; // one sentence, for logs and people; no part of a URL's query, no header value

    bool operator==(const URLError&) const = default;
};

} // namespace zelto
