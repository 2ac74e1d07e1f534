#pragma once

#include <ZeltoIntegrations/MCP/MCPCapabilities.h>
#include <ZeltoIntegrations/MCP/MCPProtocolVersion.h>

#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string>

namespace zelto {

// Name and version of a client or a server.
struct MCPImplementationInfo {
    std::string name;
    std::string version;

    bool operator==(const MCPImplementationInfo&) const = default;
};

ZELTO_JSON_CODED(MCPImplementationInfo);

struct MCPInitializeParams {
    MCPProtocolVersion protocolVersion = latestMCPProtocolVersion;
    MCPCapabilities capabilities = {};
    MCPImplementationInfo clientInfo = {};

    bool operator==(const MCPInitializeParams&) const = default;
};

ZELTO_JSON_CODED(MCPInitializeParams);

// A server's description of itself at the start of a session. Its version may differ from the one that was
// offered.
struct MCPInitializeResult {
    MCPProtocolVersion protocolVersion = latestMCPProtocolVersion;
    MCPCapabilities capabilities = {};
    MCPImplementationInfo serverInfo = {};
    std::optional<std::string> instructions = {};

    bool operator==(const MCPInitializeResult&) const = default;
};

ZELTO_JSON_CODED(MCPInitializeResult);

} // namespace zelto
