#pragma once

#include <ZeltoIntegrations/MCP/MCPError.h>
#include <ZeltoIntegrations/MCP/MCPHTTPSessionIDReference.h>

#include <Platform/HTTP/URLResponse.h>

#include <optional>
#include <string_view>

namespace zelto {

// How every handler judges the head of a response.

inline constexpr std::string_view mcpSessionIDField = "Mcp-Session-Id";
inline constexpr std::string_view mcpProtocolVersionField = "MCP-Protocol-Version";

// `nullopt` for 200 to 299; a 404 drops the session.
std::optional<MCPClientError> failureOf(const HTTPURLResponse& response,
                                        const MCPHTTPSessionIDReference& sessionID);

// Keeps the session identifier if the response has one.
void captureSessionID(const HTTPURLResponse& response, const MCPHTTPSessionIDReference& sessionID);

// A response beyond the limit of the session's configuration.
MCPError responseTooLarge();

// Whether it consists of visible ASCII only, and may therefore be sent.
bool isSendableSessionID(std::string_view sessionID);

} // namespace zelto
