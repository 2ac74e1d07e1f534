#pragma once

#include <ZeltoIntegrations/MCP/MCPRequestID.h>

#include <Platform/JSON/JSONValue.h>

#include <optional>
#include <string>

namespace zelto {

// A call that expects a response. Written with "jsonrpc" in front; never read.
struct MCPRequest {
    MCPRequestID id;
    std::string method;
    std::optional<JSONValue> params;

    bool operator==(const MCPRequest&) const = default;
};

ZELTO_JSON_CODED(MCPRequest);

// A message that expects no response. Written with "jsonrpc" in front; never read.
struct MCPNotification {
    std::string method;
    std::optional<JSONValue> params;

    bool operator==(const MCPNotification&) const = default;
};

ZELTO_JSON_CODED(MCPNotification);

} // namespace zelto
