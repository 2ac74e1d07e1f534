#pragma once

#include <ZeltoIntegrations/MCP/MCPClientError.h>
#include <ZeltoIntegrations/MCP/MCPHTTPSessionIDReference.h>

#include <Platform/HTTP/URLResponse.h>

#include <optional>
#include <string_view>

namespace zelto {

// The rules by which every handler judges the head of an answer.

inline constexpr std::string_view mcpSessionIDField = "Mcp-Session-Id";
inline constexpr std::string_view mcpProtocolVersionField = "MCP-Protocol-Version";

// Nothing for 200 to 299; a 404 takes the session away.
std::optional<MCPClientError> failureOf(const HTTPURLResponse& response,
                                        const MCPHTTPSessionIDReference& sessionID);

// Keeps the identifier that the server gave, if it gave one.
void captureSessionID(const HTTPURLResponse& response, const MCPHTTPSessionIDReference& sessionID);

// Whether it is made of visible ASCII alone, and so may be sent back.
bool isSendableSessionID(std::string_view sessionID);

} // namespace zelto
