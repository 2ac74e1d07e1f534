#include <ZeltoIntegrations/MCP/MCPResponse.h>

#include <ZeltoIntegrations/MCP/MCPClient.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

ZELTO_JSON_RECORD(MCPResponseError, code, message, data);

void decodeJSON(const JSONReader& reader, MCPResponse& value) {
    auto version = reader.optional<std::string>("jsonrpc");
    if (version != MCPClient::jsonRpcVersion) {
        throw MCPClientError::invalidJSONRPCVersion(std::move(version));
    }
    value.id = reader.required<MCPRequestID>("id");
    value.result = reader.optional<JSONValue>("result");
    value.error = reader.optional<MCPResponse::Error>("error");
}

} // namespace zelto
