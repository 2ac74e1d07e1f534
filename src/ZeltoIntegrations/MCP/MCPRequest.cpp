#include <ZeltoIntegrations/MCP/MCPRequest.h>

#include <ZeltoIntegrations/MCP/MCPClient.h>

namespace zelto {

void encodeJSON(JSONWriter& writer, const MCPRequest& value) {
    writer.beginObject();
    writer.field("jsonrpc", MCPClient::jsonRpcVersion);
    writer.field("id", value.id);
    writer.field("method", value.method);
    writer.field("params", value.params);
    writer.endObject();
}

void encodeJSON(JSONWriter& writer, const MCPNotification& value) {
    writer.beginObject();
    writer.field("jsonrpc", MCPClient::jsonRpcVersion);
    writer.field("method", value.method);
    writer.field("params", value.params);
    writer.endObject();
}

} // namespace zelto
