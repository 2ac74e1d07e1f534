#include <ZeltoIntegrations/MCP/MCPCapabilities.h>

namespace zelto {

std::optional<JSONValue> MCPCapabilities::operator[](std::string_view name) const {
    const auto found = values.find(std::string(name));
    return found == values.end() ? std::nullopt : found->second;
}

void encodeJSON(JSONWriter& writer, const MCPCapabilities& value) {
    writer.write(value.values);
}

void decodeJSON(const JSONReader& reader, MCPCapabilities& value) {
    reader.read(value.values);
}

} // namespace zelto
