#pragma once

#include <Platform/Enum.h>
#include <Platform/JSON/JSONCoding.h>

#include <optional>
#include <string_view>

namespace zelto {

// The published revisions of the Model Context Protocol that this client supports, newest first. Coded as
// text ("2025-11-25"); any other text fails to decode with MCPClientError's unsupportedProtocolVersion.
enum class MCPProtocolVersion { v2025_11_25, v2025_06_18, v2025_03_26, v2024_11_05 };
ZELTO_ENUM(MCPProtocolVersion);
ZELTO_JSON_CODED(MCPProtocolVersion);

inline constexpr MCPProtocolVersion latestMCPProtocolVersion = MCPProtocolVersion::v2025_11_25;

std::string_view rawValue(MCPProtocolVersion version);
// `nullopt` for a text that is not a supported revision.
std::optional<MCPProtocolVersion> mcpProtocolVersion(std::string_view rawValue);

} // namespace zelto
