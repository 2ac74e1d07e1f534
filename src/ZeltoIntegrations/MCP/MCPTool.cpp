#include <ZeltoIntegrations/MCP/MCPTool.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(MCPTool, name, title, description, inputSchema, annotations, (metadata, "_meta"));
ZELTO_JSON_RECORD(MCPToolListParams, cursor);
ZELTO_JSON_RECORD(MCPToolListResult, tools, nextCursor);
ZELTO_JSON_RECORD(MCPToolCallParams, name, arguments);
ZELTO_JSON_RECORD(MCPToolCallResult, content, isError);

} // namespace zelto
