#pragma once

#include <ZeltoIntegrations/MCP/MCPContentItem.h>

#include <Platform/JSON/JSONValue.h>

#include <optional>
#include <string>
#include <vector>

namespace zelto {

struct MCPTool {
    std::string name;
    std::optional<std::string> title = {};
    std::optional<std::string> description = {};
    JSONValue inputSchema = {};
    std::optional<JSONValue> annotations = {};
    std::optional<JSONValue> metadata = {}; // "_meta"

    bool operator==(const MCPTool&) const = default;
};

ZELTO_JSON_CODED(MCPTool);

struct MCPToolListParams {
    std::optional<std::string> cursor;

    bool operator==(const MCPToolListParams&) const = default;
};

ZELTO_JSON_CODED(MCPToolListParams);

// One page of a server's tools; a cursor means that there may be more.
struct MCPToolListResult {
    std::vector<MCPTool> tools;
    std::optional<std::string> nextCursor = {};

    bool operator==(const MCPToolListResult&) const = default;
};

ZELTO_JSON_CODED(MCPToolListResult);

struct MCPToolCallParams {
    std::string name;
    std::optional<JSONValue> arguments = {};

    bool operator==(const MCPToolCallParams&) const = default;
};

ZELTO_JSON_CODED(MCPToolCallParams);

struct MCPToolCallResult {
    std::vector<MCPContentItem> content;
    std::optional<bool> isError = {}; // absent if the server does not say

    bool operator==(const MCPToolCallResult&) const = default;
};

ZELTO_JSON_CODED(MCPToolCallResult);

} // namespace zelto
