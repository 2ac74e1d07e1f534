#pragma once

#include <Platform/Date.h>
#include <Platform/HTTP/HTTPHeaders.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// What goes wrong for the next requests that match. Members can be combined: a delayed reset, a slow 503.
struct SandboxFault {
    // Which requests; an empty text matches all.
    std::string host;   // "api.trello.com"
    std::string path;   // that the request's path begins with: "/1/cards"
    std::string method; // "POST"

    int times = 1; // so many requests, the first ones that match

    // The response has this status, and the service does not see the request. Without a body it is the
    // service's own for that status.
    std::optional<int> status;
    std::optional<std::string> body;
    std::vector<HTTPHeaderField> fields;

    std::optional<TimeInterval> delay;     // before the response
    bool reset = false;                    // the connection ends instead of a response; the service has acted
    std::optional<std::uint32_t> slowBody; // bytes of the response's body a second

    // The service has acted, and the response's body does not arrive as its header says. Counts are in bytes
    // of the body; a body that is shorter arrives whole.
    std::optional<std::int64_t> lengthError; // Content-Length claims so many more than come; negative: fewer
    std::optional<std::uint64_t> cutAfter;   // the connection ends there, by a reset if `reset` is set too
    std::optional<std::uint64_t> stallAfter; // no more comes there, until the client ends the connection

    bool expireTokens = false; // all access tokens of the host's service, before it checks them

    bool operator==(const SandboxFault&) const = default;
};

} // namespace zelto
