#pragma once

#include <ZeltoIntegrations/MCP/MCPProtocolVersion.h>

#include <Platform/HTTP/URLRequest.h>
#include <Platform/URL.h>

#include <optional>
#include <string>

namespace zelto {

// What a transport holds of its session.
struct MCPHTTPState {
    std::optional<MCPProtocolVersion> protocolVersion;
    std::optional<std::string> sessionID;
};

// A message as it goes over the wire: a POST of its JSON, or without any a DELETE. It is given up when
// nothing moves for 60 seconds. A session's identifier that is not visible ASCII is left out.
URLRequest mcpHTTPRequest(const URL& endpoint, const MCPHTTPState& state, std::optional<std::string> body);

} // namespace zelto
