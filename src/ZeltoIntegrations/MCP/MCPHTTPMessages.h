#pragma once

#include <ZeltoIntegrations/MCP/MCPProtocolVersion.h>

#include <Platform/HTTP/URLRequest.h>
#include <Platform/URL.h>

#include <optional>
#include <string>

namespace zelto {

// The session of a transport.
struct MCPHTTPState {
    std::optional<MCPProtocolVersion> protocolVersion;
    std::optional<std::string> sessionID;
};

// The HTTP request of a message: a POST of its JSON, or a DELETE without a body. Its time-out is 60 seconds
// without movement. A session identifier that is not visible ASCII is left out.
URLRequest mcpHTTPRequest(const URL& endpoint, const MCPHTTPState& state, std::optional<std::string> body);

} // namespace zelto
