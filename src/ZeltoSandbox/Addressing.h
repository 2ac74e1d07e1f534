#pragma once

#include <ZeltoSandbox/HTTP/SandboxRequest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zelto::sandbox {

// Where a request goes: a service, or the sandbox's own pages (no host).
struct RequestAddress {
    std::string host;
    std::string path; // with its escapes
    std::string query;
    std::string webPrefix;

    bool isOwn() const { return host.empty(); }
};

// Whether a host is one of the services'.
bool isServiceHost(std::string_view host);

// By the Host header and the target. nullopt for a Host that is neither a service's nor this machine's own
// name with the sandbox's port, which stops web pages whose name resolves to a loopback address (DNS
// rebinding).
std::optional<RequestAddress> addressOf(std::string_view hostHeader, std::string_view target,
                                        std::uint16_t port);

// Parses a request to a service. The text of an error says what is wrong.
Result<SandboxRequest, std::string> requestOf(RequestHead head, RequestAddress address,
                                              std::shared_ptr<const SpooledBytes> body);

} // namespace zelto::sandbox
