#include <ZeltoIntegrations/MCP/MCPRequestID.h>

#include <ZeltoIntegrations/MCP/MCPClientError.h>

#include <Platform/JSON/JSONRecordDescription.h>

namespace zelto {

void encodeJSON(JSONWriter& writer, const MCPRequestID& value) {
    std::visit([&](const auto& each) { writer.write(each); }, value.value);
}

void decodeJSON(const JSONReader& reader, MCPRequestID& value) {
    if (reader.kind() == JSONKind::string) {
        value.value = std::string(reader.string());
        return;
    }
    try {
        value.value = reader.as<std::int64_t>();
    } catch (const DecodingError&) {
        throw MCPClientError::invalidJSONRPCIdentifier();
    }
}

ZELTO_JSON_RECORD(MCPRequestIDEnvelope, id);

} // namespace zelto
