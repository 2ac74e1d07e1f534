#pragma once

#include <ZeltoIntegrations/MCP/MCPRequestID.h>

#include <Platform/JSON/JSONValue.h>

#include <cstdint>
#include <optional>
#include <string>

namespace zelto {

// Why a server refuses a request.
struct MCPResponseError {
    std::int64_t code = 0;
    std::string message;
    std::optional<JSONValue> data;

    bool operator==(const MCPResponseError&) const = default;
};

ZELTO_JSON_CODED(MCPResponseError);

// A server's response. Read, never written: a "jsonrpc" other than "2.0" fails with MCPClientError's
// invalidJSONRPCVersion before everything else. It may have neither or both of `result` and `error`;
// MCPClient decides what that means.
struct MCPResponse {
    using Error = MCPResponseError;

    MCPRequestID id;
    std::optional<JSONValue> result;
    std::optional<Error> error;

    bool operator==(const MCPResponse&) const = default;
};

ZELTO_JSON_CODED(MCPResponse);

} // namespace zelto
