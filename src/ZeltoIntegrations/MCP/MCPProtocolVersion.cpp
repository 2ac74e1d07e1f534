#include <ZeltoIntegrations/MCP/MCPProtocolVersion.h>

#include <ZeltoIntegrations/MCP/MCPClientError.h>

#include <Platform/EnumDescription.h>

#include <algorithm>
#include <array>

namespace zelto {

ZELTO_DESCRIBE_ENUM(MCPProtocolVersion, v2025_11_25, v2025_06_18, v2025_03_26, v2024_11_05);

namespace {

// In the order of the cases.
constexpr std::array<std::string_view, 4> rawValues = {"2025-11-25", "2025-06-18", "2025-03-26",
                                                       "2024-11-05"};

} // namespace

std::string_view rawValue(MCPProtocolVersion version) {
    return rawValues[static_cast<std::size_t>(version)];
}

std::optional<MCPProtocolVersion> mcpProtocolVersion(std::string_view rawValue) {
    const auto found = std::ranges::find(rawValues, rawValue);
    if (found == rawValues.end()) {
        return std::nullopt;
    }
    return static_cast<MCPProtocolVersion>(found - rawValues.begin());
}

void encodeJSON(JSONWriter& writer, const MCPProtocolVersion& value) {
    writer.string(rawValue(value));
}

void decodeJSON(const JSONReader& reader, MCPProtocolVersion& value) {
    const auto text = reader.string();
    const auto version = mcpProtocolVersion(text);
    if (!version) {
        throw MCPClientError::unsupportedProtocolVersion(std::string(text));
    }
    value = *version;
}

} // namespace zelto
