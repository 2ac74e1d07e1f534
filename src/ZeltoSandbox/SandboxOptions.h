#pragma once

#include <Platform/Date.h>
#include <Platform/Enum.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace zelto {

// What a consent page does: shows its two buttons, or redirects at once as if one had been pressed.
enum class SandboxConsent { ask, allow, deny };
ZELTO_ENUM(SandboxConsent);

// A client as it is registered at a service. OAuth 1.0a cannot be checked without its secret.
struct SandboxClient {
    std::string service; // "Trello"
    std::string clientID;
    std::string clientSecret;
};

// How a sandbox starts, and its limits. What exceeds a limit gets an HTTP error that says so, or its
// connection is closed.
struct SandboxOptions {
    std::uint16_t port = 0; // 0: a free one

    SandboxConsent consent = SandboxConsent::ask;

    // Beside the placeholders "placeholder-id-of-Trello" with "placeholder-secret-of-Trello" and so on, which
    // are always known. An identifier that is not known is accepted with any secret where the secret itself
    // is sent.
    std::vector<SandboxClient> clients;

    std::size_t maximumConnectionCount = 256;
    std::size_t maximumHeader = std::size_t{64} << 10;
    std::uint64_t maximumBody = std::uint64_t{4} << 30;
    std::uint64_t maximumDiskUse = std::uint64_t{8} << 30; // of all bodies and files that are kept
    std::size_t keptRequests = 1000;                       // the oldest go first

    TimeInterval headerTimeout{15}; // from a request's first byte to its header's end
    TimeInterval bodyTimeout{30};   // without a byte, in either direction
    TimeInterval idleTimeout{75};   // between two requests of one connection
};

} // namespace zelto
